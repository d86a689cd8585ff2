#pragma once

#include "ports/server_client.h"

#include <QString>
#include <optional>

namespace korvel {

/// How this Mac proves to the account server who it is.
struct Credential {
    QString agentToken;
    QString agentId;
    bool operator==(const Credential &) const = default;
};

/// A GET of `path` at `server` (host:port) over HTTPS; none when that makes no web address.
std::optional<ServerRequest> buildServerRequest(const QString &server, const QString &path,
                                                std::chrono::milliseconds timeout);

/// A password sign-in at `server` (host:port) for the Mac named `host`; none when that makes no web address.
std::optional<ServerRequest> buildLogin(const QString &server, const QString &user, const QString &pass,
                                        const QString &host);

/// The credential of a sign-in; the error's detail is the sentence for the user. The HTTP status has no say.
Result<Credential> parseLogin(const Result<HttpReply> &reply);

/// The release of a credential at the server that gave it; its answer is not read. None as above.
std::optional<ServerRequest> buildUnbind(const QString &server, const QString &token);

/// How this Mac is called, from the name that the system gives: without ".local", at most 32 characters.
QString computerDisplayName(QString systemName);

} // namespace korvel
