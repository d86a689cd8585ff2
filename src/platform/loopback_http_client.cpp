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

constexpr qsizetype USUAL_MESSAGE = 512; ///< Bytes, without a body.

bool isOneLine(QByteArrayView text) { return !text.contains('\r') && !text.contains('\n') && !text.contains('\0'); }

/// The port that an authority of 127.0.0.1 names; none when it is no such authority.
std::optional<quint16> portOf(QByteArrayView authority) {
    constexpr QByteArrayView HOST = "127.0.0.1";
    if (!authority.startsWith(HOST))
        return std::nullopt;
    const QByteArrayView rest = authority.sliced(HOST.size());
    if (rest.isEmpty() || rest == ":")
        return quint16(80);
    const QByteArrayView digits = rest.sliced(1);
    const bool isNumber = std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
    bool fits = false;
    const quint16 port = digits.toUShort(&fits);
    return rest.startsWith(':') && isNumber && fits ? std::optional(port) : std::nullopt;
}

/// None for a request that may not leave or cannot be formed.
std::optional<Message> messageOf(const HttpRequest &request) {
    constexpr QByteArrayView SCHEME = "http://";
    const QByteArray url = request.url.toUtf8();
    const bool printable = std::none_of(url.begin(), url.end(), [](uchar c) { return c <= ' ' || c == 127; });
    const bool known = request.method == "GET" || request.method == "POST";
    if (request.reach != Reach::Loopback || !printable || !known || !url.startsWith(SCHEME))
        return std::nullopt;
    const auto end =
        std::find_if(url.begin() + SCHEME.size(), url.end(), [](char c) { return c == '/' || c == '?' || c == '#'; });
    const QByteArrayView authority = QByteArrayView(url).sliced(SCHEME.size(), end - url.begin() - SCHEME.size());
    const QByteArrayView target(end, std::find(end, url.end(), '#'));
    const auto port = portOf(authority);
    if (!port)
        return std::nullopt;
    const bool isPost = request.method == "POST";
    QByteArray bytes;
    bytes.reserve(USUAL_MESSAGE + (isPost ? request.body.size() : 0));
    bytes.append(request.method).append(target.startsWith('/') ? " " : " /").append(target);
    bytes.append(" HTTP/1.1\r\nHost: ").append(authority).append("\r\nAccept: */*\r\n");
    for (const auto &[name, value] : request.headers) {
        // A value from a file must not be able to add a header of its own.
        if (!isOneLine(name) || !isOneLine(value))
            return std::nullopt;
        bytes.append(name).append(": ").append(value).append("\r\n");
    }
    if (isPost)
        bytes.append("Content-Length: ").append(QByteArray::number(request.body.size())).append("\r\n");
    bytes.append("\r\n");
    return Message{*port, isPost ? bytes + request.body : bytes};
}

/// A timer that costs no connection: one is made with every poll.
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
          done(std::move(d)), deadline(std::make_unique<Deadline>([this] { timedOut(); })) {
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
    std::unique_ptr<Deadline> deadline;
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
