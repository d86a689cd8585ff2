#pragma once

#include "simulator/agent/agent_config.h"
#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QJsonObject>
#include <QSet>
#include <QString>
#include <functional>

namespace korvel::sim {

/// A device that requests to join the account's encryption.
struct JoinRequest {
    QString pendingId;
    QString code; ///< Six digits that the device shows and the user types on the Mac.
};

/// The encryption of this Mac, with its view of the account: one document that the agent reports and that the simulated
/// phone and account change, whether or not the agent runs. A new sign-in resets it.
///
/// The document contains the keys of the agent's report, and also `signIn`, `began`, `due` (ms since the epoch: time of
/// the next state), `phone`, `code`, `wrongCodes`, `drawn` (identities given out) and the `code` of each device.
///
/// Operations return true, or a text, on success. While nobody is signed in on the Mac, operations on the Mac fail.
class Encryption {
public:
    /// `config` identifies the sign-in that the state belongs to.
    Encryption(const HomePaths &paths, AgentConfig config);

    /// The state that the agent reports; "off" if nobody is signed in.
    QString state() const;
    /// The pairing code that the Mac shows; empty if it shows none or is paired.
    QString pairCode() const;
    /// The "e2ee" object of the health report. The devices in `checking` are busy.
    QJsonObject report(bool online, const QSet<QString> &checking) const;

    /// The phone signs in to the account. A "waiting" Mac shows a code.
    bool phoneSignIn();
    /// Types a code on the phone. The right one pairs the Mac, a wrong one causes a new code, the fifth wrong one fails
    /// the pairing.
    bool type(const QString &code);
    /// Types the code that the Mac shows.
    bool typeRight();
    /// Sets the Mac's state by name: "pending" with a new code, "expired" for three seconds.
    bool setState(const QString &name);
    /// `platform`: ios, android, mac, windows, linux, or another one.
    JoinRequest requestJoin(const QString &name, const QString &platform);
    /// Raises a security alarm, or the alarm of an encryption reset. Returns its id.
    QString raiseAlarm(const QString &text);
    QString raiseResetAlarm();

    /// Processes a request to the agent. Returns the failure's code; empty on success.
    QString act(const QByteArray &path, const QJsonObject &body);
    /// The paths that act() accepts.
    static QList<QByteArray> endpoints();

private:
    QJsonObject current() const;
    bool change(const std::function<bool(QJsonObject &)> &event) const;

    HomePaths paths;
    AgentConfig config;
    Document document;
};

} // namespace korvel::sim
