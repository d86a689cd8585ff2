#include "platform/net/loopback_http_client.h"

#include "base/log.h"
#include "platform/net/http_messages.h"
#include "platform/net/loopback_socket.h"

#include <QCoreApplication>
#include <QTimerEvent>
#include <QUrl>
#include <algorithm>

namespace korvel {

namespace {
constexpr size_t MAX_LAST_GETS = 2; // the health poll and the permissions
}

std::optional<LoopbackHttpClient::Message> LoopbackHttpClient::serialized(const HttpRequest &request) {
    const QUrl url(request.url, QUrl::StrictMode);
    const bool isKnown = request.method == "GET" || request.method == "POST";
    // No user information: it must not hide the actual host, also with a malformed port.
    if (!isKnown || !url.isValid() || url.scheme() != u"http" || url.host() != u"127.0.0.1" ||
        !url.userInfo().isEmpty())
        return std::nullopt;
    const QByteArray authority = url.authority(QUrl::FullyEncoded).toLatin1();
    const QUrl target = url.adjusted(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    auto bytes = serializeRequest(request, authority, target.toEncoded());
    return bytes ? std::optional(Message{static_cast<quint16>(url.port(80)), *std::move(bytes)}) : std::nullopt;
}

std::optional<LoopbackHttpClient::Message> LoopbackHttpClient::messageOf(const HttpRequest &request) {
    const auto last =
        std::find_if(lastGets.begin(), lastGets.end(), [&](const auto &get) { return get.first == request; });
    if (last != lastGets.end())
        return last->second;
    auto message = serialized(request);
    if (message && request.method == "GET") {
        lastGets.emplace(lastGets.begin(), request, *message);
        lastGets.resize(std::min(lastGets.size(), MAX_LAST_GETS));
    }
    return message;
}

/// The connection left open by the last poll. Unsolicited bytes close it.
class LoopbackHttpClient::Idle final : public LoopbackSocket::User {
public:
    void keep(std::unique_ptr<LoopbackSocket> s, quint16 p) {
        socket = std::move(s);
        port = p;
        socket->setUser(*this);
    }
    /// The connection, if it is still usable and leads to this port.
    std::unique_ptr<LoopbackSocket> take(quint16 p) {
        return socket && p == port && socket->isQuiet() ? std::move(socket) : nullptr;
    }
    void received(QByteArrayView) override { socket.reset(); }
    void closed() override { socket.reset(); }

private:
    std::unique_ptr<LoopbackSocket> socket;
    quint16 port = 0;
};

/// One request in flight.
class LoopbackHttpClient::Exchange final : public LoopbackSocket::User {
public:
    Exchange(LoopbackHttpClient &c, Message m, const HttpRequest &request, Done<HttpReply> d)
        : client(c), message(std::move(m)), isPost(request.method == "POST"), response(request.maxBytes),
          done(std::move(d)) {
        if (request.timeout.count() > 0)
            startTimer(request.timeout);
        if (!isPost)
            socket = client.idle->take(message.port);
        isReused = socket != nullptr;
        if (!isReused)
            socket = client.connectTo(message.port);
        talk();
    }
    ~Exchange() override { stopTimer(); }

    void received(QByteArrayView bytes) override {
        response.feed(bytes);
        if (response.isOver())
            finish();
    }

    void closed() override {
        if (!socket->wasConnected())
            return fail(ErrorKind::Unreachable, QStringLiteral("nothing listens"));
        // Retries on a new connection: the agent closed the idle one. A POST never reuses a connection.
        if (std::exchange(isReused, false) && !response.hasBegun()) {
            socket = client.connectTo(message.port);
            return talk();
        }
        response.end();
        finish();
    }

    bool hasTimer(int id) const { return timer == id; }
    void timedOut() {
        if (socket && socket->isOpen())
            fail(ErrorKind::TimedOut, QStringLiteral("no whole response in time"));
        else
            fail(ErrorKind::Unreachable, QStringLiteral("no connection"));
    }

    Done<HttpReply> takeDone() { return std::move(done); }

private:
    void talk() {
        if (socket && socket->isOpen()) {
            socket->setUser(*this);
            return socket->write(message.bytes);
        }
        startTimer(std::chrono::milliseconds::zero()); // completions must not run inside send()
    }

    void startTimer(std::chrono::milliseconds delay) {
        stopTimer();
        timer = client.startTimer(delay, Qt::PreciseTimer);
    }
    void stopTimer() {
        if (const int id = std::exchange(timer, 0))
            client.killTimer(id);
    }

    void finish() {
        if (!isPost && response.leavesConnection())
            client.idle->keep(std::move(socket), message.port);
        client.finish(*this, response.outcome());
    }

    void fail(ErrorKind kind, const QString &detail) { client.finish(*this, Error{kind, detail}); }

    LoopbackHttpClient &client;
    const Message message;
    const bool isPost;
    bool isReused = false;
    HttpResponseParser response;
    Done<HttpReply> done;
    std::unique_ptr<LoopbackSocket> socket;
    int timer = 0; ///< The client's timer for the deadline, or for the report that there is no connection.
};

LoopbackHttpClient::LoopbackHttpClient(LookUpOwner l) : lookUpOwner(std::move(l)), idle(std::make_unique<Idle>()) {}

LoopbackHttpClient::~LoopbackHttpClient() {
    closing = true;
    // Their completions report Dropped.
    auto dropped = std::exchange(exchanges, {});
    dropped.clear();
    QCoreApplication::removePostedEvents(this);
}

void LoopbackHttpClient::send(HttpRequest request, Done<HttpReply> done) {
    if (closing)
        return; // destroying `done` reports Dropped
    auto message = messageOf(request);
    if (!message)
        return refuseLater(std::move(done));
    exchanges.push_back(std::make_unique<Exchange>(*this, *std::move(message), request, std::move(done)));
}

void LoopbackHttpClient::timerEvent(QTimerEvent *event) {
    const auto late = std::find_if(exchanges.begin(), exchanges.end(),
                                   [&](const auto &exchange) { return exchange->hasTimer(event->timerId()); });
    if (late != exchanges.end())
        (*late)->timedOut();
}

void LoopbackHttpClient::refuseLater(Done<HttpReply> done) {
    auto refused = std::make_shared<Done<HttpReply>>(std::move(done));
    QMetaObject::invokeMethod(
        this,
        [refused] {
            (*refused)(Error{ErrorKind::InvalidRequest, QStringLiteral("not a request to the agent")});
        },
        Qt::QueuedConnection);
}

std::unique_ptr<LoopbackSocket> LoopbackHttpClient::connectTo(quint16 port) {
    const PortOwner owner = lookUpOwner(port);
    const bool isNew = logged.insert(owner).second;
    if (isNew && owner == PortOwner::Stranger)
        log(QStringLiteral("[net] another user's program listens on port %1: it is sent nothing").arg(port));
    if (isNew && owner == PortOwner::Unknown)
        log(QStringLiteral("[net] the system does not say who listens on port %1").arg(port));
    const bool isGiven = owner == PortOwner::Trusted || owner == PortOwner::Unknown;
    return isGiven ? std::make_unique<LoopbackSocket>(port) : nullptr;
}

void LoopbackHttpClient::finish(Exchange &exchange, Result<HttpReply> result) {
    // Last, because the completion may send again or destroy this client.
    Done<HttpReply> done = exchange.takeDone();
    std::erase_if(exchanges, [&](const auto &other) { return other.get() == &exchange; });
    done(std::move(result));
}

} // namespace korvel
