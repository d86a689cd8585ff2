#include "ui/widgets/text_button.h"

#include <algorithm>

namespace korvel {

namespace {
constexpr int MARGINS = 32; // left and right together
}

int TextButton::widthFor(const QString &text) const { return fontMetrics().horizontalAdvance(text) + MARGINS; }

QSize TextButton::sizeHint() const {
    const QSize usual = QPushButton::sizeHint();
    return {std::max(usual.width(), widthFor(text())), usual.height()};
}

} // namespace korvel
