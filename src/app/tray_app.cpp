#include "app/tray_app.h"

#include "account/server_rules.h"
#include "app/reopen.h"
#include "base/log.h"
#include "service/agent_config.h"
#include "service/login_item.h"
#include "status/status_view.h"
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
      health(state, fixed, config, api, p.services, p.scheduler, notices, *this,
             {.e2Prompt = [this] { prompts.e2Prompt(pairContext()); },
              .fetchPerms = [this] { permissions.fetchPerms(); }}),
      command(p.programs, p.scheduler, p.bundlePath, p.agentBin),
      repair(state, fixed, paths, command, p.programs, p.scheduler, notices, health, *this),
      agent(state, fixed, paths, config, p.services, p.programs, p.desktop, p.scheduler, notices, repair),
      permissions(state.permissions, state.health, api, p.desktop, p.scheduler, notices, *this),
      sync(
          state, fixed, paths, config, p.services, p.scheduler, notices, health, *this, repair,
          {.statusLine = [this] { return statusLine(situation()); }, .showLogin = [this] { loginDialog.showLogin(); }}),
      report(p.scheduler, notices, health, {.situation = [this] { return situation(); }}),
      pairing(state.e2ee, state.pairing, api, p.pairPanel, p.scheduler, notices, health,
              {.context = [this] { return pairContext(); },
               .startBrowserLogin = [this] { browserLogin.startBrowserLogin(); },
               .logoutDialog = [this] { signOut.logoutDialog(); }}),
      approval(state.e2ee, api, p.alerts, p.scheduler, notices, health),
      alarms(api, p.alerts, notices, health, pairing), speech(api, notices),
      prompts(state.e2ee, state.pairing, p.alerts, notices, pairing, approval, alarms),
      afterSignIn(state.health, p.scheduler, notices, health, *this, agent,
                  {.stopBrowserLogin = [this] { browserLogin.stopBrowserLogin(); },
                   .pairAfterLogin = [this] { pairing.pairAfterLogin(); }}),
      binding(state.health, fixed, config, configWaiter, p.servers, p.desktop, health, agent),
      cnLogin(state.health, fixed, config, p.loginPanel, p.desktop, p.scheduler, command, afterSignIn),
      browserLogin(state.browserLogin, state.health, fixed, api, p.desktop, p.scheduler, notices, cnLogin, agent,
                   afterSignIn),
      loginDialog(fixed, config, p.desktop, p.alerts, notices, cnLogin, binding, afterSignIn),
      signOut(state, fixed, config, configWaiter, api, p.alerts, p.services, p.scheduler, notices, health, binding,
              browserLogin),
      updateCheck(state.update, fixed, config, p.servers, p.scheduler, notices, *this),
      updateInstall(state.update, fixed, paths, config, p.servers, p.programs, p.desktop, p.scheduler, notices, health,
                    *this) {}

PairContext TrayApp::pairContext() const {
    return {
        .bound = config.readCfg().bound(), .authDead = state.health.authDead, .accountGone = state.health.accountGone};
}

Situation TrayApp::situation() const {
    const AgentCfg cfg = config.readCfg();
    Situation now{.state = state,
                  .isCn = fixed.IS_CN,
                  .version = fixed.VERSION,
                  .timing = timingOf(state.health, ports.scheduler.now()),
                  .bound = cfg.bound(),
                  .plistExists = plistExists(paths),
                  .server = serverOf(fixed, cfg.server)};
    // Nothing on the screen depends on when permissions are fetched, and a fetch must not be a reason to draw.
    now.state.permissions.permsFetching = false;
    now.state.permissions.permsFetchedAt.reset();
    return now;
}

void TrayApp::launch(const QString &executablePath) {
    log(QStringLiteral("[tray] ") + fixed.EDITION_MARK);
    ports.desktop.installEditMenu(editMenu());
    ports.item.show({.menuOpening = [this] { menuOpening(); }, .chosen = [this](const MenuEntry &e) { perform(e); }});
    render();
    ensureTrayLoginItem(paths, executablePath);
    const Situation atLaunch = situation();
    // The agent may start at the same time as the tray: its initial silence is no fault.
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

void TrayApp::stateChanged() {
    if (!std::exchange(renderPending, true))
        ports.scheduler.beforeWaiting(alive.guard([this] { render(); }));
}

void TrayApp::render() {
    renderPending = false;
    Situation now = situation();
    if (now == shown) // the usual case
        return;
    shown = std::move(now);
    if (IconView icon = iconView(*shown); icon != shownIcon)
        ports.item.apply(*(shownIcon = std::move(icon)));
    if (MenuView menu = menuView(*shown); menu != shownMenu)
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
