#pragma once

#include "ports/http_client.h"
#include "ports/port_owner.h"

#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <set>

namespace korvel {

class LoopbackSocket;

/// HttpClient for the agent: plain HTTP/1.1 to 127.0.0.1 on the Qt event loop, without proxy or redirect. A poll goes
/// over a connection that an earlier one left open; a POST has one of its own and leaves once. A new connection is made
/// only to a program of this user or of root; any other gets nothing, as if nothing listened.
class LoopbackHttpClient final : public HttpClient {
public:
    using LookUpOwner = std::function<PortOwner(quint16 port)>;
    explicit LoopbackHttpClient(LookUpOwner lookUpOwner = [](quint16 port) { return portOwner(port); });
    ~LoopbackHttpClient() override;
    void send(HttpRequest request, Done<HttpReply> done) override;

private:
    class Exchange;
    class Idle;
    std::unique_ptr<LoopbackSocket> connectTo(quint16 port);
    /// Reports an error once the sender has returned to the event loop, so that callers see one order of events.
    void refuseLater(Done<HttpReply> done);
    void finish(Exchange &exchange, Result<HttpReply> result);

    const LookUpOwner lookUpOwner;
    std::set<PortOwner> logged; ///< Each owner is logged once.
    bool closing = false;
    std::unique_ptr<Idle> idle;
    std::map<const Exchange *, std::unique_ptr<Exchange>> exchanges;
    std::unique_ptr<QObject> context; ///< Refusals that have not been told go with it.
};

} // namespace korvel
