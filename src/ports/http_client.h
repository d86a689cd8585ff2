#pragma once

#include "base/done.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <utility>

namespace korvel {

/// Maximum size of a JSON response, in bytes. In the worst nesting, Qt's parser takes about 40 MiB and 50 ms on the
/// main thread for it.
constexpr qint64 MAX_RESPONSE = 512 << 10;

struct HttpRequest {
    QByteArray method = "GET";
    QString url;
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {};
    std::chrono::milliseconds timeout{0}; ///< Hard deadline for the whole exchange.
    qint64 maxBytes = MAX_RESPONSE;       ///< Larger responses, headers included, are rejected.

    bool operator==(const HttpRequest &) const = default;
};

struct HttpReply {
    int status = 0;
    QByteArray body;
};

/// Sends requests over plain HTTP to 127.0.0.1 only: no proxy, no redirect. A POST is sent at most once. The completion
/// is always called, at the latest at the deadline.
class HttpClient {
public:
    virtual ~HttpClient() = default;
    virtual void send(HttpRequest request, Done<HttpReply> done) = 0;
};

} // namespace korvel
