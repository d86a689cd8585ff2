#include "simulator/server/accounts.h"

#include "simulator/home/files.h"

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 LIFETIME_MS = 10 * 60 * 1000; // of a code and of a sign-in in the browser
constexpr qint64 NEXT_CODE_MS = 60 * 1000;

Credential credentialOf(const QString &token, const QJsonValue &stored) {
    return {token, stored["agentId"_L1].toString(), stored["account"_L1].toString(), stored["host"_L1].toString(),
            stored["released"_L1].toBool()};
}

} // namespace

QJsonObject Accounts::read() const {
    const QJsonObject sam{{u"phone"_s, u"13800000000"_s}, {u"password"_s, u"open sesame"_s}};
    return mergePatch({{u"users"_s, QJsonObject{{u"sam@example.com"_s, sam}}}}, document.read());
}

bool Accounts::patch(const QString &list, const QString &key, const QJsonObject &by) {
    return document.patch({{list, QJsonObject{{key, by}}}});
}

bool Accounts::add(const QString &name, const QString &phone, const QString &password) {
    return !name.isEmpty() && find(name).isEmpty() && find(phone).isEmpty() &&
           patch(u"users"_s, name, {{u"phone"_s, phone}, {u"password"_s, password}});
}

QString Accounts::find(const QString &nameOrPhone) const {
    const QJsonObject users = read().value("users"_L1).toObject();
    for (auto user = users.begin(); user != users.end(); ++user)
        if (user.key() == nameOrPhone || (!nameOrPhone.isEmpty() && user.value()["phone"_L1] == nameOrPhone))
            return user.key();
    return {};
}

QString Accounts::find(const QString &nameOrPhone, const QString &password) const {
    const QString name = find(nameOrPhone);
    return read()["users"_L1][name]["password"_L1] == password ? name : QString();
}

bool Accounts::setPassword(const QString &name, const QString &password) {
    return patch(u"users"_s, name, {{u"password"_s, password}});
}

Credential Accounts::grant(const QString &account, const QString &host) {
    const Credential made{u"token-"_s + randomHex(16), u"agent-"_s + randomHex(4), account, host};
    patch(u"credentials"_s, made.token, {{u"agentId"_s, made.agentId}, {u"account"_s, account}, {u"host"_s, host}});
    return made;
}

bool Accounts::release(const QString &tokenOrAgentId) {
    for (const Credential &each : liveCredentials())
        if (each.token == tokenOrAgentId || each.agentId == tokenOrAgentId)
            return patch(u"credentials"_s, each.token, {{u"released"_s, true}});
    return false;
}

std::optional<Credential> Accounts::credential(const QString &token) const {
    const QJsonValue stored = read()["credentials"_L1][token];
    return stored.isObject() ? std::optional(credentialOf(token, stored)) : std::nullopt;
}

QList<Credential> Accounts::liveCredentials() const {
    QList<Credential> live;
    const QJsonObject all = read().value("credentials"_L1).toObject();
    for (auto each = all.begin(); each != all.end(); ++each)
        if (const Credential found = credentialOf(each.key(), each.value()); !found.released)
            live.append(found);
    return live;
}

bool Accounts::sendCode(const QString &phone, const QString &purpose) {
    return patch(u"codes"_s, phone,
                 {{u"purpose"_s, purpose}, {u"code"_s, randomCode()}, {u"sent"_s, timeNow()}, {u"used"_s, false}});
}

qint64 Accounts::codeWait(const QString &phone) const {
    return std::max(read()["codes"_L1][phone]["sent"_L1].toInteger() + NEXT_CODE_MS - timeNow(), qint64(0));
}

bool Accounts::useCode(const QString &phone, const QString &purpose, const QString &code) {
    const QJsonValue last = read()["codes"_L1][phone];
    return last["purpose"_L1] == purpose && last["code"_L1] == code && !last["used"_L1].toBool() &&
           timeNow() - last["sent"_L1].toInteger() <= LIFETIME_MS && patch(u"codes"_s, phone, {{u"used"_s, true}});
}

QString Accounts::lastCode(const QString &phone) const { return read()["codes"_L1][phone]["code"_L1].toString(); }

QString Accounts::beginSignIn(const QString &device) {
    const QString id = u"b+"_s + randomHex(8) + u'/' + randomHex(8) + u"=="_s;
    const QJsonObject begun{{u"device"_s, device}, {u"status"_s, u"pending"_s}, {u"started"_s, timeNow()}};
    document.patch({{u"signIns"_s, QJsonObject{{id, begun}}}, {u"newest"_s, id}});
    return id;
}

QJsonObject Accounts::signIn(const QString &id) const {
    QJsonObject found = read()["signIns"_L1][id].toObject();
    if (found.value("status"_L1) == "pending"_L1 && timeNow() - found.value("started"_L1).toInteger() > LIFETIME_MS)
        found.insert("status"_L1, u"expired"_s);
    return found;
}

bool Accounts::isPending(const QString &id) const { return signIn(id).value("status"_L1) == "pending"_L1; }

QString Accounts::newestSignIn() const { return read().value("newest"_L1).toString(); }

bool Accounts::endSignIn(const QString &id, const QString &status, const QString &account, const QString &error) {
    return isPending(id) && patch(u"signIns"_s, id,
                                  {{u"status"_s, status},
                                   {u"account"_s, account},
                                   {u"error"_s, error},
                                   {u"uncollected"_s, !account.isEmpty()}});
}

QString Accounts::collectSignIn() {
    const QString id = newestSignIn();
    const QJsonObject found = signIn(id);
    const bool isNew = found.value("uncollected"_L1).toBool();
    return isNew && patch(u"signIns"_s, id, {{u"uncollected"_s, false}}) ? found.value("account"_L1).toString()
                                                                         : QString();
}

} // namespace korvel::sim
