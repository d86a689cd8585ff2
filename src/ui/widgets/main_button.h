#pragma once

#include <QPushButton>

namespace korvel {

/// The primary button of a window, in a strong colour independent of the style.
class MainButton final : public QPushButton {
public:
    explicit MainButton(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace korvel
