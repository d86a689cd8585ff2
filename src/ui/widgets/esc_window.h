#pragma once

#include <QWidget>
#include <functional>

namespace korvel {

/// A window that calls onEsc on Escape without modifiers. Escape is always consumed, also when onEsc is not set.
class EscWindow : public QWidget {
public:
    using QWidget::QWidget;
    std::function<void()> onEsc;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace korvel
