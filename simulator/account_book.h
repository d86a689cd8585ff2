#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace korvel::sim {

// One user's account. Test data: the password is kept as it is.
struct UserAccount {
    QString name;
    QString phone; // may be empty
    QString password;

    bool operator==(const UserAccount &) const = default;
};

// What lets one Mac act for an account.
struct Credential {
    QString token;
    QString agentId;
    QString account; // name of the account
    QString host;    // name of the Mac
    bool released = false;

    bool operator==(const Credential &) const = default;
};

// A code that was sent to a phone.
struct SmsCode {
    QString phone;
    QString purpose; // "login", "register" or "reset"
    QString code;
    qint64 sent = 0;
    bool used = false;

    bool operator==(const SmsCode &) const = default;
};

// A sign-in that the agent began and the user finishes in a browser.
struct BrowserSignIn {
    enum class Status { Pending, Done, Failed, Cancelled, Expired };
    QString id;
    QString device; // the Mac's name, as the page shows it
    Status status = Status::Pending;
    QString account; // Done: who signed in
    QString error;   // Failed: why
    qint64 started = 0;
    bool collected = false; // Done: the agent has bound the Mac

    bool operator==(const BrowserSignIn &) const = default;
};

// What the account server knows. Open data: the functions below change it, at the time `now` in milliseconds since the
// epoch.
struct AccountBook {
    QList<UserAccount> users = {};
    QList<Credential> credentials = {};
    QList<SmsCode> codes = {};
    QList<BrowserSignIn> signIns = {};

    bool operator==(const AccountBook &) const = default;
};

// The account that every home has: sam@example.com, 13800000000, "open sesame".
UserAccount defaultAccount();

// The account of that name or phone number; null when there is none.
UserAccount *findUser(AccountBook &book, const QString &nameOrPhone);
// The account of that name or phone number, if the password is its own; else null.
UserAccount *findUser(AccountBook &book, const QString &nameOrPhone, const QString &password);
// Adds an account. False when the name is empty or its name or phone number is in use.
bool addUser(AccountBook &book, const UserAccount &user);

// A new credential for a Mac named `host`.
Credential grant(AccountBook &book, const QString &account, const QString &host);
// Ends the credential with that token or agent id. False when there is no such live one.
bool release(AccountBook &book, const QString &tokenOrAgentId);
// The credential with that token, live or released; nothing for one that the server never gave.
std::optional<Credential> credentialOf(const AccountBook &book, const QString &token);

// Sends a new code to a phone; the ones before it are no longer good.
SmsCode sendCode(AccountBook &book, const QString &phone, const QString &purpose, qint64 now);
// The last code sent to a phone; null when none was.
SmsCode *lastCode(AccountBook &book, const QString &phone);
// Whether `code` is the last one sent to that phone, for that purpose, within 10 minutes, and unused. It is used then.
bool useCode(AccountBook &book, const QString &phone, const QString &purpose, const QString &code, qint64 now);

// Begins a browser sign-in. Its id holds "+", "/" and "=", so that whoever does not encode it is found out.
BrowserSignIn beginBrowserSignIn(AccountBook &book, const QString &device, qint64 now);
// The browser sign-in with that id, marked as expired when it is older than 10 minutes; null when there is none.
BrowserSignIn *findBrowserSignIn(AccountBook &book, const QString &id, qint64 now);
// The newest one that is pending; null when none is.
BrowserSignIn *pendingBrowserSignIn(AccountBook &book, qint64 now);

} // namespace korvel::sim
