#include "ui/menu_widget.h"

#include "platform/plain_text.h"
#include "ui/tool_tip.h"

#include <QPalette>
#include <algorithm>

namespace korvel {

namespace {

/// Whether one QAction can go on to show `b` where it showed `a`.
bool sameKind(const MenuEntry &a, const MenuEntry &b) {
    return a.isSeparator() == b.isSeparator() && a.action == b.action && a.payload == b.payload;
}

/// Information lines are disabled entries, and the first of them is what people open the menu for: their text has to
/// stand out from the background (at least 4.5 to 1), only less so than an entry that can be chosen.
QPalette readablePalette(QPalette palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    const auto mixed = [](int a, int b) { return (62 * a + 38 * b) / 100; };
    const QColor quiet(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                       mixed(text.blue(), ground.blue()));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, quiet);
    return palette;
}

} // namespace

QString actionText(const QString &title, MenuHost host) {
    QString text = keepOrder(title);
    if (host == MenuHost::Program)
        return text.replace(u'&', QStringLiteral("&&"));
    // Qt turns the first "&" of an exported title into the mnemonic mark "_" and leaves the others alone.
    text.replace(u'_', QStringLiteral("__"));
    if (const qsizetype first = text.indexOf(u'&'); first >= 0)
        text.insert(first, u'&');
    return text;
}

MenuWidget::MenuWidget(MenuHost h, Chosen c) : host(h), chosen(std::move(c)) {
    qmenu.setToolTipsVisible(true);
    qmenu.setPalette(readablePalette(qmenu.palette()));
}

void MenuWidget::apply(const MenuView &view) {
    const auto &from = shown.entries;
    const auto &to = view.entries;
    const qsizetype common = std::min(from.size(), to.size());
    qsizetype head = 0;
    while (head < common && sameKind(from[head], to[head]))
        ++head;
    qsizetype tail = 0;
    while (tail < common - head && sameKind(from[from.size() - 1 - tail], to[to.size() - 1 - tail]))
        ++tail;
    // Only what lies between the common head and tail comes or goes.
    for (qsizetype i = from.size() - tail - 1; i >= head; --i) {
        delete qmenu.actions().at(i);
        shown.entries.removeAt(i);
    }
    for (qsizetype i = head; i < to.size() - tail; ++i)
        insert(i, to[i]);
    for (qsizetype i = 0; i < to.size(); ++i)
        update(i, to[i]);
}

void MenuWidget::insert(qsizetype at, const MenuEntry &entry) {
    auto *action = new QAction(&qmenu);
    write(*action, entry);
    if (entry.action != Action::None)
        QObject::connect(action, &QAction::triggered, action, [this, action] {
            // Later: what follows may change the menu and delete this very action.
            const MenuEntry picked = shown.entries.value(qmenu.actions().indexOf(action));
            QMetaObject::invokeMethod(
                &qmenu, [this, picked] { chosen(picked); }, Qt::QueuedConnection);
        });
    const QList<QAction *> actions = qmenu.actions();
    qmenu.insertAction(at < actions.size() ? actions.at(at) : nullptr, action);
    shown.entries.insert(at, entry);
}

void MenuWidget::update(qsizetype at, const MenuEntry &entry) {
    if (shown.entries.at(at) == entry)
        return;
    write(*qmenu.actions().at(at), entry);
    shown.entries[at] = entry;
}

void MenuWidget::write(QAction &action, const MenuEntry &entry) {
    // QAction itself tells the panel of a property only when it changes.
    action.setSeparator(entry.isSeparator());
    action.setText(actionText(entry.title, host));
    action.setEnabled(entry.enabled || entry.isSeparator());
    action.setToolTip(plainToolTip(entry.toolTip));
    // On macOS Qt would move entries named "Quit" or "Settings" into the application menu.
    action.setMenuRole(QAction::NoRole);
}

} // namespace korvel
