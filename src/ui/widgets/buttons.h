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

/// The primary button of a window, in a strong colour independent of the style.
class MainButton final : public QPushButton {
public:
    explicit MainButton(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// A button that looks like a link: the system's link colour at 12 points, underlined on hover and focus.
class LinkButton final : public QPushButton {
public:
    explicit LinkButton(const QString &text, QWidget *parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace korvel
