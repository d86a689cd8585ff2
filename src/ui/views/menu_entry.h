#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

namespace korvel {

/// The effect of choosing a menu entry.
enum class Action {
    None,
    BrowserLogin,
    LoginDialog,
    LogoutDialog,
    MenuToggle,
    CheckUpdate,
    InstallUpdate,
    CancelInstall,
    Repair,
    OpenPermPane,
    AskPerms,
    ShowPair,
    E2Pending,
    E2Alarm,
    E2AsrInstall,
    OpenLog,
    QuitAll,
};

/// One menu entry, as data. An entry without an action is an information line and cannot be chosen.
struct MenuEntry {
    QString title; ///< Plain text. Empty with Action::None: a separator.
    Action action = Action::None;
    bool enabled = false;
    QString detail = {}; ///< Appended to the title if the line has room for both.
    QString toolTip = {};
    QJsonValue payload = QJsonValue::Undefined; ///< Argument of the action: a request, an alarm or an address.

    bool isSeparator() const { return title.isEmpty() && action == Action::None; }
    bool operator==(const MenuEntry &) const = default;
};

/// The whole menu from top to bottom.
struct MenuView {
    QList<MenuEntry> entries;
    bool operator==(const MenuView &) const = default;
};

MenuEntry menuSeparator();
/// An information line.
MenuEntry menuLine(const QString &title);
/// An enabled entry that can be chosen.
MenuEntry menuItem(const QString &title, Action action, const QString &toolTip = {});

} // namespace korvel
