#include "simulator/agent/encryption.h"

#include "simulator/home/files.h"
#include "simulator/home/scenario.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QStringList>
#include <algorithm>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

constexpr int RENEW_MS = 3000;    // from "expired" to a new code
constexpr int TURN_ON_MS = 1500;  // from the right code to "active"
constexpr int DOWNLOAD_MS = 6000; // of the speech recognition, by default
constexpr int MAX_WRONG_CODES = 5;

const QStringList STATES{u"off"_s,      u"starting"_s, u"waiting"_s, u"pending"_s, u"approved"_s, u"pair-failed"_s,
                         u"rejected"_s, u"expired"_s,  u"active"_s,  u"revoked"_s, u"suspended"_s};

QString stateOf(const QJsonObject &doc) { return doc.value("state"_L1).toString(u"off"_s); }
bool isSignedIn(const QJsonObject &doc) { return !doc.value("signIn"_L1).toString().isEmpty(); }
bool isPaired(const QJsonObject &doc) { return doc.value("paired"_L1).toBool(); }
bool takesCode(const QJsonObject &doc) { return stateOf(doc) == "pending"_L1 && !isPaired(doc); }

/// False if `list` has no element whose `key` is `id`.
bool removeElement(QJsonObject &doc, const QString &list, const QString &key, const QString &id) {
    QJsonArray left;
    const QJsonArray elements = doc.value(list).toArray();
    for (const QJsonValue element : elements)
        if (element[key].toString() != id)
            left.append(element);
    doc.insert(list, left);
    return left.size() < elements.size();
}

QJsonObject deviceOf(const QJsonObject &doc, const QString &pendingId) {
    for (const QJsonValue device : doc.value("pending"_L1).toArray())
        if (device["pendingId"_L1].toString() == pendingId)
            return device.toObject();
    return {};
}

/// Six random digits that no device shows.
QString drawCode(const QJsonObject &doc) {
    QStringList shown{doc.value("code"_L1).toString()};
    for (const QJsonValue device : doc.value("pending"_L1).toArray())
        shown.append(device["code"_L1].toString());
    QString code;
    do
        code = randomCode();
    while (shown.contains(code));
    return code;
}

QString drawIdentity(QJsonObject &doc, const QString &kind) {
    const int number = doc.value("drawn"_L1).toInt() + 1;
    doc.insert("drawn"_L1, number);
    return kind + u'-' + QString::number(number);
}

/// Shows a new pairing code. The count of wrong codes stays.
void showNewCode(QJsonObject &doc, bool wrong) {
    doc = mergePatch(doc, {{u"state"_s, u"pending"_s},
                           {u"phone"_s, true},
                           {u"code"_s, drawCode(doc)},
                           {u"wrong"_s, wrong},
                           {u"paired"_s, false},
                           {u"due"_s, 0}});
}

void enter(QJsonObject &doc, const QString &state, qint64 now) {
    const bool expired = state == "expired"_L1;
    doc = mergePatch(doc, {{u"state"_s, state},
                           {u"code"_s, u""_s},
                           {u"wrong"_s, false},
                           {u"paired"_s, false},
                           {u"due"_s, expired ? now + RENEW_MS : 0}});
    if (!expired)
        doc.insert("wrongCodes"_L1, 0);
    if (state == "waiting"_L1)
        doc.insert("phone"_L1, false);
    if (state == "pending"_L1)
        showNewCode(doc, false);
}

/// Applies the events that are due, each at its own time, so that the next ones are not late.
void advance(QJsonObject &doc, int downloadMs, qint64 now) {
    if (const qint64 due = doc.value("due"_L1).toInteger(); due != 0 && due <= now)
        isPaired(doc) ? enter(doc, u"active"_s, due) : showNewCode(doc, false);
    QJsonObject speech = doc.value("asr"_L1).toObject();
    if (speech.value("installing"_L1).toString() != "download"_L1)
        return;
    const qint64 percent = (now - doc.value("downloadSince"_L1).toInteger()) * 100 / std::max(downloadMs, 1);
    speech.insert("pct"_L1, int(std::clamp<qint64>(percent, 0, 100)));
    doc.insert("asr"_L1, percent < 100 ? speech : QJsonObject{{u"ready"_s, true}});
}

bool typeCode(QJsonObject &doc, const QString &code, qint64 now) {
    if (!takesCode(doc))
        return false;
    if (code == doc.value("code"_L1).toString()) {
        doc = mergePatch(doc, {{u"paired"_s, true}, {u"wrong"_s, false}, {u"due"_s, now + TURN_ON_MS}});
        return true;
    }
    const int wrong = doc.value("wrongCodes"_L1).toInt() + 1;
    doc.insert("wrongCodes"_L1, wrong);
    wrong < MAX_WRONG_CODES ? showNewCode(doc, true) : enter(doc, u"pair-failed"_s, now);
    return true;
}

QString raise(QJsonObject &doc, const QString &kind, const QString &text) {
    const QString id = drawIdentity(doc, u"alarm"_s);
    QJsonArray alarms = doc.value("alarms"_L1).toArray();
    alarms.append(QJsonObject{{u"id"_s, id}, {u"kind"_s, kind}, {u"text"_s, text}});
    doc.insert("alarms"_L1, alarms);
    return id;
}

QString textIn(const QJsonObject &body, QLatin1StringView key) { return body.value(key).toString(); }

QString admitDevice(QJsonObject &doc, const QJsonObject &body) {
    const QString code = textIn(body, "code"_L1), id = textIn(body, "pendingId"_L1);
    const bool isCode = code.size() == 6 && std::all_of(code.begin(), code.end(), [](QChar c) { return c.isDigit(); });
    const QJsonObject device = deviceOf(doc, id);
    if (!isCode || device.isEmpty() || device.value("code"_L1) != code)
        return !isCode ? u"bad-code"_s : device.isEmpty() ? u"answered"_s : u"wrong-code"_s;
    removeElement(doc, u"pending"_s, u"pendingId"_s, id);
    return {};
}

QString acceptReset(QJsonObject &doc, qint64 now) {
    if (!removeElement(doc, u"alarms"_s, u"kind"_s, u"reset"_s))
        return u"no-reset"_s;
    enter(doc, u"pending"_s, now);
    return {};
}

QString installSpeech(QJsonObject &doc, qint64 now) {
    const QJsonObject speech = doc.value("asr"_L1).toObject();
    if (!speech.value("ready"_L1).toBool() && speech.value("installing"_L1).toString() != "download"_L1) {
        doc.insert("asr"_L1, QJsonObject{{u"ready"_s, false}, {u"installing"_s, u"download"_s}, {u"pct"_s, 0}});
        doc.insert("downloadSince"_L1, now);
    }
    return {}; // being installed or installed: nothing to do
}

struct Endpoint {
    const char *path;
    QString (*act)(QJsonObject &doc, const QJsonObject &body, qint64 now);
};

constexpr Endpoint ENDPOINTS[] = {
    {"/e2ee/pair", [](QJsonObject &doc, const QJsonObject &body, qint64) { return admitDevice(doc, body); }},
    {"/e2ee/reject",
     [](QJsonObject &doc, const QJsonObject &body, qint64) {
         const bool found = removeElement(doc, u"pending"_s, u"pendingId"_s, textIn(body, "pendingId"_L1));
         return found ? QString() : u"answered"_s;
     }},
    {"/e2ee/pair/new",
     [](QJsonObject &doc, const QJsonObject &, qint64) {
         if (!takesCode(doc) && stateOf(doc) != "expired"_L1)
             return u"not-pairing"_s;
         showNewCode(doc, false);
         return QString();
     }},
    {"/e2ee/alarm/dismiss",
     [](QJsonObject &doc, const QJsonObject &body, qint64) {
         return removeElement(doc, u"alarms"_s, u"id"_s, textIn(body, "id"_L1)) ? QString() : u"no-alarm"_s;
     }},
    {"/e2ee/reset/accept", [](QJsonObject &doc, const QJsonObject &, qint64 now) { return acceptReset(doc, now); }},
    {"/e2ee/asr/install", [](QJsonObject &doc, const QJsonObject &, qint64 now) { return installSpeech(doc, now); }},
    {"/e2ee/logout",
     [](QJsonObject &doc, const QJsonObject &, qint64 now) {
         doc = mergePatch(doc, {{u"pending"_s, QJsonArray()}, {u"alarms"_s, QJsonArray()}});
         enter(doc, u"off"_s, now);
         return QString();
     }},
};

/// An identifier of a sign-in that does not reveal its token; empty if nobody is signed in.
QString signInOf(const AgentConfig &config) {
    const QByteArray token = config.text("agentToken"_L1).toUtf8();
    const QByteArray digest = QCryptographicHash::hash(token, QCryptographicHash::Sha256).toHex();
    return token.isEmpty() ? QString() : QString::fromLatin1(digest.first(16));
}

/// The initial state of a sign-in. Keeps `phone`, which belongs to the account.
QJsonObject begun(const QJsonObject &before, const QString &signIn, const QString &start, qint64 now) {
    QJsonObject doc{{u"signIn"_s, signIn},
                    {u"began"_s, start},
                    {u"phone"_s, before.value("phone"_L1)},
                    {u"drawn"_s, before.value("drawn"_L1)}};
    if (!signIn.isEmpty())
        enter(doc, start == "waiting"_L1 && doc.value("phone"_L1).toBool() ? u"pending"_s : start, now);
    return doc;
}

} // namespace

Encryption::Encryption(const HomePaths &p, AgentConfig c)
    : paths(p), config(std::move(c)), document(paths.state(u"e2ee.json"_s)) {}

bool Encryption::change(const std::function<bool(QJsonObject &)> &event) const {
    const QJsonObject scenario = Scenario(paths).section("e2ee"_L1);
    const QString start =
        STATES.contains(scenario.value("start"_L1).toString()) ? scenario.value("start"_L1).toString() : QString();
    const QString signIn = signInOf(config);
    bool happened = false;
    const bool kept = document.change([&](QJsonObject &doc) {
        const QString began = doc.value("began"_L1).toString(u"active"_s);
        if (doc.value("signIn"_L1).toString() != signIn || (!start.isEmpty() && start != began))
            doc = begun(doc, signIn, start.isEmpty() ? u"active"_s : start, timeNow());
        advance(doc, milliseconds(scenario, "asrMs"_L1, DOWNLOAD_MS), timeNow());
        QJsonObject changed = doc;
        happened = event(changed);
        if (happened)
            doc = changed;
        return true; // events that time caused are kept in any case
    });
    return kept && happened;
}

QJsonObject Encryption::current() const {
    QJsonObject found;
    change([&found](const QJsonObject &doc) {
        found = doc;
        return true;
    });
    return found;
}

QString Encryption::state() const { return stateOf(current()); }

QString Encryption::pairCode() const {
    const QJsonObject doc = current();
    return isPaired(doc) ? QString() : doc.value("code"_L1).toString();
}

QJsonObject Encryption::report(bool online, const QSet<QString> &checking) const {
    const QJsonObject doc = current();
    QJsonObject report{{u"state"_s, stateOf(doc)}};
    if (stateOf(doc) == "pending"_L1)
        report.insert("pair"_L1, QJsonObject{{u"show"_s, doc.value("code"_L1)},
                                             {u"wrong"_s, doc.value("wrong"_L1)},
                                             {u"paired"_s, doc.value("paired"_L1)}});
    if (stateOf(doc) == "active"_L1 && online)
        report.insert("relay"_L1, u"ok"_s);
    QJsonArray devices;
    for (const QJsonValue stored : doc.value("pending"_L1).toArray()) {
        QJsonObject device = stored.toObject();
        device.remove("code"_L1);
        device.insert("busy"_L1, checking.contains(device.value("pendingId"_L1).toString()));
        devices.append(device);
    }
    if (!devices.isEmpty())
        report.insert("pending"_L1, devices);
    for (const QLatin1StringView key : {"alarms"_L1, "asr"_L1})
        if (doc.contains(key))
            report.insert(key, doc.value(key));
    return report;
}

bool Encryption::phoneSignIn() {
    return change([](QJsonObject &doc) {
        doc.insert("phone"_L1, true);
        if (stateOf(doc) == "waiting"_L1)
            enter(doc, u"pending"_s, timeNow());
        return true;
    });
}

bool Encryption::type(const QString &code) {
    return change([&code](QJsonObject &doc) { return typeCode(doc, code, timeNow()); });
}

bool Encryption::typeRight() {
    return change([](QJsonObject &doc) { return typeCode(doc, doc.value("code"_L1).toString(), timeNow()); });
}

bool Encryption::setState(const QString &name) {
    return STATES.contains(name) && change([&name](QJsonObject &doc) {
               enter(doc, name, timeNow());
               return isSignedIn(doc);
           });
}

JoinRequest Encryption::requestJoin(const QString &name, const QString &platform) {
    JoinRequest request;
    const bool done = change([&](QJsonObject &doc) {
        request = {drawIdentity(doc, u"device"_s), drawCode(doc)};
        QJsonArray devices = doc.value("pending"_L1).toArray();
        devices.append(QJsonObject{{u"pendingId"_s, request.pendingId},
                                   {u"attempt"_s, 1},
                                   {u"name"_s, name},
                                   {u"platform"_s, platform},
                                   {u"ready"_s, true},
                                   {u"code"_s, request.code}});
        doc.insert("pending"_L1, devices);
        return isSignedIn(doc);
    });
    return done ? request : JoinRequest{};
}

QString Encryption::raiseAlarm(const QString &text) {
    QString id;
    const bool raised = change([&](QJsonObject &doc) {
        id = raise(doc, u"alert"_s, text);
        return isSignedIn(doc);
    });
    return raised ? id : QString();
}

QString Encryption::raiseResetAlarm() {
    QString id;
    const bool raised = change([&](QJsonObject &doc) {
        id = raise(doc, u"reset"_s, {});
        return isSignedIn(doc);
    });
    return raised ? id : QString();
}

QString Encryption::act(const QByteArray &path, const QJsonObject &body) {
    QString failure;
    for (const Endpoint &endpoint : ENDPOINTS)
        if (path == endpoint.path)
            change([&](QJsonObject &doc) {
                failure = endpoint.act(doc, body, timeNow());
                return failure.isEmpty();
            });
    return failure;
}

QList<QByteArray> Encryption::endpoints() {
    QList<QByteArray> list;
    for (const Endpoint &endpoint : ENDPOINTS)
        list.append(endpoint.path);
    return list;
}

} // namespace korvel::sim
