#pragma once

#include "base/result.h"

#include <QByteArray>
#include <QString>
#include <memory>
#include <openssl/types.h>
#include <optional>

namespace korvel {

/// The publisher's private Ed25519 key (RFC 8032). In a file it is PEM (PKCS #8, RFC 8410), as the program openssl
/// reads it.
class SigningKey {
public:
    /// A new key; none when the system gives no random numbers.
    static std::optional<SigningKey> generate();
    /// The key of 32 secret bytes (RFC 8032, 5.1.5); none for another length.
    static std::optional<SigningKey> fromSeed(const QByteArray &seed);
    /// Reads a key file. Fails on one that others than its owner can read, and on keys of another kind; the error's
    /// detail says why. A file protected by a passphrase asks for it at the terminal.
    static Result<SigningKey> read(const QString &path);

    /// Writes a new file of mode 0600. The error's text; empty on success. Never replaces a file.
    QString writeNew(const QString &path) const;
    /// base64 of the 32 public bytes: 44 characters, as KORVEL_UPDATE_PUBKEY has them.
    QString publicKey() const;
    /// The 64 bytes of the signature over a message.
    QByteArray sign(const QByteArray &message) const;

private:
    struct Free {
        void operator()(EVP_PKEY *key) const;
    };
    explicit SigningKey(EVP_PKEY *owned) : key(owned) {}

    std::unique_ptr<EVP_PKEY, Free> key;
};

} // namespace korvel
