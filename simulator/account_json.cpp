#include "simulator/account_json.h"

#include <QJsonArray>

#include <array>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

using Status = BrowserSignIn::Status;

constexpr std::array STATUSES{Status::Pending, Status::Done, Status::Failed, Status::Cancelled, Status::Expired};

Status statusNamed(const QString &name) {
    for (const Status status : STATUSES)
        if (nameOf(status) == name)
            return status;
    return Status::Expired;
}

QJsonObject objectOf(const UserAccount &user) {
    return {{u"name"_s, user.name}, {u"phone"_s, user.phone}, {u"password"_s, user.password}};
}

void read(const QJsonObject &from, UserAccount &user) {
    user = {from["name"_L1].toString(), from["phone"_L1].toString(), from["password"_L1].toString()};
}

QJsonObject objectOf(const Credential &credential) {
    return {{u"token"_s, credential.token},
            {u"agentId"_s, credential.agentId},
            {u"account"_s, credential.account},
            {u"host"_s, credential.host},
            {u"released"_s, credential.released}};
}

void read(const QJsonObject &from, Credential &credential) {
    credential = {from["token"_L1].toString(), from["agentId"_L1].toString(), from["account"_L1].toString(),
                  from["host"_L1].toString(), from["released"_L1].toBool()};
}

QJsonObject objectOf(const SmsCode &code) {
    return {{u"phone"_s, code.phone},
            {u"purpose"_s, code.purpose},
            {u"code"_s, code.code},
            {u"sent"_s, code.sent},
            {u"used"_s, code.used}};
}

void read(const QJsonObject &from, SmsCode &code) {
    code = {from["phone"_L1].toString(), from["purpose"_L1].toString(), from["code"_L1].toString(),
            from["sent"_L1].toInteger(), from["used"_L1].toBool()};
}

QJsonObject objectOf(const BrowserSignIn &signIn) {
    return {{u"id"_s, signIn.id},
            {u"device"_s, signIn.device},
            {u"status"_s, nameOf(signIn.status)},
            {u"account"_s, signIn.account},
            {u"error"_s, signIn.error},
            {u"started"_s, signIn.started},
            {u"collected"_s, signIn.collected}};
}

void read(const QJsonObject &from, BrowserSignIn &signIn) {
    signIn = {from["id"_L1].toString(),      from["device"_L1].toString(), statusNamed(from["status"_L1].toString()),
              from["account"_L1].toString(), from["error"_L1].toString(),  from["started"_L1].toInteger(),
              from["collected"_L1].toBool()};
}

template <class T>
QJsonArray arrayOf(const QList<T> &list) {
    QJsonArray array;
    for (const T &each : list)
        array.append(objectOf(each));
    return array;
}

template <class T>
void read(const QJsonValue &from, QList<T> &list) {
    for (const QJsonValue each : from.toArray()) {
        list.append(T{});
        read(each.toObject(), list.last());
    }
}

} // namespace

QString nameOf(Status status) {
    switch (status) {
    case Status::Pending:
        return u"pending"_s;
    case Status::Done:
        return u"done"_s;
    case Status::Failed:
        return u"failed"_s;
    case Status::Cancelled:
        return u"cancelled"_s;
    case Status::Expired:
        return u"expired"_s;
    }
    return {};
}

QJsonObject toJson(const AccountBook &book) {
    return {{u"users"_s, arrayOf(book.users)},
            {u"credentials"_s, arrayOf(book.credentials)},
            {u"codes"_s, arrayOf(book.codes)},
            {u"signIns"_s, arrayOf(book.signIns)}};
}

AccountBook accountBookFrom(const QJsonObject &stored) {
    AccountBook book;
    read(stored["users"_L1], book.users);
    read(stored["credentials"_L1], book.credentials);
    read(stored["codes"_L1], book.codes);
    read(stored["signIns"_L1], book.signIns);
    return book;
}

} // namespace korvel::sim
