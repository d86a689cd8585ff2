#pragma once

#include "platform/done.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <functional>
#include <utility>

namespace korvel {

/// Where a request may go.
enum class Reach {
    Loopback, ///< Plain HTTP to 127.0.0.1 and nowhere else: no proxy, no redirect.
    Server,   ///< HTTPS only, certificates verified.
};

/// How many redirects a request that may follow any follows.
constexpr int MOST_REDIRECTS = 5;

/// The most bytes of a response that holds JSON. Nested as deep as Qt's parser goes, so many take it about 40 MiB and 50
/// ms of the main thread.
constexpr qint64 MAX_RESPONSE = 512 << 10;

struct HttpRequest {
    QByteArray method = "GET";
    QString url;
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {};
    std::chrono::milliseconds timeout{0};     ///< Hard deadline for the whole exchange.
    qint64 maxBytes = MAX_RESPONSE;           ///< A larger response (headers included) is refused.
    std::chrono::milliseconds idleTimeout{0}; ///< How long nothing may arrive; 0: as long as `timeout`.
    int redirects = 0; ///< How many redirects are followed, to HTTPS only. For a GET without credentials alone.
    Reach reach = Reach::Loopback;

    bool operator==(const HttpRequest &) const = default;
};

struct HttpReply {
    int status = 0;
    QByteArray body;
};

/// Sends one request. A POST leaves at most once; a completion is always called, at the deadline at the latest.
class HttpClient {
public:
    virtual ~HttpClient() = default;
    virtual void send(HttpRequest request, Done<HttpReply> done) = 0;
    /// As send(), but the body of an answer of status 200 goes to a new private file, which takes an existing one's
    /// place and is left as it is after a failure; any other body, up to 64 KiB of it, is in the reply. `progress` is
    /// told the bytes received and expected (0: not known) as they come.
    virtual void download(HttpRequest request, const QString &file,
                          std::function<void(qint64 got, qint64 expected)> progress, Done<HttpReply> done) = 0;
};

} // namespace korvel
