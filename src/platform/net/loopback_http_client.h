#pragma once

#include "ports/http_client.h"
#include "ports/port_owner.h"

#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>

namespace korvel {

class LoopbackSocket;

/// HttpClient for the agent: plain HTTP/1.1 to 127.0.0.1 on the Qt event loop, without proxies or redirects. A GET
/// reuses the connection left open by an earlier one; a POST uses a new one and is sent once. Connects only to programs
/// of this user or of root; others look as if nothing listens.
class LoopbackHttpClient final : public HttpClient {
public:
    using LookUpOwner = std::function<PortOwner(quint16 port)>;
    explicit LoopbackHttpClient(LookUpOwner lookUpOwner = [](quint16 port) { return portOwner(port); });
    ~LoopbackHttpClient() override;
    void send(HttpRequest request, Done<HttpReply> done) override;

private:
    class Exchange;
    class Idle;
    /// A serialized request and its destination port.
    struct Message {
        quint16 port = 0;
        QByteArray bytes;
    };
    /// None if the request is invalid or not allowed.
    static std::optional<Message> messageOf(const HttpRequest &request);
    std::unique_ptr<LoopbackSocket> connectTo(quint16 port);
    /// Reports an error from the event loop, so that completions never run inside send().
    void refuseLater(Done<HttpReply> done);
    void finish(Exchange &exchange, Result<HttpReply> result);

    const LookUpOwner lookUpOwner;
    std::set<PortOwner> logged; ///< Each owner is logged once.
    bool closing = false;
    std::unique_ptr<Idle> idle;
    HttpRequest lastGet;                ///< Most polls repeat it, so its message is kept.
    std::optional<Message> lastMessage; ///< Of `lastGet`.
    std::map<const Exchange *, std::unique_ptr<Exchange>> exchanges;
    std::unique_ptr<QObject> context; ///< Context of pending refusals, which are dropped with it.
};

} // namespace korvel
