#pragma once

#include "ports/http_client.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <functional>
#include <utility>

namespace korvel {

/// How many redirects a request that may follow any follows.
constexpr int MAX_REDIRECTS = 5;

/// One request to a server on the internet: over HTTPS only, with certificates verified.
struct ServerRequest {
    QByteArray method = "GET";
    QString url;
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {};
    std::chrono::milliseconds timeout{0}; ///< Hard deadline for the whole exchange.
    qint64 maxBytes = 512 << 10;          ///< A larger response (headers included) is refused.
    std::chrono::seconds slowTimeout{0};  ///< For how long less than 1 KiB a second may arrive; 0: no such limit.
    int redirects = 0; ///< How many redirects are followed, to HTTPS only. For a GET without credentials alone.

    bool operator==(const ServerRequest &) const = default;
};

/// What a signature is checked by (Ed25519, RFC 8032).
struct SignatureProof {
    QByteArray key; ///< Raw, public.
    QByteArray signature;
    QByteArray message;

    bool operator==(const SignatureProof &) const = default;
};

/// What needs the internet or cryptography. A completion is always called, later, at the deadline at the latest.
class ServerClient {
public:
    virtual ~ServerClient() = default;
    /// Sends one request, once.
    virtual void send(ServerRequest request, Done<HttpReply> done) = 0;
    /// As send(), but the body of a response of status 200 goes to a new private file, which takes an existing one's
    /// place and is left as it is after a failure; any other body, up to 64 KiB of it, is in the reply. `progress` gets
    /// the bytes received and expected (0: not known) as they come.
    virtual void download(ServerRequest request, const QString &file,
                          std::function<void(qint64 got, qint64 expected)> progress, Done<HttpReply> done) = 0;
    /// The SHA-256 (FIPS 180-4) of a regular file in lower-case hexadecimal digits.
    virtual void hash(const QString &file, Done<QString> done) = 0;
    /// Whether the signature is that of the message by the key; an error: nobody knows.
    virtual void verify(const SignatureProof &proof, Done<bool> done) = 0;
};

} // namespace korvel
