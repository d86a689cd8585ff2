#pragma once

#include <QByteArray>

namespace korvel::sim {

// A certificate and its private key, both as PEM.
struct TlsIdentity {
    QByteArray certificate;
    QByteArray key;

    bool isValid() const { return !certificate.isEmpty() && !key.isEmpty(); }
};

// What a server's certificate says. Its time of validity in days from now.
struct ServerCertificate {
    QByteArray name;     // the subject's common name
    QByteArray altNames; // subjectAltName as x509v3_config(5) writes it: "DNS:localhost,IP:127.0.0.1"
    int fromDay = -1;
    int toDay = 30;
};

// A new authority that signs its own certificate (RFC 5280; P-256, SHA-256), good for ten years. Invalid on failure.
TlsIdentity makeAuthority(const QByteArray &name);

// A new server certificate signed by an authority. Invalid on failure.
TlsIdentity issueCertificate(const TlsIdentity &authority, const ServerCertificate &wanted);

} // namespace korvel::sim
