#pragma once

#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QList>
#include <optional>

namespace korvel::sim {

/// A Mac's right to act for an account.
struct Credential {
    QString token;
    QString agentId;
    QString account;
    QString host; ///< Name of the Mac.
    bool released = false;
};

/// The state of the account server: one document that the server, the agent and the simulated user change, whether or
/// not the server runs. Initially it has the account sam@example.com, 13800000000, "open sesame".
///
/// `users` by name, `credentials` by token, `codes` by phone number, `signIns` (in the browser) by id; `newest` is the
/// id of the last sign-in. Times are in milliseconds since the epoch.
class Accounts {
public:
    explicit Accounts(const HomePaths &paths) : document(paths.state(QStringLiteral("account.json"))) {}

    // Users.

    /// Adds an account; `phone` may be empty. False if the name is empty, or the name or the phone number is in use.
    bool add(const QString &name, const QString &phone, const QString &password);
    /// The name of the account with that name or phone number; empty if there is none.
    QString find(const QString &nameOrPhone) const;
    /// As above, but empty if the password is wrong.
    QString find(const QString &nameOrPhone, const QString &password) const;
    bool setPassword(const QString &name, const QString &password);

    // Credentials.

    /// Issues a credential for a Mac named `host`.
    Credential grant(const QString &account, const QString &host);
    /// Releases a credential by its token or agent id. False if there is no such live one.
    bool release(const QString &tokenOrAgentId);
    /// The credential with that token, live or released; none if the server never issued it.
    std::optional<Credential> credential(const QString &token) const;
    QList<Credential> liveCredentials() const;

    // Codes sent to phones.

    /// Sends a new code for "login", "register" or "reset"; invalidates earlier ones.
    bool sendCode(const QString &phone, const QString &purpose);
    /// Milliseconds until the next code may be sent.
    qint64 codeWait(const QString &phone) const;
    /// Whether `code` is the last one sent, for that purpose, within 10 minutes, and unused. Marks it as used.
    bool useCode(const QString &phone, const QString &purpose, const QString &code);
    /// The last code sent to a phone; empty if there is none.
    QString lastCode(const QString &phone) const;

    // Sign-ins that the agent begins and the user finishes in a browser.

    /// Starts a sign-in. Returns its id, which contains "+", "/" and "=", so that it must be encoded.
    QString beginSignIn(const QString &device);
    /// The sign-in's `device`, `status`, `account` and `error`; empty if there is none. A pending one expires after 10
    /// minutes.
    QJsonObject signIn(const QString &id) const;
    bool isPending(const QString &id) const;
    QString newestSignIn() const;
    /// Ends a pending sign-in: "done" with an account, "cancelled", or "failed" with an error.
    bool endSignIn(const QString &id, const QString &status, const QString &account = {}, const QString &error = {});
    /// The account of a sign-in that is done since the last call; empty without one.
    QString collectSignIn();

private:
    QJsonObject read() const;
    bool patch(const QString &list, const QString &key, const QJsonObject &by);

    Document document;
};

} // namespace korvel::sim
