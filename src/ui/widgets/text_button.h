#pragma once

#include <QPushButton>

namespace korvel {

/// A push button whose text has 16 points on either side at least; some styles leave a long one hardly any.
class TextButton : public QPushButton {
public:
    using QPushButton::QPushButton;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    /// How wide the button is for a text.
    int widthFor(const QString &text) const;
};

} // namespace korvel
