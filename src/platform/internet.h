#pragma once

#include "platform/http_client.h"
#include "platform/scheduler.h"

#include <memory>
#include <optional>

namespace korvel {

/// What only an exchange with servers needs, and the large libraries behind it. On Linux it is a module of the bundle
/// that is loaded at the first call of any of this: nobody pays for it who only polls the agent.
struct InternetParts {
    std::unique_ptr<HttpClient> (*makeServerClient)(Scheduler &scheduler);
    std::optional<QString> (*sha256File)(const QString &path);
    bool (*ed25519Valid)(const QByteArray &key, const QByteArray &signature, const QByteArray &message);
};

/// The client for servers; may be made before anything is loaded. `scheduler` has to outlive it.
std::unique_ptr<HttpClient> makeServerClient(Scheduler &scheduler);

} // namespace korvel
