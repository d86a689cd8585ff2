#include "ui/menu/menu_view.h"

#include "app/model/wording.h"
#include "e2ee/e2ee_views.h"
#include "permissions/permission_views.h"
#include "status/status_view.h"

namespace korvel {

namespace {

using Entries = QList<MenuEntry>;

constexpr qsizetype USUAL_ENTRIES = 24;

void appendSeparator(Entries &entries) {
    if (!entries.isEmpty() && !entries.last().isSeparator())
        entries.append(menuSeparator());
}

void appendPasswordSignIn(Entries &entries, const Situation &s) {
    if (!s.isCn)
        entries.append(menuItem(L(u"用密码登录…", u"Sign In with Password…"), Action::LoginDialog));
}

void appendSignInAgain(Entries &entries, const Situation &s) {
    if (!s.bound || !s.state.health.authDead)
        return;
    entries.append(menuItem(s.state.health.accountGone ? L(u"使用其他账号登录…", u"Sign In with Another Account…")
                                                       : L(u"重新登录…", u"Sign In Again…"),
                            Action::BrowserLogin));
    appendPasswordSignIn(entries, s);
}

MenuEntry updateItem(const Situation &s) {
    const UpdateState &update = s.state.update;
    MenuEntry item;
    if (!update.updateAvail) {
        item =
            menuItem(L(u"检查更新…（当前", u"Check for Updates… (") + s.version + L(u"）", u")"), Action::CheckUpdate);
    } else {
        const QString &version = update.updateAvail->ver;
        QString title = L(u"⬆ 更新到 ", u"⬆ Update to ") + version + u'…';
        if (update.updateBusy && update.updatePct)
            title = L(u"正在下载 ", u"Downloading ") + version + QStringLiteral("… %1%").arg(*update.updatePct);
        else if (update.updateBusy)
            title = L(u"正在安装 ", u"Installing ") + version + u'…';
        item = menuItem(title, Action::InstallUpdate);
    }
    item.enabled = !update.updateBusy;
    return item;
}

MenuEntry toggleItem(const Situation &s) {
    const bool paused = !s.state.health.running && s.state.health.jobLoaded != true;
    MenuEntry item = paused
                         ? menuItem(L(u"恢复同步", u"Resume Sync"), Action::MenuToggle)
                         : menuItem(L(u"暂停同步", u"Pause Sync"), Action::MenuToggle,
                                    L(u"暂停后，手机将无法看到这台电脑，重启后仍保持暂停",
                                      u"Your phone won't see this Mac until you resume sync, even after a restart."));
    item.enabled = s.plistExists && !s.state.service.busy;
    return item;
}

void appendAccount(Entries &entries, const Situation &s) {
    if (s.bound) {
        entries.append(toggleItem(s));
        entries.append(menuItem(L(u"退出账号…", u"Sign Out…"), Action::LogoutDialog));
    } else {
        entries.append(menuItem(L(u"登录 / 注册…", u"Sign In / Sign Up…"), Action::BrowserLogin));
        appendPasswordSignIn(entries, s);
    }
}

void appendDiagnostics(Entries &entries, const Situation &s) {
    if (!s.state.menu.optionKey)
        return;
    appendSeparator(entries);
    entries.append(menuItem(L(u"查看日志…", u"Show Log…"), Action::OpenLog));
    entries.append(menuLine(L(u"服务器 ", u"Server ") + s.server));
}

} // namespace

MenuView menuView(const Situation &s) {
    Entries entries;
    entries.reserve(USUAL_ENTRIES);
    entries.append(menuLine(statusLine(s)));
    entries.append(e2MenuItems(s));
    appendSignInAgain(entries, s);
    appendSeparator(entries);
    entries.append(updateItem(s));
    if (s.state.update.updatePrompting)
        entries.append(menuItem(L(u"取消安装", u"Cancel Installation"), Action::CancelInstall));
    appendSeparator(entries);
    if (!s.plistExists && !s.state.service.repairing)
        entries.append(
            menuItem(L(u"修复 Korvel", u"Repair Korvel"), Action::Repair,
                     L(u"重新安装开机自动运行的后台服务", u"Reinstall the background service that runs at login")));
    appendAccount(entries, s);
    if (Entries permissions = permMenuItems(s); !permissions.isEmpty()) {
        appendSeparator(entries);
        entries.append(std::move(permissions));
    }
    appendDiagnostics(entries, s);
    appendSeparator(entries);
    entries.append(menuItem(L(u"退出 Korvel", u"Quit Korvel"), Action::QuitAll,
                            L(u"退出后，手机将暂时无法看到这台电脑；重新打开 Korvel 或下次开机时恢复",
                              u"Your phone won't see this Mac until Korvel opens again.")));
    return {entries};
}

bool updateCheckDue(const UpdateState &update, Instant now) {
    return !update.updateCheckedAt || now - *update.updateCheckedAt > 3600s;
}

} // namespace korvel
