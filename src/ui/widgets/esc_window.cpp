#include "ui/widgets/esc_window.h"

#include <QKeyEvent>

namespace korvel {

void EscWindow::keyPressEvent(QKeyEvent *event) {
    // A key on the number pad carries a modifier of its own that no person holds.
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (event->key() != Qt::Key_Escape || !plain)
        return QWidget::keyPressEvent(event);
    event->accept();
    if (onEsc)
        onEsc();
}

} // namespace korvel
