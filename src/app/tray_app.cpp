#include "app/tray_app.h"

#include "account/server_rules.h"
#include "app/reopen.h"
#include "base/log.h"
#include "service/login_item.h"
#include "status/status_line.h"
#include "ui/menu/menu_view.h"
#include "ui/views/edit_menu.h"

namespace korvel {

namespace {
constexpr auto LAUNCH_GRACE = 20s;
constexpr milliseconds FIRST_UPDATE_CHECK = 20s;
constexpr milliseconds UPDATE_CHECK_PERIOD = 6h;
} // namespace

TrayApp::TrayApp(const FixedConfig &f, const Paths &pa, const TrayPorts &p)
    : fixed(f), paths(pa), ports(p), config(paths), configWaiter(config, p.scheduler), api(p.agent, fixed, config),
      notices(p.noticePanel, p.desktop, p.scheduler),
      health(state, fixed, config, api, p.services, p.scheduler, healthHooks()),
      command(p.programs, p.scheduler, p.bundlePath, p.agentBin),
      repair(state, fixed, paths, command, p.programs, p.scheduler, repairHooks()),
      agent(state, fixed, paths, config, p.services, p.programs, p.desktop, p.scheduler, agentHooks()),
      permissions(state.permissions, state.health, api, p.desktop, p.scheduler, permissionHooks()),
      sync(state, fixed, paths, config, p.services, p.scheduler, syncHooks()),
      report(p.scheduler, {.poll = poll(), .situation = [this] { return situation(); }, .showHUD = showHUD()}),
      pairing(state.e2ee, state.pairing, api, p.pairPanel, p.scheduler, pairingHooks()),
      approval(state.e2ee, api, p.alerts, p.scheduler,
               {.poll = [this] { health.poll(); }, .showHUD = showHUD(), .hideHUD = [this] { notices.hideHUD(); }}),
      alarms(api, p.alerts,
             {.showHUD = showHUD(), .poll = poll(), .pairAfterLogin = [this] { pairing.pairAfterLogin(); }}),
      speech(api, {.showHUD = showHUD()}), prompts(state.e2ee, state.pairing, promptHooks()),
      afterSignIn(state.health, p.scheduler, afterSignInHooks()),
      binding(state.health, fixed, config, configWaiter, p.servers, p.desktop, bindingHooks()),
      cnLogin(state.health, fixed, config, p.loginPanel, p.desktop, p.scheduler, cnLoginHooks()),
      browserLogin(state.browserLogin, state.health, fixed, api, p.desktop, p.scheduler, browserLoginHooks()),
      loginDialog(fixed, config, p.desktop, p.alerts, loginDialogHooks()),
      signOut(state, fixed, config, configWaiter, api, p.alerts, p.services, p.scheduler, signOutHooks()),
      updateCheck(state.update, fixed, config, p.servers, p.scheduler, checkHooks()),
      updateInstall(state.update, fixed, paths, config, p.servers, p.programs, p.desktop, p.scheduler, installHooks()) {
}

std::function<void(const Notice &)> TrayApp::showHUD() {
    return [this](const Notice &notice) { notices.showHUD(notice); };
}

std::function<void(std::function<void()> then)> TrayApp::poll() {
    return [this](std::function<void()> then) { health.poll(std::move(then)); };
}

std::function<void(std::function<void()> then)> TrayApp::restartAgent() {
    return [this](std::function<void()> then) { agent.restartAgent(std::move(then)); };
}

std::function<void(const QString &user)> TrayApp::signedIn() {
    return [this](const QString &user) { afterSignIn.signedIn(user); };
}

HealthPoll::Hooks TrayApp::healthHooks() {
    return {.render = [this](const QJsonObject &cfg) { render(cfg); },
            .e2Prompt = [this](const QJsonObject &cfg) { prompts.e2Prompt(pairContext(cfg)); },
            .fetchPerms = [this] { permissions.fetchPerms(); },
            .showHUD = showHUD()};
}

Repair::Hooks TrayApp::repairHooks() {
    return {.render = [this] { render(); }, .poll = poll(), .showHUD = showHUD()};
}

Permissions::Hooks TrayApp::permissionHooks() {
    return {.render = [this] { render(); }, .showHUD = showHUD()};
}

AgentControl::Hooks TrayApp::agentHooks() {
    return {.showHUD = showHUD(), .repairService = [this] { repair.repairService({}); }};
}

SyncToggle::Hooks TrayApp::syncHooks() {
    return {.render = [this] { render(); },
            .poll = poll(),
            .showHUD = showHUD(),
            .statusLine = [this] { return statusLine(situation()); },
            .showLogin = [this] { loginDialog.showLogin(); },
            .repairService = [this] { repair.repairService({}); }};
}

Pairing::Hooks TrayApp::pairingHooks() {
    return {.context = [this] { return pairContext(config.readCfg()); },
            .poll = [this] { health.poll(); },
            .showHUD = showHUD(),
            .startBrowserLogin = [this] { browserLogin.startBrowserLogin(); },
            .logoutDialog = [this] { signOut.logoutDialog(); }};
}

Prompts::Hooks TrayApp::promptHooks() {
    return {.updatePairWindow = [this] { pairing.updatePairWindow(); },
            .pairWindowVisible = [this] { return pairing.isVisible(); },
            .alertOpen = [this] { return ports.alerts.isOpen(); },
            .askAgain = [this] { approval.askAgain(); },
            .showPairWindow = [this] { pairing.showPairWindow(OpenedBy::Itself); },
            .showApprove = [this](const QJsonObject &request) { approval.showApprove(request, OpenedBy::Itself); },
            .showAlarm = [this](const QJsonObject &alarm) { alarms.showAlarm(alarm, OpenedBy::Itself); },
            .showHUD = showHUD()};
}

AfterSignIn::Hooks TrayApp::afterSignInHooks() {
    return {.disregardOpenPolls = [this] { health.disregardOpenPolls(); },
            .render = [this] { render(); },
            .stopBrowserLogin = [this] { browserLogin.stopBrowserLogin(); },
            .showHUD = showHUD(),
            .startStoppedAgent = [this](auto then) { agent.startStoppedAgent(std::move(then)); },
            .poll = [this] { health.poll(); },
            .pairAfterLogin = [this] { pairing.pairAfterLogin(); }};
}

Binding::Hooks TrayApp::bindingHooks() {
    return {.restartAgent = restartAgent(), .disregardOpenPolls = [this] { health.disregardOpenPolls(); }};
}

CnLogin::Hooks TrayApp::cnLoginHooks() {
    return {.runOp = [this](const QJsonObject &request, auto done) { command.runAgentJson(request, std::move(done)); },
            .signedIn = signedIn()};
}

BrowserLogin::Hooks TrayApp::browserLoginHooks() {
    return {.showCnLogin = [this] { cnLogin.showCnLogin(); },
            .restartAgent = restartAgent(),
            .showHUD = showHUD(),
            .signedIn = signedIn()};
}

LoginDialog::Hooks TrayApp::loginDialogHooks() {
    return {.showCnLogin = [this] { cnLogin.showCnLogin(); },
            .performLogin = [this](const QString &user, const QString &pass, const QString &server,
                                   auto done) { binding.performLogin(user, pass, server, std::move(done)); },
            .showHUD = showHUD(),
            .hideHUD = [this] { notices.hideHUD(); },
            .signedIn = signedIn()};
}

SignOut::Hooks TrayApp::signOutHooks() {
    return {.unbindCurrent = [this](std::function<void()> then) { binding.unbindCurrent(std::move(then)); },
            .abandonLogins = [this] { binding.abandonLogins(); },
            .stopBrowserLogin = [this] { browserLogin.stopBrowserLogin(); },
            .poll = [this] { health.poll(); },
            .showHUD = showHUD()};
}

UpdateCheck::Hooks TrayApp::checkHooks() {
    return {.render = [this] { render(); }, .showHUD = showHUD()};
}

UpdateInstall::Hooks TrayApp::installHooks() {
    return {.render = [this] { render(); }, .poll = [this] { health.poll(); }, .showHUD = showHUD()};
}

PairContext TrayApp::pairContext(const QJsonObject &cfg) const {
    return {.bound = bound(cfg), .authDead = state.health.authDead, .accountGone = state.health.accountGone};
}

Situation TrayApp::situation() const { return situation(config.readCfg()); }

Situation TrayApp::situation(const QJsonObject &cfg) const {
    return {.state = state,
            .config = fixed,
            .timing = timingOf(state.health, ports.scheduler.now()),
            .bound = bound(cfg),
            .plistExists = plistExists(paths),
            .server = serverOf(fixed, cfg)};
}

void TrayApp::launch(const QString &executablePath) {
    log(QStringLiteral("[tray] ") + fixed.EDITION_MARK);
    ports.desktop.installEditMenu(editMenu());
    ports.item.show({.menuOpening = [this] { menuOpening(); }, .chosen = [this](const MenuEntry &e) { perform(e); }});
    render();
    ensureTrayLoginItem(paths, executablePath);
    const Situation atLaunch = situation();
    // The agent starts with the login session too: its first silent seconds are no fault.
    if (atLaunch.bound && atLaunch.plistExists)
        state.health.startingUntil = ports.scheduler.now() + LAUNCH_GRACE;
    render();
    const auto firstPoll = [this] { health.poll([this] { report.startupReport(0); }); };
    if (atLaunch.plistExists)
        agent.ensureAgentLoaded(firstPoll);
    else
        repair.repairService(firstPoll);
    health.start();
    scheduleUpdateChecks();
}

void TrayApp::scheduleUpdateChecks() {
    firstUpdateCheck = ports.scheduler.after(FIRST_UPDATE_CHECK, [this] { updateCheck.checkUpdate(false); });
    updateChecks = ports.scheduler.every(UPDATE_CHECK_PERIOD, [this] { updateCheck.checkUpdate(false); });
}

void TrayApp::render() { render(config.readCfg()); }

void TrayApp::render(const QJsonObject &cfg) {
    const Situation now = situation(cfg);
    if (seen && seen->is(now)) // as nearly always
        return;
    seen.emplace(now);
    if (IconView icon = iconView(now); icon != shownIcon)
        ports.item.apply(*(shownIcon = std::move(icon)));
    if (MenuView menu = menuView(now); menu != shownMenu)
        ports.item.apply(*(shownMenu = std::move(menu)));
}

void TrayApp::menuOpening() {
    state.menu.optionKey = ports.desktop.optionKeyHeld();
    if (updateCheckDue(state.update, ports.scheduler.now()))
        updateCheck.checkUpdate(false);
    if (state.health.running)
        permissions.fetchPerms();
    render();
}

void TrayApp::reopen() {
    switch (reopenAction(situation())) {
    case ReopenAction::SignIn:
        return browserLogin.startBrowserLogin();
    case ReopenAction::Repair:
        return repair.repairService({});
    case ReopenAction::ShowPairingCode:
        return pairing.showPairWindow(OpenedBy::User);
    case ReopenAction::ToggleAgent:
        return sync.toggleAgent();
    }
}

void TrayApp::perform(const MenuEntry &entry) {
    switch (entry.action) {
    case Action::None:
        return;
    case Action::BrowserLogin:
        return browserLogin.startBrowserLogin();
    case Action::LoginDialog:
        return loginDialog.showLogin();
    case Action::LogoutDialog:
        return signOut.logoutDialog();
    case Action::MenuToggle:
        return sync.toggleAgent();
    case Action::CheckUpdate:
        return updateCheck.checkUpdate(true);
    case Action::InstallUpdate:
        return updateInstall.installUpdate();
    case Action::CancelInstall:
        return updateInstall.cancelInstall();
    case Action::Repair:
        return repair.repairClicked();
    case Action::OpenPermPane:
        return permissions.openPermPane(entry.payload);
    case Action::AskPerms:
        return permissions.askPerms();
    case Action::ShowPair:
        return pairing.showPairWindow(OpenedBy::User);
    case Action::E2Pending:
        return approval.showApprove(entry.payload.toObject(), OpenedBy::User);
    case Action::E2Alarm:
        return alarms.showAlarm(entry.payload.toObject(), OpenedBy::User);
    case Action::E2AsrInstall:
        return speech.e2AsrInstall();
    case Action::OpenLog:
        return agent.openLog();
    case Action::QuitAll:
        return agent.quitAll();
    }
}

} // namespace korvel
