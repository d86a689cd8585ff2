#pragma once

#include "base/done.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <utility>

namespace korvel {

/// The most bytes of a response that holds JSON. Nested as deep as Qt's parser goes, so many take it about 40 MiB and
/// 50 ms of the main thread.
constexpr qint64 MAX_RESPONSE = 512 << 10;

struct HttpRequest {
    QByteArray method = "GET";
    QString url;
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {};
    std::chrono::milliseconds timeout{0}; ///< Hard deadline for the whole exchange.
    qint64 maxBytes = MAX_RESPONSE;       ///< A larger response (headers included) is refused.

    bool operator==(const HttpRequest &) const = default;
};

struct HttpReply {
    int status = 0;
    QByteArray body;
};

/// Sends requests by plain HTTP to 127.0.0.1 and nowhere else: no proxy, no redirect. A POST leaves at most once; a
/// completion is always called, at the deadline at the latest.
class HttpClient {
public:
    virtual ~HttpClient() = default;
    virtual void send(HttpRequest request, Done<HttpReply> done) = 0;
};

} // namespace korvel
