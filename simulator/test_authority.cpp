#include "simulator/test_authority.h"

#include "simulator/file_lock.h"
#include "simulator/files.h"

#include <QDir>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QString TestAuthority::file() const {
    if (QFile::exists(paths.authority()))
        return paths.authority();
    QDir().mkpath(paths.state());
    const FileLock lock(paths.state() + "/authority.lock"_L1);
    if (QFile::exists(paths.authority()))
        return paths.authority();
    const TlsIdentity made = makeAuthority("Korvel simulator");
    // The certificate last: once it is there, the key is too.
    const bool stored = lock.isHeld() && made.isValid() && replaceFile(paths.authorityKey(), made.key) &&
                        replaceFile(paths.authority(), made.certificate, 0644);
    return stored ? paths.authority() : QString();
}

TlsIdentity TestAuthority::issue(CertificateKind kind) const {
    ServerCertificate wanted{"localhost", "DNS:localhost,IP:127.0.0.1"};
    if (kind == CertificateKind::Expired)
        wanted.fromDay = -30, wanted.toDay = -1;
    if (kind == CertificateKind::NotYetValid)
        wanted.fromDay = 1;
    if (kind == CertificateKind::WrongHost)
        wanted = {"elsewhere.example", "DNS:elsewhere.example"};
    if (kind == CertificateKind::UnknownAuthority)
        return issueCertificate(makeAuthority("Unknown authority"), wanted);
    return issueCertificate({contentOf(file()), contentOf(paths.authorityKey())}, wanted);
}

} // namespace korvel::sim
