#include "exchange/messages.h"

#include "base/json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace korvel::exchange {

namespace {

/// Indexed by ErrorKind.
constexpr QLatin1StringView KINDS[] = {
    "Dropped"_L1,      "InvalidRequest"_L1,     "Offline"_L1,
    "HostNotFound"_L1, "Unreachable"_L1,        "InsecureConnection"_L1,
    "Interrupted"_L1,  "TimedOut"_L1,           "TooLarge"_L1,
    "NotSaved"_L1,     "UnreadableResponse"_L1, "Refused"_L1,
};
static_assert(std::size(KINDS) == static_cast<size_t>(ErrorKind::Refused) + 1);

QString coded(const QByteArray &bytes) { return QString::fromLatin1(bytes.toBase64()); }

std::optional<QByteArray> decoded(const QJsonValue &value) {
    const auto text = jsonText(value);
    auto result = QByteArray::fromBase64Encoding(text.value_or(u"%"_s).toLatin1(), // "%" is not valid base64
                                                 QByteArray::AbortOnBase64DecodingErrors);
    return result ? std::optional(*std::move(result)) : std::nullopt;
}

/// An integer from 0 to `most`.
std::optional<qint64> number(const QJsonValue &value, qint64 most) {
    const auto n = jsonInteger(value);
    return n && *n >= 0 && *n <= most ? n : std::nullopt;
}

QByteArray compact(const QJsonObject &object) { return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n'; }

QJsonObject objectOf(const HttpTask &task) {
    QJsonArray headers;
    for (const auto &[name, value] : task.request.headers)
        headers.append(QJsonArray{QString::fromLatin1(name), coded(value)});
    const ServerRequest &r = task.request;
    return {{u"do"_s, u"http"_s},
            {u"method"_s, QString::fromLatin1(r.method)},
            {u"url"_s, r.url},
            {u"headers"_s, headers},
            {u"body"_s, coded(r.body)},
            {u"maxBytes"_s, r.maxBytes},
            {u"slowSeconds"_s, static_cast<qint64>(r.slowTimeout.count())},
            {u"redirects"_s, r.redirects},
            {u"file"_s, task.file}};
}

QJsonObject objectOf(const HashTask &task) { return {{u"do"_s, u"sha256"_s}, {u"file"_s, task.file}}; }

QJsonObject objectOf(const SignatureProof &task) {
    return {{u"do"_s, u"ed25519"_s},
            {u"key"_s, coded(task.key)},
            {u"signature"_s, coded(task.signature)},
            {u"message"_s, coded(task.message)}};
}

QJsonObject objectOf(const Progress &p) { return {{u"got"_s, p.got}, {u"expected"_s, p.expected}}; }
QJsonObject objectOf(const HttpReply &r) { return {{u"status"_s, r.status}, {u"body"_s, coded(r.body)}}; }
QJsonObject objectOf(const Hash &h) { return {{u"sha256"_s, h.sha256}}; }
QJsonObject objectOf(const Verdict &v) { return {{u"valid"_s, v.valid}}; }
QJsonObject objectOf(const Error &e) {
    return {{u"failed"_s, KINDS[static_cast<size_t>(e.kind)]}, {u"detail"_s, e.detail}};
}

std::optional<Task> httpTask(const QJsonObject &object) {
    constexpr qint64 MAX_BODY = Q_INT64_C(4) << 30, MAX_SECONDS = 24 * 3600, MAX_TIMES = 20;
    const auto method = jsonText(object[u"method"]), url = jsonText(object[u"url"]), file = jsonText(object[u"file"]);
    const auto body = decoded(object[u"body"]);
    const auto maxBytes = number(object[u"maxBytes"], MAX_BODY), slow = number(object[u"slowSeconds"], MAX_SECONDS),
               redirects = number(object[u"redirects"], MAX_TIMES);
    if (!method || !url || !file || !body || !maxBytes || !slow || !redirects || !object[u"headers"].isArray())
        return std::nullopt;
    ServerRequest request{.method = method->toLatin1(), .url = *url, .body = *body, .maxBytes = *maxBytes};
    request.slowTimeout = std::chrono::seconds(*slow);
    request.redirects = static_cast<int>(*redirects);
    for (const QJsonValue header : object[u"headers"].toArray()) {
        const auto value = decoded(header[1]);
        if (!value)
            return std::nullopt;
        request.headers.emplace_back(header[0].toString().toLatin1(), *value);
    }
    return HttpTask{std::move(request), *file};
}

std::optional<Task> hashTask(const QJsonObject &object) {
    const auto file = jsonText(object[u"file"]);
    return file ? std::optional<Task>(HashTask{*file}) : std::nullopt;
}

std::optional<Task> signatureTask(const QJsonObject &object) {
    const auto key = decoded(object[u"key"]), signature = decoded(object[u"signature"]),
               message = decoded(object[u"message"]);
    if (!key || !signature || !message)
        return std::nullopt;
    return SignatureProof{*key, *signature, *message};
}

std::optional<Line> reply(const QJsonObject &object) {
    constexpr qint64 MAX_STATUS = 999;
    const auto status = number(object[u"status"], MAX_STATUS);
    auto body = decoded(object[u"body"]);
    if (!status || !body)
        return std::nullopt;
    return HttpReply{static_cast<int>(*status), *std::move(body)};
}

std::optional<Line> progress(const QJsonObject &object) {
    constexpr qint64 ANY = std::numeric_limits<qint64>::max();
    const auto got = number(object[u"got"], ANY), expected = number(object[u"expected"], ANY);
    return got && expected ? std::optional<Line>(Progress{*got, *expected}) : std::nullopt;
}

std::optional<Line> failure(const QJsonObject &object) {
    const auto kind = std::find(std::begin(KINDS), std::end(KINDS), object[u"failed"].toString());
    if (kind == std::end(KINDS))
        return std::nullopt;
    return Error{static_cast<ErrorKind>(kind - std::begin(KINDS)), object[u"detail"].toString()};
}

} // namespace

QByteArray toJson(const Task &task) {
    return compact(std::visit([](const auto &t) { return objectOf(t); }, task));
}

std::optional<Task> parseTask(const QByteArray &json) {
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const QString what = object[u"do"].toString();
    return what == u"http"      ? httpTask(object)
           : what == u"sha256"  ? hashTask(object)
           : what == u"ed25519" ? signatureTask(object)
                                : std::nullopt;
}

QByteArray toJson(const Line &line) {
    return compact(std::visit([](const auto &l) { return objectOf(l); }, line));
}

std::optional<Line> parseLine(const QByteArray &json) {
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    if (object.contains(u"got"))
        return progress(object);
    if (object.contains(u"status"))
        return reply(object);
    if (object.contains(u"failed"))
        return failure(object);
    if (const auto sha = jsonText(object[u"sha256"]))
        return Hash{*sha};
    if (const auto valid = jsonBool(object[u"valid"]))
        return Verdict{*valid};
    return std::nullopt;
}

} // namespace korvel::exchange
