#pragma once

#include "update/signature.h"

#include <memory>
#include <openssl/evp.h>

namespace korvel::test {

// The key pair of RFC 8032, section 7.1, test 1.
inline const QByteArray SECRET_KEY =
    QByteArray::fromHex("9d61b19deffd5a60ba844af492ec2cc44449c5697b326919703bac031cae7f60");
inline const QString PUBLIC_KEY = QStringLiteral("11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=");

/// The base64 signature of `message` by that key.
inline QString signature(const QByteArray &message) {
    const auto *secret = reinterpret_cast<const unsigned char *>(SECRET_KEY.constData());
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, secret, 32), &EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key.get());
    QByteArray bytes(64, Qt::Uninitialized);
    size_t size = 64;
    EVP_DigestSign(context.get(), reinterpret_cast<unsigned char *>(bytes.data()), &size,
                   reinterpret_cast<const unsigned char *>(message.constData()), static_cast<size_t>(message.size()));
    return QString::fromLatin1(bytes.toBase64());
}

} // namespace korvel::test
