#include "ui/widgets/menu_widget.h"

#include "base/plain_text.h"

#include <QPalette>
#include <QTextDocument>
#include <algorithm>

namespace korvel {

namespace {

/// Whether the QAction of `a` can be reused for `b`.
bool sameKind(const MenuEntry &a, const MenuEntry &b) {
    return a.isSeparator() == b.isSeparator() && a.action == b.action && a.payload == b.payload;
}

/// Information lines are disabled entries, and the first one is the main information. Their text needs a contrast of at
/// least 4.5:1, but less than enabled entries.
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
    // Qt converts only the first "&" of an exported title to the mnemonic mark "_".
    text.replace(u'_', QStringLiteral("__"));
    if (const qsizetype first = text.indexOf(u'&'); first >= 0)
        text.insert(first, u'&');
    return text;
}

QString plainToolTip(const QString &text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<span>") + text.toHtmlEscaped() + QStringLiteral("</span>")
                                     : text;
}

QString fittedTitle(const MenuEntry &entry, const QFontMetrics &metrics) {
    // Measuring is the most expensive step, and longer texts do not fit.
    constexpr qsizetype MAX_MEASURED = 320;
    const QString whole = entry.title + entry.detail;
    if (whole.size() <= MAX_MEASURED && metrics.horizontalAdvance(whole) <= MAX_ENTRY_WIDTH)
        return whole;
    const QString title = entry.title.size() <= MAX_MEASURED
                              ? entry.title
                              : entry.title.first(MAX_MEASURED / 2) + u'…' + entry.title.last(MAX_MEASURED / 2);
    return metrics.elidedText(title, Qt::ElideMiddle, MAX_ENTRY_WIDTH);
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
    // Replaces only the actions between the common head and tail.
    for (qsizetype i = head; i < from.size() - tail; ++i)
        delete actions.at(i);
    QAction *const next = tail > 0 ? actions.at(from.size() - tail) : nullptr;
    QList<QAction *> made;
    for (qsizetype i = head; i < to.size() - tail; ++i)
        made.append(makeAction(to[i]));
    qmenu.insertActions(next, made);
    actions = actions.first(head) + made + actions.last(tail);
    const auto update = [&](qsizetype at, const MenuEntry &before) {
        if (to[at] != before)
            write(*actions.at(at), to[at]);
    };
    for (qsizetype i = 0; i < head; ++i)
        update(i, from[i]);
    for (qsizetype i = 1; i <= tail; ++i)
        update(to.size() - i, from[from.size() - i]);
    shown = view;
}

QAction *MenuWidget::makeAction(const MenuEntry &entry) {
    auto *action = new QAction(&qmenu);
    write(*action, entry);
    if (entry.action != Action::None)
        QObject::connect(action, &QAction::triggered, action, [this, action] {
            // Deferred: the handler may change the menu and delete this action.
            const MenuEntry picked = shown.entries.value(actions.indexOf(action));
            QMetaObject::invokeMethod(
                &qmenu, [this, picked] { chosen(picked); }, Qt::QueuedConnection);
        });
    return action;
}

void MenuWidget::write(QAction &action, const MenuEntry &entry) {
    const QString title = fittedTitle(entry, qmenu.fontMetrics());
    const QString cutOff = title.startsWith(entry.title) ? QString() : entry.title;
    const QString separator = cutOff.isEmpty() || entry.toolTip.isEmpty() ? QString() : QStringLiteral(" · ");
    // QAction notifies the panel only of properties that change.
    action.setSeparator(entry.isSeparator());
    action.setText(actionText(title, host));
    action.setEnabled(entry.enabled || entry.isSeparator());
    action.setToolTip(plainToolTip(cutOff + separator + entry.toolTip));
    // Otherwise Qt moves entries named "Quit" or "Settings" to the application menu on macOS.
    action.setMenuRole(QAction::NoRole);
}

} // namespace korvel
