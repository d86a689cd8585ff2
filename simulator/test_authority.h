#pragma once

#include "simulator/certificates.h"
#include "simulator/home_paths.h"

namespace korvel::sim {

// What is right or wrong with the account server's certificate.
enum class CertificateKind { Good, Expired, NotYetValid, UnknownAuthority, WrongHost };

// The certificate authority of one home, for nothing but its account server.
class TestAuthority {
public:
    explicit TestAuthority(HomePaths paths) : paths(std::move(paths)) {}

    // The file with its certificate as PEM; made now when there is none yet. Empty when it cannot be made.
    QString file() const;
    // A new certificate for localhost and 127.0.0.1, or a wrong one. Invalid on failure.
    TlsIdentity issue(CertificateKind kind) const;

private:
    HomePaths paths;
};

} // namespace korvel::sim
