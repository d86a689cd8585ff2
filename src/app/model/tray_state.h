#pragma once

#include "base/scheduler.h"

#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

namespace korvel {

/// The result of the last health poll, and the state of the agent's launchd job.
struct HealthState {
    bool running = false;               ///< The agent responded to the last poll.
    bool online = false;                ///< The agent reports a live connection to the account server.
    bool authDead = false;              ///< The agent reports that its sign-in was rejected.
    bool authDeadNotified = false;      ///< The user has been notified of the rejected sign-in.
    bool accountGone = false;           ///< The account was deleted on the server.
    std::optional<bool> jobLoaded = {}; ///< None: not known yet.
    Instant jobCheckedAt = DISTANT_PAST;
    quint64 jobChanges = 0;                      ///< Incremented to invalidate job checks in flight.
    std::optional<Instant> startingUntil = {};   ///< End of the time in which a silent agent counts as starting.
    std::optional<Instant> connectingSince = {}; ///< Since when the agent has been running without being online.
    qint64 sessions = 0;
    QString account = {};
    QString agentVer = {};
    bool operator==(const HealthState &) const = default;
};

struct ServiceState {
    bool busy = false; ///< Pause or resume is in progress.
    bool repairing = false;
    bool repairFailed = false;
    bool operator==(const ServiceState &) const = default;
};

struct PermissionState {
    std::optional<bool> permsOk = {}; ///< None: not known.
    QStringList permsMissing = {};
    QList<QJsonObject> permItems = {}; ///< One object per permission, as the agent sent it.
    std::optional<Instant> permsFetchedAt = {};
    bool permsRequesting = false;
    bool permsFetchFailed = false;
    bool permsFetching = false;
    bool operator==(const PermissionState &) const = default;
};

/// One validated update package.
struct UpdateInfo {
    QString ver = {};
    QString file = {};
    QString sha = {};
    QString sig = {};
    qint64 bytes = 0; ///< 0: unknown.
    bool operator==(const UpdateInfo &) const = default;
};

struct UpdateState {
    std::optional<UpdateInfo> updateAvail = {};
    std::optional<Instant> updateCheckedAt = {};
    bool updateBusy = false;
    bool updatePrompting = false;      ///< The administrator prompt is open, or the installation is running.
    std::optional<int> updatePct = {}; ///< Percent, only while downloading.
    bool updateNotified = false;
    QString updatedTo = {}; ///< Version installed during this run; takes effect when the tray restarts.
    bool operator==(const UpdateState &) const = default;
};

/// A device to prompt for again after a wrong code.
struct E2Retry {
    QJsonObject request = {};
    QString error = {};         ///< The agent's message about the last code.
    Instant due = DISTANT_PAST; ///< Earliest time of the next prompt.
    bool operator==(const E2Retry &) const = default;
};

/// The agent's encryption report as received, and the prompts already shown.
struct E2State {
    QJsonObject e2 = {};
    QSet<QString> e2ShownPending = {};
    QSet<QString> e2ShownAlarms = {};
    QSet<QString> e2Answering = {};
    QList<E2Retry> e2Retries = {}; ///< Oldest verdict first.
    QString e2LastState = {};      ///< State at the last reaction.
    bool operator==(const E2State &) const = default;
};

/// State of the pairing window.
struct PairState {
    bool pairAutoShown = false; ///< Has opened automatically once.
    bool pairSawCode = false;   ///< Has shown a code, or the success mark, since it opened.
    bool pairClosing = false;   ///< Shows success and will close automatically.
    bool pairRenewing = false;  ///< A new code has been requested.
    bool pairRelogin = false;   ///< The button starts a sign-in.
    bool pairLogout = false;    ///< The button starts a sign-out.
    bool pairPreview = false;   ///< Drawn to a picture, not on a screen; ignores the sign-in state.
    bool operator==(const PairState &) const = default;
};

/// A sign-in in a web browser, while it is in progress.
struct BrowserLoginState {
    std::optional<QString> browserLoginId = {};  ///< The agent's identifier of the sign-in.
    std::optional<QString> browserLoginURL = {}; ///< The page in the browser.
    Instant browserLoginUntil = DISTANT_PAST;    ///< Expiry of the page; kept after the attempt ends.
    bool operator==(const BrowserLoginState &) const = default;
};

struct MenuState {
    bool optionKey = false; ///< Whether Option was held when the menu last opened.
    bool operator==(const MenuState &) const = default;
};

/// All mutable state of the tray. Owned by TrayApp, used on the main thread only.
struct TrayState {
    HealthState health;
    ServiceState service;
    PermissionState permissions;
    UpdateState update;
    E2State e2ee;
    PairState pairing;
    BrowserLoginState browserLogin;
    MenuState menu;
    bool operator==(const TrayState &) const = default;
};

} // namespace korvel
