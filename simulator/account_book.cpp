#include "simulator/account_book.h"

#include "simulator/random_text.h"

#include <algorithm>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 TEN_MINUTES_MS = 10 * 60 * 1000;

// The last element that `matches`; null when none does.
template <class T, class Predicate>
T *lastOf(QList<T> &list, Predicate matches) {
    const auto found = std::find_if(list.rbegin(), list.rend(), matches);
    return found == list.rend() ? nullptr : &*found;
}

} // namespace

UserAccount defaultAccount() { return {u"sam@example.com"_s, u"13800000000"_s, u"open sesame"_s}; }

UserAccount *findUser(AccountBook &book, const QString &nameOrPhone) {
    if (nameOrPhone.isEmpty())
        return nullptr;
    return lastOf(book.users,
                  [&](const UserAccount &user) { return user.name == nameOrPhone || user.phone == nameOrPhone; });
}

UserAccount *findUser(AccountBook &book, const QString &nameOrPhone, const QString &password) {
    UserAccount *user = findUser(book, nameOrPhone);
    return user && user->password == password ? user : nullptr;
}

bool addUser(AccountBook &book, const UserAccount &user) {
    if (user.name.isEmpty() || findUser(book, user.name) || findUser(book, user.phone))
        return false;
    book.users.append(user);
    return true;
}

Credential grant(AccountBook &book, const QString &account, const QString &host) {
    const Credential granted{u"token-"_s + randomHex(16), u"agent-"_s + randomHex(4), account, host};
    book.credentials.append(granted);
    return granted;
}

bool release(AccountBook &book, const QString &tokenOrAgentId) {
    Credential *live = lastOf(book.credentials, [&](const Credential &each) {
        return !each.released && (each.token == tokenOrAgentId || each.agentId == tokenOrAgentId);
    });
    if (!live)
        return false;
    live->released = true;
    return true;
}

std::optional<Credential> credentialOf(const AccountBook &book, const QString &token) {
    for (const Credential &credential : book.credentials)
        if (credential.token == token)
            return credential;
    return std::nullopt;
}

SmsCode sendCode(AccountBook &book, const QString &phone, const QString &purpose, qint64 now) {
    const SmsCode code{phone, purpose, randomDigits(6), now};
    book.codes.append(code);
    return code;
}

SmsCode *lastCode(AccountBook &book, const QString &phone) {
    return lastOf(book.codes, [&](const SmsCode &each) { return each.phone == phone; });
}

bool useCode(AccountBook &book, const QString &phone, const QString &purpose, const QString &code, qint64 now) {
    SmsCode *last = lastCode(book, phone);
    if (!last || last->purpose != purpose || last->code != code || last->used || now - last->sent > TEN_MINUTES_MS)
        return false;
    last->used = true;
    return true;
}

BrowserSignIn beginBrowserSignIn(AccountBook &book, const QString &device, qint64 now) {
    BrowserSignIn begun;
    begun.id = u"b+"_s + randomHex(8) + u'/' + randomHex(8) + u"=="_s;
    begun.device = device;
    begun.started = now;
    book.signIns.append(begun);
    return begun;
}

BrowserSignIn *findBrowserSignIn(AccountBook &book, const QString &id, qint64 now) {
    BrowserSignIn *found = lastOf(book.signIns, [&](const BrowserSignIn &each) { return each.id == id; });
    if (found && found->status == BrowserSignIn::Status::Pending && now - found->started > TEN_MINUTES_MS)
        found->status = BrowserSignIn::Status::Expired;
    return found;
}

BrowserSignIn *pendingBrowserSignIn(AccountBook &book, qint64 now) {
    if (book.signIns.isEmpty())
        return nullptr;
    BrowserSignIn *newest = findBrowserSignIn(book, book.signIns.last().id, now);
    return newest->status == BrowserSignIn::Status::Pending ? newest : nullptr;
}

} // namespace korvel::sim
