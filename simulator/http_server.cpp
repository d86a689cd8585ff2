#include "simulator/http_server.h"

#include "simulator/loopback_socket.h"

#include <sys/socket.h>
#include <unistd.h>

namespace korvel::sim {

namespace {

constexpr qint64 LARGEST_BACKLOG = 2 << 20; // what a client may send before its last request is answered

} // namespace

HttpConnection::HttpConnection(std::unique_ptr<QTcpSocket> connected, int number, OnRequest onRequest, QObject *parent)
    : QObject(parent), tcp(std::move(connected)), handle(std::move(onRequest)), ownNumber(number) {
    tcp->setReadBufferSize(LARGEST_BACKLOG);
    connect(tcp.get(), &QTcpSocket::readyRead, this, [this] {
        if (!answering)
            readNext(tcp->readAll());
    });
    connect(tcp.get(), &QTcpSocket::disconnected, this, &QObject::deleteLater);
}

void HttpConnection::readNext(const QByteArray &bytes) {
    switch (reader.feed(bytes)) {
    case HttpRequestReader::Progress::Incomplete:
        break;
    case HttpRequestReader::Progress::Refused:
        tcp->write(headOf({400, "text/plain", {}}, 0, false));
        close();
        break;
    case HttpRequestReader::Progress::Complete: {
        const HttpRequest request = reader.take();
        answering = true;
        clientKeepsOpen = request.keepAlive;
        ++requests;
        handle(*this, request);
        break;
    }
    }
}

void HttpConnection::answer(const HttpAnswer &answer) {
    tcp->write(headOf(answer, answer.body.size(), clientKeepsOpen) + answer.body);
    finishAnswer();
}

void HttpConnection::finishAnswer() {
    if (!clientKeepsOpen) {
        close();
        return;
    }
    answering = false;
    const auto readWhatCameMeanwhile = [this] {
        if (!answering)
            readNext(tcp->readAll());
    };
    QMetaObject::invokeMethod(this, readWhatCameMeanwhile, Qt::QueuedConnection);
}

void HttpConnection::close() {
    answering = true; // nothing more is read
    tcp->disconnectFromHost();
}

void HttpConnection::reset() {
    answering = true;
    const linger discard{1, 0};
    ::setsockopt(int(tcp->socketDescriptor()), SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
    tcp->abort();
    deleteLater();
}

HttpServer::HttpServer(HttpConnection::OnRequest onRequest, MakeSocket makeSocket)
    : handle(std::move(onRequest)), makeSocket(std::move(makeSocket)) {}

bool HttpServer::listenOnLoopback(int port) {
    // The port may be shared with a socket that holds it for us, but never with a second listener.
    if (isPortTaken(port))
        return false;
    const int socket = boundLoopbackSocket(port);
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

std::unique_ptr<QTcpSocket> HttpServer::plainSocket(qintptr descriptor) {
    auto socket = std::make_unique<QTcpSocket>();
    if (!socket->setSocketDescriptor(descriptor))
        return nullptr;
    return socket;
}

void HttpServer::incomingConnection(qintptr descriptor) {
    auto socket = makeSocket(descriptor);
    if (!socket) {
        ::close(int(descriptor));
        return;
    }
    new HttpConnection(std::move(socket), ++connections, handle, this);
}

} // namespace korvel::sim
