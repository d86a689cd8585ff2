#pragma once

#include <QWidget>
#include <functional>

namespace korvel {

/// A window whose onEsc runs on Escape without a modifier; the key counts as handled also when onEsc is not set.
class EscWindow : public QWidget {
public:
    using QWidget::QWidget;
    std::function<void()> onEsc;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace korvel
