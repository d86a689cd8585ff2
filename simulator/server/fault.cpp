#include "simulator/server/fault.h"

#include "simulator/home/files.h"

#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

/// Writes a piece from `next` every `everyMs`, no faster than the client reads, indefinitely.
void sendPieces(HttpConnection &connection, int everyMs, std::function<QByteArray()> next) {
    auto timer = new QTimer(&connection);
    QObject::connect(timer, &QTimer::timeout, &connection, [&connection, timer, next = std::move(next)] {
        constexpr qint64 MAX_BACKLOG = 256 << 10;
        if (connection.backlog() > MAX_BACKLOG)
            return;
        if (const QByteArray piece = next(); !piece.isEmpty())
            return connection.write(piece);
        timer->stop();
        timer->deleteLater();
        connection.finishResponse();
    });
    timer->start(everyMs);
}

void sendBody(HttpConnection &connection, const HttpResponse &response, qint64 pieceSize, int everyMs) {
    connection.begin(response, response.body.size());
    sendPieces(connection, everyMs, [rest = response.body, pieceSize]() mutable {
        const QByteArray piece = rest.first(std::min<qsizetype>(pieceSize, rest.size()));
        rest.remove(0, piece.size());
        return piece;
    });
}

void sendHuge(HttpConnection &connection, qint64 length) {
    const QByteArray start = R"({"ok":true,"padding":")", end = R"("})";
    connection.begin({}, length);
    connection.write(start);
    sendPieces(connection, 1, [left = length - start.size(), end]() mutable {
        constexpr qint64 BLOCK = 256 << 10;
        const qint64 padding = std::min(BLOCK, left - end.size());
        const QByteArray piece = padding > 0 ? QByteArray(padding, 'k') : end.first(std::max(left, qint64(0)));
        left -= piece.size();
        return piece;
    });
}

/// The response, possibly a redirect, that the scenario contains.
HttpResponse spelledOut(const QJsonObject &fault, int usualStatus) {
    const QJsonValue body = fault.value("body"_L1);
    HttpResponse response = HttpResponse::json(body.toObject(), fault.value("status"_L1).toInt(usualStatus));
    if (!body.isObject())
        response.body = body.toString().toUtf8();
    response.type = fault.value("type"_L1).toString(u"application/json"_s).toLatin1();
    response.location = fault.value("location"_L1).toString().toUtf8();
    return response;
}

struct Mode {
    QLatin1StringView name;
    bool needsResponse; ///< Whether it uses the correct response.
    void (*apply)(HttpConnection &connection, const QJsonObject &fault, const HttpResponse &right);
};

constexpr Mode MODES[] = {
    {""_L1, true, [](auto &c, const auto &, const auto &right) { c.respond(right); }},
    {"silent"_L1, false, [](auto &, const auto &...) {}},
    {"close"_L1, false, [](auto &c, const auto &...) { c.close(); }},
    {"reset"_L1, false, [](auto &c, const auto &...) { c.reset(); }},
    {"exit"_L1, false, [](auto &, const auto &...) { ::_exit(1); }},
    {"not-http"_L1, false,
     [](auto &c, const auto &...) {
         c.write("korvel speaks something else here\n");
         c.close();
     }},
    {"garbage"_L1, false, [](auto &c, const auto &...) { c.respond({.body = "{\"ok\":tru\x01 \x7f]}}} korvel"}); }},
    {"deep"_L1, false,
     [](auto &c, const auto &...) {
         constexpr int DEPTH = 100'000;
         c.respond(
             {.body = R"({"ok":true,"online":true,"deep":)" + QByteArray(DEPTH, '[') + QByteArray(DEPTH, ']') + '}'});
     }},
    {"html"_L1, false,
     [](auto &c, const auto &...) {
         c.respond(
             {500, "text/html; charset=utf-8", "<!DOCTYPE html><title>500</title><h1>Internal Server Error</h1>"});
     }},
    {"truncate"_L1, true,
     [](auto &c, const auto &, const auto &right) {
         c.begin(right, right.body.size());
         c.write(right.body.first(right.body.size() / 2));
         c.close();
     }},
    {"huge"_L1, false,
     [](auto &c, const auto &fault, const auto &) { sendHuge(c, qint64(fault.value("bytes"_L1).toDouble(100e6))); }},
    {"drip"_L1, true,
     [](auto &c, const auto &fault, const auto &right) { sendBody(c, right, 1, milliseconds(fault, "ms"_L1, 1000)); }},
    {"slow"_L1, true,
     [](auto &c, const auto &fault, const auto &right) {
         constexpr int PIECES_A_SECOND = 50;
         const qint64 bytes = fault.value("bytesPerSecond"_L1).toInteger(100'000) / PIECES_A_SECOND;
         sendBody(c, right, std::max(bytes, qint64(1)), 1000 / PIECES_A_SECOND);
     }},
    {"redirect"_L1, false, [](auto &c, const auto &fault, const auto &) { c.respond(spelledOut(fault, 302)); }},
    {"response"_L1, false, [](auto &c, const auto &fault, const auto &) { c.respond(spelledOut(fault, 200)); }},
};

const Mode &modeNamed(const QString &name) {
    const auto found = std::ranges::find(MODES, name, &Mode::name);
    if (found != std::end(MODES))
        return *found;
    std::fprintf(stderr, "korvel-simulator: the scenario's fault mode '%s' is unknown\n", qUtf8Printable(name));
    return MODES[0];
}

} // namespace

void respondUnder(const Scenario &scenario, const QString &server, const QJsonObject &faults, const QByteArray &path,
                  HttpConnection &connection, const std::function<void(const Respond &)> &act) {
    const QString own = QString::fromUtf8(path);
    const QJsonObject fault = scenario.fault(faults, server, faults.contains(own) ? own : u"*"_s);
    const Mode &mode = modeNamed(fault.value("mode"_L1).toString());
    const int delay = milliseconds(fault, "delayMs"_L1);
    const Respond respond = [guarded = QPointer(&connection), fault, &mode, delay](const HttpResponse &right) {
        if (guarded && delay == 0)
            return mode.apply(*guarded, fault, right);
        if (guarded)
            QTimer::singleShot(delay, guarded, [guarded, fault, &mode, right] { mode.apply(*guarded, fault, right); });
    };
    mode.needsResponse ? act(respond) : respond({});
}

} // namespace korvel::sim
