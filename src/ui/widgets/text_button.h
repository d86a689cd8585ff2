#pragma once

#include <QPushButton>

namespace korvel {

/// A push button with a margin of at least 16 points beside its text; some styles leave long texts hardly any.
class TextButton : public QPushButton {
public:
    using QPushButton::QPushButton;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    /// Width of the button for a text.
    int widthFor(const QString &text) const;
};

} // namespace korvel
