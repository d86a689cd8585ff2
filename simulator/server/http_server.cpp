#include "simulator/server/http_server.h"

#include "simulator/home/loopback_socket.h"

#include <QSslSocket>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <sys/socket.h>
#include <unistd.h>

namespace korvel::sim {

namespace beast = boost::beast;
namespace http = boost::beast::http;

namespace {

constexpr qint64 MAX_BACKLOG = 2 << 20; // limit of a client's data before the response to its last request
constexpr std::uint32_t MAX_HEAD = 32 << 10;

QByteArray bytesOf(beast::string_view text) { return {text.data(), qsizetype(text.size())}; }

HttpRequest requestOf(const http::request<http::string_body> &message) {
    HttpRequest request{bytesOf(message.method_string()), bytesOf(message.target())};
    for (const auto &field : message)
        request.headers.insert(bytesOf(field.name_string()).toLower(), bytesOf(field.value()));
    request.body = QByteArray::fromStdString(message.body());
    return request;
}

} // namespace

struct HttpConnection::Parser : http::request_parser<http::string_body> {};

HttpConnection::HttpConnection(std::unique_ptr<QTcpSocket> connected, int number, OnRequest onRequest, QObject *parent)
    : QObject(parent), tcp(std::move(connected)), handle(std::move(onRequest)), ownNumber(number) {
    tcp->setReadBufferSize(MAX_BACKLOG);
    connect(tcp.get(), &QTcpSocket::readyRead, this, [this] { read(); });
    connect(tcp.get(), &QTcpSocket::disconnected, this, &QObject::deleteLater);
}

HttpConnection::~HttpConnection() = default;

void HttpConnection::read() {
    if (busy)
        return;
    received += tcp->readAll();
    if (!parser) {
        parser = std::make_unique<Parser>();
        parser->eager(true);
        parser->header_limit(MAX_HEAD);
    }
    beast::error_code failure;
    while (!failure && !parser->is_done() && !received.isEmpty())
        received.remove(
            0, qsizetype(parser->put(boost::asio::buffer(received.constData(), size_t(received.size())), failure)));
    if (failure && failure != http::error::need_more) {
        write(headOf({.status = 400}, 0, false));
        return close();
    }
    if (!parser->is_done())
        return;
    const HttpRequest request = requestOf(parser->get());
    keepsOpen = parser->keep_alive();
    parser.reset();
    busy = true;
    ++requests;
    handle(*this, request);
}

void HttpConnection::respond(const HttpResponse &response) {
    begin(response, response.body.size());
    write(response.body);
    finishResponse();
}

void HttpConnection::finishResponse() {
    if (!keepsOpen)
        return close();
    busy = false;
    QMetaObject::invokeMethod(
        this, [this] { read(); }, Qt::QueuedConnection); // reads the data that arrived meanwhile
}

qint64 HttpConnection::backlog() const {
    const auto *secure = qobject_cast<const QSslSocket *>(tcp.get());
    return tcp->bytesToWrite() + (secure ? secure->encryptedBytesToWrite() : 0);
}

void HttpConnection::close() {
    busy = true;
    tcp->disconnectFromHost();
}

void HttpConnection::reset() {
    busy = true;
    const linger discard{1, 0};
    ::setsockopt(int(tcp->socketDescriptor()), SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
    tcp->abort();
    deleteLater();
}

HttpServer::HttpServer(HttpConnection::OnRequest onRequest, MakeSocket makeSocket)
    : handle(std::move(onRequest)), makeSocket(std::move(makeSocket)) {}

bool HttpServer::listenOnLoopback(int port) {
    // The port may be shared with a socket that reserves it, but not with a second listener.
    const int socket = isPortTaken(port) ? -1 : boundLoopbackSocket(port);
    if (socket < 0)
        return false;
    if (::listen(socket, 64) == 0 && setSocketDescriptor(socket))
        return true;
    ::close(socket);
    return false;
}

void HttpServer::stop() {
    QTcpServer::close();
    for (QObject *child : children())
        if (auto *connection = dynamic_cast<HttpConnection *>(child))
            connection->reset();
}

void HttpServer::incomingConnection(qintptr descriptor) {
    std::unique_ptr<QTcpSocket> socket = makeSocket();
    if (!socket->setSocketDescriptor(descriptor)) {
        ::close(int(descriptor));
        return;
    }
    if (auto *secure = qobject_cast<QSslSocket *>(socket.get()))
        secure->startServerEncryption();
    new HttpConnection(std::move(socket), ++connections, handle, this);
}

} // namespace korvel::sim
