#pragma once

#include "simulator/home/files.h"
#include "simulator/home/home_paths.h"

#include <QList>
#include <optional>

namespace korvel::sim {

/// What lets one Mac act for an account.
struct Credential {
    QString token;
    QString agentId;
    QString account;
    QString host; ///< Name of the Mac.
    bool released = false;
};

/// What the account server knows: one document that the server, the agent and whoever simulates the user change,
/// whether the server runs or not. A home begins with the account sam@example.com, 13800000000, "open sesame".
///
/// `users` by name, `credentials` by token, `codes` by phone number, `signIns` (in the browser) by id; `newest` is the
/// id of the last of these. Times are in milliseconds since the epoch.
class Accounts {
public:
    explicit Accounts(const HomePaths &paths) : document(paths.state(QStringLiteral("account.json"))) {}

    // Users.

    /// Adds an account; `phone` may be empty. False when the name is empty, or it or the phone number is in use.
    bool add(const QString &name, const QString &phone, const QString &password);
    /// The name of the account with that name or phone number; empty when there is none.
    QString find(const QString &nameOrPhone) const;
    /// The same, if the password is the account's.
    QString find(const QString &nameOrPhone, const QString &password) const;
    bool setPassword(const QString &name, const QString &password);

    // Credentials.

    /// A new credential for a Mac named `host`.
    Credential grant(const QString &account, const QString &host);
    /// Ends a credential by its token or agent id. False when there is no such live one.
    bool release(const QString &tokenOrAgentId);
    /// The credential with that token, live or released; none for one that the server never gave.
    std::optional<Credential> credential(const QString &token) const;
    QList<Credential> liveCredentials() const;

    // Codes sent to phones.

    /// Sends a new code for "login", "register" or "reset"; the ones before it are no longer good.
    bool sendCode(const QString &phone, const QString &purpose);
    /// Milliseconds until the next code may be sent.
    qint64 codeWait(const QString &phone) const;
    /// Whether `code` is the last one sent, for that purpose, within 10 minutes, and unused. It is used then.
    bool useCode(const QString &phone, const QString &purpose, const QString &code);
    /// The last code sent to a phone; empty when none was.
    QString lastCode(const QString &phone) const;

    // Sign-ins that the agent begins and the user finishes in a browser.

    /// Its id holds "+", "/" and "=", which have to be encoded.
    QString beginSignIn(const QString &device);
    /// `device`, `status`, `account` and `error`; empty when there is none. A pending one expires after 10 minutes.
    QJsonObject signIn(const QString &id) const;
    bool isPending(const QString &id) const;
    QString newestSignIn() const;
    /// Ends a pending one: "done" with an account, "cancelled", or "failed" with an error.
    bool endSignIn(const QString &id, const QString &status, const QString &account = {}, const QString &error = {});
    /// The account of one that is done since the last call; empty when none is.
    QString collectSignIn();

private:
    QJsonObject read() const;
    bool patch(const QString &list, const QString &key, const QJsonObject &by);

    Document document;
};

} // namespace korvel::sim
