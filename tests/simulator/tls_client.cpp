#include "tls_client.h"

#include <QDeadlineTimer>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>

namespace korvel::sim {

SecureExchange askSecurely(const QString &server, const QString &authorityFile, const QByteArray &start,
                           const QByteArray &fields, const QByteArray &body) {
    constexpr int PATIENCE_MS = 20'000;
    const QStringList address = server.split(u':');
    QSslSocket socket;
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslCertificate::fromPath(authorityFile));
    socket.setSslConfiguration(configuration);
    SecureExchange met;
    QObject::connect(&socket, &QSslSocket::sslErrors, &socket, [&met](const QList<QSslError> &errors) {
        for (const QSslError &error : errors)
            met.refusals.append(error.error());
    });
    // The family is given so that an address of version 6 costs no attempt.
    socket.connectToHostEncrypted(address[0], quint16(address[1].toInt()), QIODevice::ReadWrite,
                                  QAbstractSocket::IPv4Protocol);
    const bool trusted = socket.waitForEncrypted(PATIENCE_MS);
    met.connected = trusted || socket.error() != QAbstractSocket::ConnectionRefusedError;
    if (!trusted)
        return met;
    socket.write(start + " HTTP/1.1\r\nHost: " + server.toLatin1() + "\r\nConnection: close\r\nContent-Length: " +
                 QByteArray::number(body.size()) + "\r\n" + fields + "\r\n" + body);
    const QDeadlineTimer deadline(PATIENCE_MS);
    while (socket.state() == QAbstractSocket::ConnectedState && !deadline.hasExpired())
        socket.waitForReadyRead(int(deadline.remainingTime()));
    const QByteArray answer = socket.readAll();
    const qsizetype split = answer.indexOf("\r\n\r\n");
    met.head = answer.left(split);
    met.body = split < 0 ? QByteArray() : answer.mid(split + 4);
    return met;
}

} // namespace korvel::sim
