#include "platform/loopback_http_client.h"

#include "platform/http_answer.h"
#include "platform/loopback_socket.h"
#include "platform/refuse_later.h"

#include <QTimer>
#include <algorithm>
#include <optional>

namespace korvel {

namespace {

/// Where a request goes and what it says.
struct Message {
    quint16 port = 0;
    QByteArray bytes;
};

bool isOneLine(QByteArrayView text) { return !text.contains('\r') && !text.contains('\n') && !text.contains('\0'); }

/// The port that an authority of 127.0.0.1 names; none when it is no such authority.
std::optional<quint16> portOf(const QByteArray &authority) {
    static const QByteArray HOST = "127.0.0.1";
    if (authority == HOST || authority == HOST + ':')
        return quint16(80);
    const QByteArray digits = authority.sliced(std::min(authority.size(), HOST.size() + 1));
    const bool isNumber = std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool fits = false;
    const quint16 port = digits.toUShort(&fits);
    return authority.startsWith(HOST + ':') && isNumber && fits ? std::optional(port) : std::nullopt;
}

/// None for a request that may not leave or cannot be formed.
std::optional<Message> messageOf(const HttpRequest &request) {
    static const QByteArray SCHEME = "http://";
    const QByteArray url = request.url.toUtf8();
    const bool printable = std::none_of(url.begin(), url.end(), [](uchar c) { return c <= ' ' || c == 127; });
    const bool known = request.method == "GET" || request.method == "POST";
    if (request.reach != Reach::Loopback || !printable || !known || !url.startsWith(SCHEME))
        return std::nullopt;
    const auto end =
        std::find_if(url.begin() + SCHEME.size(), url.end(), [](char c) { return c == '/' || c == '?' || c == '#'; });
    const QByteArray authority = url.sliced(SCHEME.size(), end - url.begin() - SCHEME.size());
    QByteArray target = url.sliced(end - url.begin());
    target.truncate(target.contains('#') ? target.indexOf('#') : target.size());
    if (!target.startsWith('/'))
        target.prepend('/');
    const auto port = portOf(authority);
    if (!port)
        return std::nullopt;
    QByteArray bytes = request.method + ' ' + target + " HTTP/1.1\r\nHost: " + authority + "\r\nAccept: */*\r\n";
    for (const auto &[name, value] : request.headers) {
        // A value from a file must not be able to add a header of its own.
        if (!isOneLine(name) || !isOneLine(value))
            return std::nullopt;
        bytes += name + ": " + value + "\r\n";
    }
    if (request.method == "POST")
        bytes += "Content-Length: " + QByteArray::number(request.body.size()) + "\r\n";
    bytes += "\r\n";
    return Message{*port, request.method == "POST" ? bytes + request.body : bytes};
}

} // namespace

/// A connection that the last poll left open. What comes on it unasked ends it.
class LoopbackHttpClient::Idle final : public LoopbackSocket::User {
public:
    void keep(std::unique_ptr<LoopbackSocket> s, quint16 p) {
        socket = std::move(s);
        port = p;
        socket->setUser(*this);
    }
    /// The connection, if it leads to that port.
    std::unique_ptr<LoopbackSocket> take(quint16 p) {
        return socket && p == port && socket->isQuiet() ? std::move(socket) : nullptr;
    }
    void received(QByteArrayView) override { socket.reset(); }
    void closed() override { socket.reset(); }

private:
    std::unique_ptr<LoopbackSocket> socket;
    quint16 port = 0;
};

/// One request under way.
class LoopbackHttpClient::Exchange final : public LoopbackSocket::User {
public:
    Exchange(LoopbackHttpClient &c, Message m, const HttpRequest &request, Done<HttpReply> d)
        : client(c), message(std::move(m)), isPost(request.method == "POST"), answer(request.maxBytes),
          done(std::move(d)), deadline(std::make_unique<QTimer>()) {
        deadline->setSingleShot(true);
        deadline->setTimerType(Qt::PreciseTimer);
        QObject::connect(deadline.get(), &QTimer::timeout, deadline.get(), [this] { timedOut(); });
        if (request.timeout.count() > 0)
            deadline->start(request.timeout);
        if (!isPost)
            socket = client.idle->take(message.port);
        isReused = socket != nullptr;
        if (!isReused)
            socket = std::make_unique<LoopbackSocket>(message.port);
        talk();
    }

    void received(QByteArrayView bytes) override {
        answer.feed(bytes);
        if (answer.isOver())
            finish();
    }

    void closed() override {
        if (!socket->wasConnected())
            return fail(ErrorKind::Unreachable, QStringLiteral("nothing listens"));
        // The agent had closed a connection while nobody used it. Never for a POST, which goes over none of those.
        if (std::exchange(isReused, false) && !answer.hasBegun()) {
            socket = std::make_unique<LoopbackSocket>(message.port);
            return talk();
        }
        answer.end();
        finish();
    }

    Done<HttpReply> takeDone() { return std::move(done); }

private:
    void talk() {
        socket->setUser(*this);
        if (socket->isOpen())
            return socket->write(message.bytes);
        // Nobody is told before send() has returned.
        QMetaObject::invokeMethod(
            deadline.get(),
            [this] {
                retireDeadline();
                fail(ErrorKind::Unreachable, QStringLiteral("no connection"));
            },
            Qt::QueuedConnection);
    }

    /// Before an end that the deadline itself, as an object, is busy telling.
    void retireDeadline() {
        deadline->stop();
        deadline.release()->deleteLater();
    }

    void timedOut() {
        retireDeadline();
        fail(ErrorKind::TimedOut, QStringLiteral("no whole answer in time"));
    }

    void finish() {
        if (!isPost && answer.leavesConnection())
            client.idle->keep(std::move(socket), message.port);
        client.finish(*this, answer.outcome());
    }

    void fail(ErrorKind kind, const QString &detail) { client.finish(*this, Error{kind, detail}); }

    LoopbackHttpClient &client;
    const Message message;
    const bool isPost;
    bool isReused = false;
    HttpAnswer answer;
    Done<HttpReply> done;
    std::unique_ptr<LoopbackSocket> socket;
    std::unique_ptr<QTimer> deadline;
};

LoopbackHttpClient::LoopbackHttpClient() : idle(std::make_unique<Idle>()), context(std::make_unique<QObject>()) {}

LoopbackHttpClient::~LoopbackHttpClient() {
    closing = true;
    // Whoever waits is told, through the completions that go with the exchanges.
    auto dropped = std::exchange(exchanges, {});
    dropped.clear();
    context.reset();
}

void LoopbackHttpClient::send(HttpRequest request, Done<HttpReply> done) {
    if (closing)
        return; // the completion reports that itself
    auto message = messageOf(request);
    if (!message)
        return refuseLater(*context, std::move(done), {ErrorKind::InvalidRequest, {}});
    auto exchange = std::make_unique<Exchange>(*this, std::move(*message), request, std::move(done));
    exchanges.emplace(exchange.get(), std::move(exchange));
}

void LoopbackHttpClient::download(HttpRequest, const QString &, std::function<void(qint64 got, qint64 expected)>,
                                  Done<HttpReply> done) {
    refuseLater(*context, std::move(done), {ErrorKind::InvalidRequest, {}});
}

void LoopbackHttpClient::finish(Exchange &exchange, Result<HttpReply> result) {
    // The completion comes last: it may send again, or end this client.
    Done<HttpReply> done = exchange.takeDone();
    exchanges.erase(&exchange);
    done(std::move(result));
}

} // namespace korvel
