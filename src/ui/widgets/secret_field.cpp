#include "ui/widgets/secret_field.h"

#include <QAccessible>
#include <QLineEdit>

namespace korvel {

namespace {

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

void makeSecret(QLineEdit &field) {
    field.setEchoMode(QLineEdit::Password);
    if (const auto before = QAccessible::installUpdateHandler(withoutSecrets); before != withoutSecrets)
        nextHandler = before;
}

} // namespace korvel
