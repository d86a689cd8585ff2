#pragma once

#include "simulator/http_message.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <functional>
#include <memory>

namespace korvel::sim {

// One accepted connection. It reads requests one after the other; each must be answered with answer(), or the
// connection ended, before the next is read. Deletes itself once the connection is gone: hold it by QPointer.
//
// The server is our own and not Qt's HTTP server, because that one only ever gives right answers.
class HttpConnection : public QObject {
public:
    using OnRequest = std::function<void(HttpConnection &, const HttpRequest &)>;

    // `number` counts the connections of a server from 1.
    HttpConnection(std::unique_ptr<QTcpSocket> connected, int number, OnRequest onRequest, QObject *parent);

    int number() const { return ownNumber; }
    // The number of the request being answered, from 1.
    int requestNumber() const { return requests; }
    // The socket, for answers that answer() cannot give.
    QTcpSocket &socket() { return *tcp; }
    // Whether the client leaves the connection open after this answer.
    bool keepAlive() const { return clientKeepsOpen; }

    // Sends a whole answer and goes on to the next request.
    void answer(const HttpAnswer &answer);
    // The current answer has been written by other means: goes on to the next request.
    void finishAnswer();
    // Closes after what was written is sent.
    void close();
    // Throws away what was not sent; the client sees a reset.
    void reset();

private:
    void readNext(const QByteArray &bytes);

    std::unique_ptr<QTcpSocket> tcp;
    OnRequest handle;
    HttpRequestReader reader;
    int ownNumber;
    int requests = 0;
    bool answering = false;
    bool clientKeepsOpen = true;
};

// Accepts connections and hands their requests to one function.
class HttpServer : public QTcpServer {
public:
    // Makes the socket of an accepted connection; a server over TLS gives one that encrypts.
    using MakeSocket = std::function<std::unique_ptr<QTcpSocket>(qintptr descriptor)>;

    explicit HttpServer(HttpConnection::OnRequest onRequest, MakeSocket makeSocket = plainSocket);

    // Listens on 127.0.0.1. False when the port is taken by a listener, or cannot be bound.
    bool listenOnLoopback(int port);

    // Listens no longer, and resets every connection.
    void stop();

    // A socket without encryption.
    static std::unique_ptr<QTcpSocket> plainSocket(qintptr descriptor);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    HttpConnection::OnRequest handle;
    MakeSocket makeSocket;
    int connections = 0;
};

} // namespace korvel::sim
