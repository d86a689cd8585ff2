#pragma once

#include "simulator/account_store.h"

namespace korvel::sim {

// What the user does elsewhere, and what can be read of the account server: Home::accounts() gives it. It works on the
// server's state whether the server runs or not.
//
// Each act returns true when it did what its name says.
class ServerAccounts {
public:
    explicit ServerAccounts(AccountStore store) : store(std::move(store)) {}

    // Adds an account; `phone` may be empty. False when the name or phone number is in use.
    bool add(const QString &name, const QString &phone, const QString &password);
    // The credentials that Macs were given and that are good, oldest first.
    QList<Credential> liveCredentials() const;
    // Ends a credential by its token or agent id, as when the user removes the Mac on the phone.
    bool release(const QString &tokenOrAgentId);
    // The last code sent to a phone; empty when none was.
    QString lastCode(const QString &phone) const;

    // What becomes of the newest browser sign-in, without a browser. False when it is not pending.
    bool approveBrowser(const QString &account);
    bool cancelBrowser();
    bool failBrowser(const QString &error);

private:
    bool settle(BrowserSignIn::Status status, const QString &account = {}, const QString &error = {});

    AccountStore store;
};

} // namespace korvel::sim
