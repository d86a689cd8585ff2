#include "simulator/fault.h"

#include "simulator/files.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSslSocket>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

struct ModeName {
    QLatin1StringView name;
    FaultMode mode;
};

constexpr ModeName MODE_NAMES[] = {
    {"silent"_L1, FaultMode::Silent},    {"close"_L1, FaultMode::Close},      {"reset"_L1, FaultMode::Reset},
    {"exit"_L1, FaultMode::Exit},        {"not-http"_L1, FaultMode::NotHttp}, {"garbage"_L1, FaultMode::Garbage},
    {"not-utf8"_L1, FaultMode::NotUtf8}, {"array"_L1, FaultMode::Array},      {"wrong-types"_L1, FaultMode::WrongTypes},
    {"deep"_L1, FaultMode::Deep},        {"html"_L1, FaultMode::Html},        {"truncate"_L1, FaultMode::Truncate},
    {"huge"_L1, FaultMode::Huge},        {"drip"_L1, FaultMode::Drip},        {"redirect"_L1, FaultMode::Spelled},
    {"answer"_L1, FaultMode::Spelled},   {"slow"_L1, FaultMode::Slow},
};

FaultMode modeNamed(const QString &name) {
    const auto found = std::find_if(std::begin(MODE_NAMES), std::end(MODE_NAMES),
                                    [&](const ModeName &candidate) { return candidate.name == name; });
    if (found != std::end(MODE_NAMES))
        return found->mode;
    if (!name.isEmpty())
        std::fprintf(stderr, "korvel-simulator: the scenario's fault mode '%s' is unknown\n", qUtf8Printable(name));
    return FaultMode::None;
}

const char WRONG_TYPES[] =
    R"({"ok":"yes","online":"yes","ver":142,"sessions":"two","account":["sam"],"authDead":"no",)"
    R"("accountGone":1,"e2ee":"active","perms":["screen"],"missing":"screen","items":{},"agentToken":7,)"
    R"("agentId":["a"],"id":3,"url":false,"status":{},"user":1,"error":[]})";

QByteArray deepBody() {
    constexpr int DEPTH = 100'000;
    return R"({"ok":true,"online":true,"deep":)" + QByteArray(DEPTH, '[') + QByteArray(DEPTH, ']') + '}';
}

// The body of the faults whose answer is a well-formed HTTP message of another content.
HttpAnswer wrongAnswer(FaultMode mode) {
    switch (mode) {
    case FaultMode::NotUtf8:
        return {200, "application/json", "{\"ok\":true,\"online\":true,\"account\":\"\xff\xfe\xc3(\"}"};
    case FaultMode::Array:
        return {200, "application/json", R"([{"ok":true,"online":true}])"};
    case FaultMode::WrongTypes:
        return {200, "application/json", WRONG_TYPES};
    case FaultMode::Deep:
        return {200, "application/json", deepBody()};
    case FaultMode::Html:
        return {500, "text/html; charset=utf-8", "<!DOCTYPE html><title>500</title><h1>Internal Server Error</h1>\n"};
    default:
        return {200, "application/json", "{\"ok\":tru\x01 \x7f]}}} korvel"};
    }
}

void sendTruncated(HttpConnection &connection, const HttpAnswer &answer) {
    connection.socket().write(headOf(answer, answer.body.size(), connection.keepAlive()) +
                              answer.body.left(answer.body.size() / 2));
    connection.close();
}

// What a redirection, or an answer that the scenario spells out, is to send.
HttpAnswer spelledAnswer(const QJsonObject &entry) {
    if (entry.value("mode"_L1).toString() == "redirect"_L1)
        return {entry.value("status"_L1).toInt(302),
                "text/plain",
                {},
                {{"Location", entry.value("location"_L1).toString().toUtf8()}}};
    const QJsonValue body = entry.value("body"_L1);
    HttpAnswer answer = HttpAnswer::json(body.toObject(), entry.value("status"_L1).toInt(200));
    if (!body.isObject())
        answer.body = body.toString().toUtf8();
    if (const QString type = entry.value("type"_L1).toString(); !type.isEmpty())
        answer.type = type.toLatin1();
    return answer;
}

// What a socket still holds; over TLS also what is encrypted already.
qint64 backlogOf(const QTcpSocket &socket) {
    const auto *secure = qobject_cast<const QSslSocket *>(&socket);
    return socket.bytesToWrite() + (secure ? secure->encryptedBytesToWrite() : 0);
}

// Writes as fast as the client reads, and holds no more than a few blocks of it.
void sendHuge(HttpConnection &connection, qint64 length) {
    const QByteArray start = R"({"ok":true,"online":true,"padding":")";
    const QByteArray end = R"("})";
    connection.socket().write(headOf({}, std::max(length, qint64(start.size() + end.size())), connection.keepAlive()) +
                              start);
    auto left = std::make_shared<qint64>(std::max(length - start.size() - end.size(), qint64(0)));
    auto context = new QObject(&connection);
    const auto more = [&connection, left, end, context] {
        constexpr qint64 BLOCK = 256 << 10;
        while (*left > 0 && backlogOf(connection.socket()) < BLOCK) {
            const qint64 size = std::min(*left, BLOCK);
            connection.socket().write(QByteArray(size, 'k'));
            *left -= size;
        }
        if (*left > 0)
            return;
        context->deleteLater();
        QObject::disconnect(&connection.socket(), nullptr, context, nullptr);
        connection.socket().write(end);
        connection.finishAnswer();
    };
    if (auto *secure = qobject_cast<QSslSocket *>(&connection.socket()))
        QObject::connect(secure, &QSslSocket::encryptedBytesWritten, context, more);
    else
        QObject::connect(&connection.socket(), &QTcpSocket::bytesWritten, context, more);
    more();
}

void sendDripping(HttpConnection &connection, const HttpAnswer &answer, int everyMs) {
    connection.socket().write(headOf(answer, answer.body.size(), connection.keepAlive()));
    auto timer = new QTimer(&connection);
    QObject::connect(timer, &QTimer::timeout, &connection, [&connection, timer, rest = answer.body]() mutable {
        connection.socket().write(rest.left(1));
        rest.remove(0, 1);
        if (!rest.isEmpty())
            return;
        timer->stop();
        timer->deleteLater();
        connection.finishAnswer();
    });
    timer->start(everyMs);
}

// As many bytes as are due since the header went out; what a client that reads slowly leaves is not added to.
void sendSlowly(HttpConnection &connection, const HttpAnswer &answer, qint64 bytesPerSecond) {
    constexpr int TICK_MS = 20;
    connection.socket().write(headOf(answer, answer.body.size(), connection.keepAlive()));
    auto timer = new QTimer(&connection);
    QElapsedTimer since;
    since.start();
    QObject::connect(timer, &QTimer::timeout, &connection,
                     [&connection, timer, since, bytesPerSecond, body = answer.body, sent = qsizetype(0)]() mutable {
                         const qint64 due = std::min(since.elapsed() * bytesPerSecond / 1000, qint64(body.size()));
                         if (backlogOf(connection.socket()) == 0)
                             sent += connection.socket().write(body.mid(sent, due - sent));
                         if (sent < body.size())
                             return;
                         timer->stop();
                         timer->deleteLater();
                         connection.finishAnswer();
                     });
    timer->start(TICK_MS);
}

void playNow(HttpConnection &connection, const Fault &fault, const HttpAnswer &answer) {
    switch (fault.mode) {
    case FaultMode::None:
        return connection.answer(answer);
    case FaultMode::Silent:
        return;
    case FaultMode::Close:
        return connection.close();
    case FaultMode::Reset:
        return connection.reset();
    case FaultMode::Exit:
        ::_exit(1);
    case FaultMode::NotHttp:
        connection.socket().write("korvel speaks something else here\n");
        return connection.close();
    case FaultMode::Truncate:
        return sendTruncated(connection, answer);
    case FaultMode::Huge:
        return sendHuge(connection, fault.bytes);
    case FaultMode::Drip:
        return sendDripping(connection, answer, fault.everyMs);
    case FaultMode::Slow:
        return sendSlowly(connection, answer, fault.bytesPerSecond);
    case FaultMode::Spelled:
        return connection.answer(fault.spelled);
    default:
        return connection.answer(wrongAnswer(fault.mode));
    }
}

void play(HttpConnection &connection, const Fault &fault, const HttpAnswer &answer) {
    if (fault.delayMs == 0)
        return playNow(connection, fault, answer);
    QTimer::singleShot(fault.delayMs, &connection,
                       [&connection, fault, answer] { playNow(connection, fault, answer); });
}

} // namespace

Fault faultFor(const Scenario &scenario, const QString &server, const QJsonObject &faults, const QByteArray &path) {
    const QString own = QString::fromUtf8(path);
    const QString key = faults.contains(own) ? own : u"*"_s;
    const QJsonObject entry = faults.value(key).toObject();
    if (entry.isEmpty() || !scenario.takeTurn(server + u' ' + key, entry))
        return {};
    Fault fault;
    fault.mode = modeNamed(entry.value("mode"_L1).toString());
    fault.delayMs = milliseconds(entry, "delayMs"_L1);
    fault.bytes = qint64(entry.value("bytes"_L1).toDouble(100e6));
    fault.everyMs = milliseconds(entry, "ms"_L1, 1000);
    fault.bytesPerSecond = std::max(entry.value("bytesPerSecond"_L1).toInteger(100'000), qint64(1));
    if (fault.mode == FaultMode::Spelled)
        fault.spelled = spelledAnswer(entry);
    return fault;
}

void answerUnder(const Fault &fault, HttpConnection &connection, const std::function<void(const Respond &)> &act) {
    if (!fault.needsAnswer())
        return play(connection, fault, {});
    act([guarded = QPointer(&connection), fault](const HttpAnswer &right) {
        if (guarded)
            play(*guarded, fault, right);
    });
}

} // namespace korvel::sim
