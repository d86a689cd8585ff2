#include "ui/widgets/esc_window.h"

#include <QKeyEvent>

namespace korvel {

void EscWindow::keyPressEvent(QKeyEvent *event) {
    // Keys on the number pad always carry the keypad modifier.
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (event->key() != Qt::Key_Escape || !plain)
        return QWidget::keyPressEvent(event);
    event->accept();
    if (onEsc)
        onEsc();
}

} // namespace korvel
