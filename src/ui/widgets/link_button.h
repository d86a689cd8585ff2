#pragma once

#include <QPushButton>

namespace korvel {

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
