#pragma once

#include <QPushButton>

namespace korvel {

/// The one button that a window is for, in a strong colour whatever the style makes of default buttons.
class MainButton final : public QPushButton {
public:
    explicit MainButton(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace korvel
