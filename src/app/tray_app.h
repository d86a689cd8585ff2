#pragma once

#include "account/after_sign_in.h"
#include "account/binding.h"
#include "account/browser_login.h"
#include "account/cn_login.h"
#include "account/login_dialog.h"
#include "account/sign_out.h"
#include "app/model/paths.h"
#include "app/model/situation.h"
#include "app/timed_notices.h"
#include "e2ee/alarms.h"
#include "e2ee/approval.h"
#include "e2ee/pairing.h"
#include "e2ee/prompts.h"
#include "e2ee/speech_install.h"
#include "permissions/permissions.h"
#include "ports/status_item.h"
#include "service/agent_command.h"
#include "service/agent_config.h"
#include "service/agent_control.h"
#include "service/repair.h"
#include "service/sync_toggle.h"
#include "status/health_poll.h"
#include "status/startup_report.h"
#include "ui/views/icon_view.h"
#include "ui/views/menu_entry.h"
#include "update/update_check.h"
#include "update/update_install.h"

#include <optional>

namespace korvel {

/// The platform services of a TrayApp.
struct TrayPorts {
    Scheduler &scheduler;
    HttpClient &agent;
    ServerClient &servers;
    Programs &programs;
    ServiceControl &services;
    Desktop &desktop;
    StatusItem &item;
    NoticePanel &noticePanel;
    Alerts &alerts;
    PairPanel &pairPanel;
    LoginPanel &loginPanel;
    QString bundlePath = {};              ///< The tray's own bundle, which contains the agent program.
    std::optional<QString> agentBin = {}; ///< The developer's override of the agent program.
};

/// The application: holds the state, connects the features and forwards user actions. Construction has no side effects.
class TrayApp : private Renderer {
public:
    TrayApp(const FixedConfig &fixed, const Paths &paths, const TrayPorts &ports);

    /// Runs the launch sequence. `executablePath` is this program's own path, symbolic links resolved.
    void launch(const QString &executablePath);
    /// The user opens the application again while it runs.
    void reopen();
    void stateChanged() override;

    const TrayState &currentState() const { return state; }
    Situation situation() const;

private:
    void perform(const MenuEntry &entry);
    void menuOpening();
    void scheduleUpdateChecks();
    void render();
    PairContext pairContext() const;

    const FixedConfig &fixed;
    const Paths &paths;
    const TrayPorts ports;

    TrayState state;
    AgentConfig config;
    ConfigWaiter configWaiter;
    AgentApi api;
    TimedNotices notices;
    HealthPoll health;
    AgentCommand command;
    Repair repair;
    AgentControl agent;
    Permissions permissions;
    SyncToggle sync;
    StartupReport report;
    Pairing pairing;
    Approval approval;
    Alarms alarms;
    SpeechInstall speech;
    Prompts prompts;
    AfterSignIn afterSignIn;
    Binding binding;
    CnLogin cnLogin;
    BrowserLogin browserLogin;
    LoginDialog loginDialog;
    SignOut signOut;
    UpdateCheck updateCheck;
    UpdateInstall updateInstall;

    std::optional<Situation> shown; ///< From the last render().
    bool renderPending = false;
    std::optional<IconView> shownIcon;
    std::optional<MenuView> shownMenu;
    Timer firstUpdateCheck;
    Timer updateChecks;
    Alive alive;
};

} // namespace korvel
