#include "platform/net/loopback_http_client.h"

#include "base/log.h"
#include "platform/net/http_messages.h"
#include "platform/net/loopback_socket.h"

#include <QTimer>
#include <QUrl>

namespace korvel {

namespace {

/// A timer without a signal connection: each poll creates one, so it must be cheap.
class Deadline final : public QTimer {
public:
    explicit Deadline(std::function<void()> p) : passed(std::move(p)) {
        setSingleShot(true);
        setTimerType(Qt::PreciseTimer);
    }

protected:
    void timerEvent(QTimerEvent *) override {
        stop();
        passed();
    }

private:
    std::function<void()> passed;
};

} // namespace

std::optional<LoopbackHttpClient::Message> LoopbackHttpClient::messageOf(const HttpRequest &request) {
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
          done(std::move(d)), deadline(std::make_unique<Deadline>([this] { timedOut(); })) {
        if (request.timeout.count() > 0)
            deadline->start(request.timeout);
        if (!isPost)
            socket = client.idle->take(message.port);
        isReused = socket != nullptr;
        if (!isReused)
            socket = client.connectTo(message.port);
        talk();
    }

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

    Done<HttpReply> takeDone() { return std::move(done); }

private:
    void talk() {
        if (socket && socket->isOpen()) {
            socket->setUser(*this);
            return socket->write(message.bytes);
        }
        // Completions must not run inside send().
        QMetaObject::invokeMethod(
            deadline.get(),
            [this] {
                retireDeadline();
                fail(ErrorKind::Unreachable, QStringLiteral("no connection"));
            },
            Qt::QueuedConnection);
    }

    /// Called from the deadline's own events, so it is deleted later.
    void retireDeadline() {
        deadline->stop();
        deadline.release()->deleteLater();
    }

    void timedOut() {
        retireDeadline();
        fail(ErrorKind::TimedOut, QStringLiteral("no whole response in time"));
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
    std::unique_ptr<Deadline> deadline;
};

LoopbackHttpClient::LoopbackHttpClient(LookUpOwner l)
    : lookUpOwner(std::move(l)), idle(std::make_unique<Idle>()), context(std::make_unique<QObject>()) {}

LoopbackHttpClient::~LoopbackHttpClient() {
    closing = true;
    // Their completions report Dropped.
    auto dropped = std::exchange(exchanges, {});
    dropped.clear();
    context.reset();
}

void LoopbackHttpClient::send(HttpRequest request, Done<HttpReply> done) {
    if (closing)
        return; // destroying `done` reports Dropped
    auto message = lastMessage && request == lastGet ? lastMessage : messageOf(request);
    if (!message)
        return refuseLater(std::move(done));
    auto exchange = std::make_unique<Exchange>(*this, *message, request, std::move(done));
    if (request.method == "GET") {
        lastGet = std::move(request);
        lastMessage = std::move(message);
    }
    exchanges.emplace(exchange.get(), std::move(exchange));
}

void LoopbackHttpClient::refuseLater(Done<HttpReply> done) {
    auto refused = std::make_shared<Done<HttpReply>>(std::move(done));
    QMetaObject::invokeMethod(
        context.get(),
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
    exchanges.erase(&exchange);
    done(std::move(result));
}

} // namespace korvel
