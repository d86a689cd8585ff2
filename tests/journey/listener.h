#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <functional>
#include <gtest/gtest.h>

namespace korvel::test {

inline void respond(QTcpSocket &socket) { socket.write("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"); }

/// A listener on the loopback that reads requests and calls `onRequest` for each.
struct Listener {
    QTcpServer server;
    int connections = 0;
    QByteArray read;
    std::function<void(QTcpSocket &)> onRequest = respond;

    Listener() {
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            ++connections;
            QTcpSocket *socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                read += socket->readAll();
                onRequest(*socket);
            });
        });
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort()); }
};

} // namespace korvel::test
