#include "ui/widgets/close_key.h"

#include <QShortcut>
#include <QWidget>

namespace korvel {

void closeByKey(QWidget &window) {
    const auto *key = new QShortcut(QKeySequence(QKeySequence::Close), &window);
    QObject::connect(key, &QShortcut::activated, &window, [&window] { window.close(); });
}

} // namespace korvel
