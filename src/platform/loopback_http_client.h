#pragma once

#include "platform/http_client.h"

#include <QObject>
#include <map>
#include <memory>

namespace korvel {

class LoopbackSocket;

/// HttpClient for the agent: plain HTTP/1.1 to 127.0.0.1 on the Qt event loop, without proxy or redirect. A poll goes
/// over a connection that an earlier one left open; a POST has one of its own and leaves once.
class LoopbackHttpClient final : public HttpClient {
public:
    LoopbackHttpClient();
    ~LoopbackHttpClient() override;
    void send(HttpRequest request, Done<HttpReply> done) override;

private:
    class Exchange;
    class Idle;
    /// Reports an error once the sender has returned to the event loop, so that callers see one order of events.
    void refuseLater(Done<HttpReply> done);
    void finish(Exchange &exchange, Result<HttpReply> result);

    bool closing = false;
    std::unique_ptr<Idle> idle;
    std::map<const Exchange *, std::unique_ptr<Exchange>> exchanges;
    std::unique_ptr<QObject> context; ///< Refusals that have not been told go with it.
};

} // namespace korvel
