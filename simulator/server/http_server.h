#pragma once

#include "simulator/server/http_message.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <memory>

namespace korvel::sim {

/// One accepted connection. Reads the next request only after the response to the current one. Deletes itself when the
/// connection has gone: hold it by QPointer.
class HttpConnection : public QObject {
public:
    using OnRequest = std::function<void(HttpConnection &, const HttpRequest &)>;

    /// `number`: number of the connection, from 1.
    HttpConnection(std::unique_ptr<QTcpSocket> connected, int number, OnRequest onRequest, QObject *parent);
    ~HttpConnection() override;

    int number() const { return ownNumber; }
    /// Number of the current request, from 1.
    int requestNumber() const { return requests; }

    /// Sends a whole response and continues with the next request.
    void respond(const HttpResponse &response);
    /// Sends the head of a response with a body of that length. write() and finishResponse() follow.
    void begin(const HttpResponse &response, qint64 length) { write(headOf(response, length, keepsOpen)); }
    void write(const QByteArray &bytes) { tcp->write(bytes); }
    void finishResponse();
    /// Bytes written but not yet sent.
    qint64 backlog() const;
    /// Closes the connection once everything is sent.
    void close();
    /// Discards unsent data and resets the connection.
    void reset();

private:
    struct Parser;
    void read();

    std::unique_ptr<QTcpSocket> tcp;
    OnRequest handle;
    std::unique_ptr<Parser> parser; ///< For the current request.
    QByteArray received;            ///< Bytes not yet parsed.
    int ownNumber;
    int requests = 0;
    bool busy = false;     ///< A response is due, or nothing more is read.
    bool keepsOpen = true; ///< Whether the client keeps the connection open after the response.
};

/// Accepts connections and passes their requests to one function.
class HttpServer : public QTcpServer {
public:
    /// Creates the socket of an accepted connection, an encrypting one for TLS.
    using MakeSocket = std::function<std::unique_ptr<QTcpSocket>()>;

    explicit HttpServer(HttpConnection::OnRequest onRequest, MakeSocket makeSocket = std::make_unique<QTcpSocket>);

    /// Listens on 127.0.0.1. False if the port has a listener or cannot be bound.
    bool listenOnLoopback(int port);
    /// Stops listening and resets all connections.
    void stop();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    HttpConnection::OnRequest handle;
    MakeSocket makeSocket;
    int connections = 0;
};

} // namespace korvel::sim
