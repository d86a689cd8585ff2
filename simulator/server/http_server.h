#pragma once

#include "simulator/server/http_message.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <memory>

namespace korvel::sim {

/// One accepted connection. It reads requests one after the other; each must be answered with respond(), or the
/// connection ended, before the next is read. Deletes itself once the connection is gone: hold it by QPointer.
class HttpConnection : public QObject {
public:
    using OnRequest = std::function<void(HttpConnection &, const HttpRequest &)>;

    /// `number` counts the connections of a server from 1.
    HttpConnection(std::unique_ptr<QTcpSocket> connected, int number, OnRequest onRequest, QObject *parent);
    ~HttpConnection() override;

    int number() const { return ownNumber; }
    /// The number of the current request, from 1.
    int requestNumber() const { return requests; }

    /// Sends a whole response and goes on to the next request.
    void respond(const HttpResponse &response);
    /// Sends the head of a response with a body of that length; write() and finishResponse() follow.
    void begin(const HttpResponse &response, qint64 length) { write(headOf(response, length, keepsOpen)); }
    void write(const QByteArray &bytes) { tcp->write(bytes); }
    void finishResponse();
    /// Bytes that were written and not yet sent.
    qint64 backlog() const;
    /// Closes once all is sent.
    void close();
    /// Throws away what was not sent; the client sees a reset.
    void reset();

private:
    struct Parser;
    void read();

    std::unique_ptr<QTcpSocket> tcp;
    OnRequest handle;
    std::unique_ptr<Parser> parser; ///< Of the request that is being read.
    QByteArray received;            ///< Bytes that only later ones give a meaning.
    int ownNumber;
    int requests = 0;
    bool busy = false;     ///< With a response, or for good.
    bool keepsOpen = true; ///< The client leaves the connection open after the response.
};

/// Accepts connections and hands their requests to one function.
class HttpServer : public QTcpServer {
public:
    /// Makes the socket of an accepted connection; a server over TLS gives one that encrypts.
    using MakeSocket = std::function<std::unique_ptr<QTcpSocket>()>;

    explicit HttpServer(HttpConnection::OnRequest onRequest, MakeSocket makeSocket = std::make_unique<QTcpSocket>);

    /// Listens on 127.0.0.1. False when the port is taken by a listener, or cannot be bound.
    bool listenOnLoopback(int port);
    /// Stops listening, and resets every connection.
    void stop();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    HttpConnection::OnRequest handle;
    MakeSocket makeSocket;
    int connections = 0;
};

} // namespace korvel::sim
