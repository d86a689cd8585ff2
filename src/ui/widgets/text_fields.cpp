#include "ui/widgets/text_fields.h"

#include "e2ee/pair_code.h"
#include "ui/widgets/text_styles.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOption>

namespace korvel {

namespace {

constexpr int OWN_MARGIN = 2; // of a line edit, between its contents and its text

QAccessible::UpdateHandler nextHandler = nullptr;

bool isSecret(QObject *object) {
    const auto *field = qobject_cast<QLineEdit *>(object);
    return field && field->echoMode() != QLineEdit::Normal;
}

QString dots(const QString &text) { return QString(text.size(), QChar(0x2022)); }

void forward(QAccessibleEvent &event) {
    // Without an installed handler, Qt notifies the system.
    const auto own = QAccessible::installUpdateHandler(nextHandler);
    QAccessible::updateAccessibility(&event);
    QAccessible::installUpdateHandler(own);
}

/// Reports how much text changed and where, as screen readers need it, but not its content.
void withoutSecrets(QAccessibleEvent *event) {
    if (!isSecret(event->object()))
        return forward(*event);
    if (const auto *inserted = dynamic_cast<QAccessibleTextInsertEvent *>(event)) {
        QAccessibleTextInsertEvent hidden(event->object(), inserted->changePosition(), dots(inserted->textInserted()));
        return forward(hidden);
    }
    if (const auto *removed = dynamic_cast<QAccessibleTextRemoveEvent *>(event)) {
        QAccessibleTextRemoveEvent hidden(event->object(), removed->changePosition(), dots(removed->textRemoved()));
        return forward(hidden);
    }
    if (const auto *updated = dynamic_cast<QAccessibleTextUpdateEvent *>(event)) {
        QAccessibleTextUpdateEvent hidden(event->object(), updated->changePosition(), dots(updated->textRemoved()),
                                          dots(updated->textInserted()));
        return forward(hidden);
    }
    forward(*event);
}

} // namespace

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

void makeSecret(QLineEdit &field) {
    field.setEchoMode(QLineEdit::Password);
    if (const auto before = QAccessible::installUpdateHandler(withoutSecrets); before != withoutSecrets)
        nextHandler = before;
}

} // namespace korvel
