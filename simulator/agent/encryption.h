#pragma once

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QJsonObject>
#include <QSet>
#include <QString>
#include <functional>

namespace korvel::sim {

/// A device that asks to join the account's encryption.
struct JoinRequest {
    QString pendingId;
    QString code; ///< Six digits, which that device shows and the user types on the Mac.
};

/// The encryption of this Mac and of what it sees of its account: one document that the agent reports, and that whoever
/// simulates the phone and the account changes, whether the agent runs or not. Another sign-in starts it over.
///
/// The document holds the keys of the agent's report and, besides, `signIn`, `began`, `due` (ms since the epoch: when
/// the state goes on), `phone`, `code`, `wrongCodes`, `drawn` (identities given out) and a device's own `code`.
///
/// Each act returns true, or a text, when it does what its name says; while nobody is signed in on the Mac, nothing
/// about the Mac is allowed.
class Encryption {
public:
    /// `config` tells which sign-in the state belongs to.
    Encryption(const HomePaths &paths, AgentConfig config);

    /// The state that the agent reports; "off" while nobody is signed in.
    QString state() const;
    /// The pairing code that the Mac shows; empty when it shows none, and once it is paired.
    QString pairCode() const;
    /// The "e2ee" object of the health report; the devices of `checking` are busy.
    QJsonObject report(bool online, const QSet<QString> &checking) const;

    /// The phone signs in to the account: a Mac that is "waiting" shows a code.
    bool phoneSignIn();
    /// Types a code on the phone: the right one pairs the Mac, a wrong one makes a new code; the fifth fails the
    /// pairing.
    bool type(const QString &code);
    /// Types the code that the Mac shows.
    bool typeRight();
    /// Puts the Mac into a state by its name: "pending" with a new code, "expired" for three seconds.
    bool setState(const QString &name);
    /// `platform` as the report has it: ios, android, mac, windows, linux, or another.
    JoinRequest requestJoin(const QString &name, const QString &platform);
    /// Raises a security alarm, or the alarm of an encryption reset. Returns its id.
    QString raiseAlarm(const QString &text);
    QString raiseResetAlarm();

    /// Acts on a request to the agent: the endpoint's path and the body. The failure's code; empty: done.
    QString act(const QByteArray &path, const QJsonObject &body);
    /// The paths of those endpoints.
    static QList<QByteArray> endpoints();

private:
    QJsonObject current() const;
    bool change(const std::function<bool(QJsonObject &)> &event) const;

    HomePaths paths;
    AgentConfig config;
    Document document;
};

} // namespace korvel::sim
