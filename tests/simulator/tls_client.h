#pragma once

#include <QByteArray>
#include <QList>
#include <QSslError>
#include <QString>

namespace korvel::sim {

// What a client met that trusts one authority only. `connected` is false when nothing listens.
struct SecureExchange {
    bool connected = false;
    QList<QSslError::SslError> refusals = {}; // what is wrong with the server's certificate
    QByteArray head = {};
    QByteArray body = {};
    int status() const { return head.split(' ').value(1).toInt(); }
};

// Sends one request to "localhost:PORT" on a fresh TLS connection and reads until its end. `fields` are further header
// fields, each ended by CR LF.
SecureExchange askSecurely(const QString &server, const QString &authorityFile, const QByteArray &start,
                           const QByteArray &fields = {}, const QByteArray &body = {});

} // namespace korvel::sim
