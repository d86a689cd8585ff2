#pragma once

#include "base/result.h"
#include "ports/server_client.h"

#include <QString>
#include <optional>

namespace korvel {

/// This Mac's credential at the account server.
struct Credential {
    QString agentToken;
    QString agentId;
    bool operator==(const Credential &) const = default;
};

/// A GET of `path` at `server` (host:port) over HTTPS; none if they do not form a valid URL.
std::optional<ServerRequest> buildServerRequest(const QString &server, const QString &path,
                                                std::chrono::milliseconds timeout);

/// A password sign-in at `server` (host:port) for the Mac named `host`; none without a valid URL.
std::optional<ServerRequest> buildLogin(const QString &server, const QString &user, const QString &pass,
                                        const QString &host);

/// The credential of a sign-in; the detail of the error is a sentence for the user. Ignores the HTTP status.
Result<Credential> parseLogin(const Result<HttpReply> &reply);

/// The release of a credential at the server that issued it. Its response is not read. None as above.
std::optional<ServerRequest> buildUnbind(const QString &server, const QString &token);

/// Display name of this Mac: the system's name without ".local", at most 32 characters.
QString computerDisplayName(QString systemName);

/// The sentence for the user about a failed request to a server; the same for all requests. Logs the error's
/// description if there is one. Without an error: the sentence for an unusable response of unknown cause.
QString netErrorText(const std::optional<Error> &error);

} // namespace korvel
