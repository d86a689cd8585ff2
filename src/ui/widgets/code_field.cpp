#include "ui/widgets/code_field.h"

#include "e2ee/pair_code.h"
#include "ui/widgets/text_styles.h"

#include <QKeyEvent>
#include <QStyle>
#include <QStyleOption>

namespace korvel {

namespace {
constexpr int OWN_MARGIN = 2; // of a line edit, between its contents and its text
}

PairCodeField::PairCodeField(QWidget *parent) : QLineEdit(parent) {
    setPlaceholderText(QStringLiteral("000 000"));
    setInputMethodHints(Qt::ImhPreferNumbers | Qt::ImhNoPredictiveText);
    setFixedSize(220, 36);
    placeText();
    connect(this, &QLineEdit::textChanged, this, [this] { placeText(); });
    connect(this, &QLineEdit::textEdited, this, [this] { controlTextDidChange(); });
}

bool PairCodeField::isComplete() const { return codeDigits(text()).size() == 6; }

void PairCodeField::controlTextDidChange() {
    const CodeText formatted = formatCode({text(), cursorPosition()});
    // Only when it differs: setting a text moves the caret.
    if (formatted.text != text()) {
        setText(formatted.text);
        setCursorPosition(static_cast<int>(formatted.caret));
    }
    if (onEdited)
        onEdited();
}

void PairCodeField::keyPressEvent(QKeyEvent *event) {
    // The space between the groups is not part of the code: deleting across it deletes a digit.
    if (!hasSelectedText()) {
        const int caret = cursorPosition();
        if (event->key() == Qt::Key_Backspace && caret > 0 && text().at(caret - 1) == u' ')
            setCursorPosition(caret - 1);
        else if (event->key() == Qt::Key_Delete && caret < text().size() && text().at(caret) == u' ')
            setCursorPosition(caret + 1);
    }
    QLineEdit::keyPressEvent(event);
}

/// Centres the code. An empty field is aligned left with a margin: a centred QLineEdit puts the caret in the middle and
/// hides the placeholder while it has the focus.
void PairCodeField::placeText() {
    const bool empty = text().isEmpty();
    setAlignment(empty ? Qt::AlignLeft | Qt::AlignVCenter : Qt::AlignCenter);
    setFont(codeFont(24, empty ? QFont::Normal : QFont::DemiBold));
    setTextMargins({});
    if (!empty)
        return;
    QStyleOptionFrame frame;
    initStyleOption(&frame);
    const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &frame, this);
    const int spare = contents.width() - fontMetrics().horizontalAdvance(placeholderText());
    setTextMargins(spare / 2 - OWN_MARGIN, 0, 0, 0);
}

} // namespace korvel
