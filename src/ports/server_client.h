#pragma once

#include "ports/http_client.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <functional>
#include <utility>

namespace korvel {

/// Maximum number of redirects for a request that follows redirects.
constexpr int MAX_REDIRECTS = 5;

/// One request to a server on the internet: HTTPS only, with certificate verification.
struct ServerRequest {
    QByteArray method = "GET";
    QString url;
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {};
    std::chrono::milliseconds timeout{0}; ///< Hard deadline for the whole exchange.
    qint64 maxBytes = MAX_RESPONSE;       ///< Larger responses, headers included, are rejected.
    std::chrono::seconds slowTimeout{0};  ///< Fails if the rate stays below 1 KiB/s for this long; 0: no limit.
    int redirects = 0; ///< Maximum number of redirects, HTTPS only. Only for a GET without credentials.

    bool operator==(const ServerRequest &) const = default;
};

/// Input of a signature check (Ed25519, RFC 8032).
struct SignatureProof {
    QByteArray key; ///< Raw public key.
    QByteArray signature;
    QByteArray message;

    bool operator==(const SignatureProof &) const = default;
};

/// Operations that need the internet or cryptography. Completions are always called, asynchronously, at the latest at
/// the deadline.
class ServerClient {
public:
    virtual ~ServerClient() = default;
    /// Sends one request, without retries.
    virtual void send(ServerRequest request, Done<HttpReply> done) = 0;
    /// As send(), but writes the body of a response of status 200 to a new private file. It replaces an existing file
    /// and is kept after a failure. Of any other body, the reply holds up to 64 KiB. `progress` receives the bytes
    /// received and expected (0: unknown).
    virtual void download(ServerRequest request, const QString &file,
                          std::function<void(qint64 got, qint64 expected)> progress, Done<HttpReply> done) = 0;
    /// The SHA-256 (FIPS 180-4) of a regular file as lower-case hexadecimal digits.
    virtual void hash(const QString &file, Done<QString> done) = 0;
    /// Whether the signature matches message and key. An error means that the check could not run.
    virtual void verify(const SignatureProof &proof, Done<bool> done) = 0;
};

} // namespace korvel
