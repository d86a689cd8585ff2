#pragma once

#include "publisher/signing_key.h"

namespace korvel::test {

// The key pair of RFC 8032, section 7.1, test 1.
inline const QByteArray SECRET_KEY =
    QByteArray::fromHex("9d61b19deffd5a60ba844af492ec2cc44449c5697b326919703bac031cae7f60");
inline const QString PUBLIC_KEY = QStringLiteral("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=");

/// The base64 signature of `message` by that key.
inline QString signature(const QByteArray &message) {
    return QString::fromLatin1(SigningKey::fromSeed(SECRET_KEY)->sign(message).toBase64());
}

} // namespace korvel::test
