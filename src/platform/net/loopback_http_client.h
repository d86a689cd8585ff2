#pragma once

#include "ports/http_client.h"
#include "ports/port_owner.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace korvel {

class LoopbackSocket;

/// HttpClient for the agent: plain HTTP/1.1 to 127.0.0.1 on the Qt event loop, without proxies or redirects. A GET
/// reuses the connection left open by an earlier one; a POST uses a new one and is sent once. Connects only to programs
/// of this user or of root; others look as if nothing listens.
class LoopbackHttpClient final : public QObject, public HttpClient {
public:
    using LookUpOwner = std::function<PortOwner(quint16 port)>;
    explicit LoopbackHttpClient(LookUpOwner lookUpOwner = [](quint16 port) { return portOwner(port); });
    ~LoopbackHttpClient() override;
    void send(HttpRequest request, Done<HttpReply> done) override;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    class Exchange;
    class Idle;
    /// A serialized request and its destination port.
    struct Message {
        quint16 port = 0;
        QByteArray bytes;
    };
    /// None if the request is invalid or not allowed.
    static std::optional<Message> serialized(const HttpRequest &request);
    /// The same, kept for the GETs that are repeated all the time.
    std::optional<Message> messageOf(const HttpRequest &request);
    std::unique_ptr<LoopbackSocket> connectTo(quint16 port);
    /// Reports an error from the event loop, so that completions never run inside send().
    void refuseLater(Done<HttpReply> done);
    void finish(Exchange &exchange, Result<HttpReply> result);

    const LookUpOwner lookUpOwner;
    std::set<PortOwner> logged; ///< Each owner is logged once.
    bool closing = false;
    std::unique_ptr<Idle> idle;
    std::vector<std::pair<HttpRequest, Message>> lastGets; ///< Newest first.
    std::vector<std::unique_ptr<Exchange>> exchanges;
};

} // namespace korvel
