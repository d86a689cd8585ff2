#include "ui/text_field.h"

#include "ui/text_styles.h"

#include <QEvent>

namespace korvel {

namespace {
constexpr int DERIVED = 140; // a style takes the window's colour that much darker, in percent
}

TextField::TextField(QWidget *parent) : QLineEdit(parent) { colourEdge(); }

void TextField::changeEvent(QEvent *event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !colouring)
        colourEdge();
}

void TextField::colourEdge() {
    colouring = true;
    const QPalette around = parentWidget() ? parentWidget()->palette() : palette();
    QPalette own; // one role only: the others stay those of the window
    own.setColor(QPalette::Window, edgeColour(around).lighter(DERIVED));
    setPalette(own);
    colouring = false;
}

} // namespace korvel
