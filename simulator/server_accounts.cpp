#include "simulator/server_accounts.h"

namespace korvel::sim {

using Status = BrowserSignIn::Status;

bool ServerAccounts::add(const QString &name, const QString &phone, const QString &password) {
    return store.change([&](AccountBook &book, qint64) { return addUser(book, {name, phone, password}); });
}

QList<Credential> ServerAccounts::liveCredentials() const {
    QList<Credential> live = store.read().credentials;
    live.removeIf([](const Credential &credential) { return credential.released; });
    return live;
}

bool ServerAccounts::release(const QString &tokenOrAgentId) {
    return store.change([&](AccountBook &book, qint64) { return sim::release(book, tokenOrAgentId); });
}

QString ServerAccounts::lastCode(const QString &phone) const {
    AccountBook book = store.read();
    const SmsCode *code = sim::lastCode(book, phone);
    return code ? code->code : QString();
}

bool ServerAccounts::settle(Status status, const QString &account, const QString &error) {
    return store.change([&](AccountBook &book, qint64 now) {
        BrowserSignIn *pending = pendingBrowserSignIn(book, now);
        if (!pending)
            return false;
        pending->status = status;
        pending->account = account;
        pending->error = error;
        return true;
    });
}

bool ServerAccounts::approveBrowser(const QString &account) { return settle(Status::Done, account); }

bool ServerAccounts::cancelBrowser() { return settle(Status::Cancelled); }

bool ServerAccounts::failBrowser(const QString &error) { return settle(Status::Failed, {}, error); }

} // namespace korvel::sim
