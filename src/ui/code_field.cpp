#include "ui/code_field.h"

#include "e2ee/pair_code.h"
#include "ui/text_styles.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>

namespace korvel {

PairCodeField::PairCodeField(QWidget *parent) : TextField(parent) {
    setFont(codeFont(24, QFont::DemiBold));
    setAlignment(Qt::AlignCenter);
    setPlaceholderText(QStringLiteral("000 000"));
    setInputMethodHints(Qt::ImhPreferNumbers | Qt::ImhNoPredictiveText);
    setFixedSize(220, 36);
    connect(this, &QLineEdit::textEdited, this, [this] { controlTextDidChange(); });
}

bool PairCodeField::isComplete() const { return codeDigits(text()).size() == 6; }

void PairCodeField::controlTextDidChange() {
    const CodeText formatted = formatCode({text(), cursorPosition()});
    // Written back only when it differs: setting a text moves the caret.
    if (formatted.text != text()) {
        setText(formatted.text);
        setCursorPosition(static_cast<int>(formatted.caret));
    }
    if (onEdited)
        onEdited();
}

void PairCodeField::keyPressEvent(QKeyEvent *event) {
    // The blank between the groups is not the person's: deleting across it deletes a digit.
    if (!hasSelectedText()) {
        const int caret = cursorPosition();
        if (event->key() == Qt::Key_Backspace && caret > 0 && text().at(caret - 1) == u' ')
            setCursorPosition(caret - 1);
        else if (event->key() == Qt::Key_Delete && caret < text().size() && text().at(caret) == u' ')
            setCursorPosition(caret + 1);
    }
    QLineEdit::keyPressEvent(event);
}

void PairCodeField::inputMethodEvent(QInputMethodEvent *event) {
    composing = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
}

void PairCodeField::paintEvent(QPaintEvent *event) {
    QLineEdit::paintEvent(event);
    // A line edit leaves the placeholder of a centred text out while it has the focus, which is all the time here.
    if (!hasFocus() || composing || !text().isEmpty())
        return;
    QPainter painter(this);
    painter.setFont(codeFont(24)); // lighter than a code that was typed
    painter.setPen(toneColour(Tone::Tertiary, palette()));
    painter.drawText(rect(), Qt::AlignCenter, placeholderText());
}

} // namespace korvel
