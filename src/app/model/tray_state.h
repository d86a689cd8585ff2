#pragma once

#include "base/scheduler.h"

#include <QJsonObject>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

namespace korvel {

/// What the agent's last answer, or its silence, says; and what is known of its launchd job.
struct HealthState {
    bool running = false;               ///< The agent answered the last poll.
    bool online = false;                ///< The agent reports a live connection to the account server.
    bool authDead = false;              ///< The agent reports that its sign-in is no longer accepted.
    bool authDeadNotified = false;      ///< The user has been told of this loss of the sign-in.
    bool accountGone = false;           ///< The account was deleted on the server.
    std::optional<bool> jobLoaded = {}; ///< Whether the agent's job is loaded; none: not known yet.
    Instant jobCheckedAt = DISTANT_PAST;
    quint64 jobChanges = 0;                      ///< Counts what makes a look at the job that is under way outdated.
    std::optional<Instant> startingUntil = {};   ///< Until when a silent agent counts as starting.
    std::optional<Instant> connectingSince = {}; ///< Since when the agent runs without being online.
    qint64 sessions = 0;
    QString account = {};
    QString agentVer = {};
    bool operator==(const HealthState &) const = default;
};

struct ServiceState {
    bool busy = false; ///< Pause or resume is under way.
    bool repairing = false;
    bool repairFailed = false;
    bool operator==(const ServiceState &) const = default;
};

struct PermissionState {
    std::optional<bool> permsOk = {}; ///< none: not known
    QStringList permsMissing = {};
    QList<QJsonObject> permItems = {}; ///< One object a permission, as the agent sent it.
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
    qint64 bytes = 0; ///< 0: not said
    bool operator==(const UpdateInfo &) const = default;
};

struct UpdateState {
    std::optional<UpdateInfo> updateAvail = {};
    std::optional<Instant> updateCheckedAt = {};
    bool updateBusy = false;
    bool updatePrompting = false;      ///< An administrator is asked for, or already installs.
    std::optional<int> updatePct = {}; ///< Percent, only while downloading.
    bool updateNotified = false;
    QString updatedTo = {}; ///< What was installed in this run; it takes over when the tray starts anew.
    bool operator==(const UpdateState &) const = default;
};

/// A device whose code was wrong and is to be asked for again.
struct E2Retry {
    QJsonObject request = {};
    QString error = {};         ///< What the agent says of the last code.
    Instant due = DISTANT_PAST; ///< Not before.
    bool operator==(const E2Retry &) const = default;
};

/// The agent's encryption report as received, and which of its prompts were shown.
struct E2State {
    QJsonObject e2 = {};
    QSet<QString> e2ShownPending = {};
    QSet<QString> e2ShownAlarms = {};
    QSet<QString> e2Answering = {};
    QList<E2Retry> e2Retries = {}; ///< In the order of their verdicts.
    QString e2LastState = {};      ///< The state that the last reaction saw.
    bool operator==(const E2State &) const = default;
};

/// The pairing window's part of the state.
struct PairState {
    bool pairAutoShown = false; ///< It opened by itself once.
    bool pairSawCode = false;   ///< It has shown a code, or the mark of success, since it was opened.
    bool pairClosing = false;   ///< Success is shown; it will close itself.
    bool pairRenewing = false;  ///< A new code has been asked for.
    bool pairRelogin = false;   ///< Its button starts a sign-in.
    bool pairLogout = false;    ///< Its button starts a sign-out.
    bool pairPreview = false;   ///< It is drawn for review: on no screen, and whatever the sign-in.
    bool operator==(const PairState &) const = default;
};

/// A sign-in that the user carries out in a web browser, while it is open.
struct BrowserLoginState {
    std::optional<QString> browserLoginId = {};  ///< The agent's name for it.
    std::optional<QString> browserLoginURL = {}; ///< The page in the browser.
    Instant browserLoginUntil = DISTANT_PAST;    ///< When the page stops being good; outlives the attempt.
    bool operator==(const BrowserLoginState &) const = default;
};

struct MenuState {
    bool optionKey = false; ///< Whether Option was held when the menu opened last.
    bool operator==(const MenuState &) const = default;
};

/// Everything that changes while the tray runs. Owned by TrayApp, touched on the main thread only.
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
