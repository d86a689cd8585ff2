#pragma once

#include "base/result.h"

#include <QByteArray>
#include <QString>
#include <memory>
#include <openssl/types.h>
#include <optional>

namespace korvel {

/// The publisher's private Ed25519 key (RFC 8032). The file format is PEM (PKCS #8, RFC 8410), readable by the program
/// openssl.
class SigningKey {
public:
    /// A new key; none if the system provides no random numbers.
    static std::optional<SigningKey> generate();
    /// The key for 32 secret bytes (RFC 8032, 5.1.5); none for another length.
    static std::optional<SigningKey> fromSeed(const QByteArray &seed);
    /// Reads a key file, and asks for its passphrase at the terminal if it has one. Fails if others than the owner can
    /// read the file, and for other kinds of key. The error's detail gives the reason.
    static Result<SigningKey> read(const QString &path);

    /// Writes a new file of mode 0600 and never replaces a file. Returns the error's text, empty on success.
    QString writeNew(const QString &path) const;
    /// base64 of the 32 public bytes: 44 characters, the form of KORVEL_UPDATE_PUBKEY.
    QString publicKey() const;
    /// The signature of a message, 64 bytes.
    QByteArray sign(const QByteArray &message) const;

private:
    struct Free {
        void operator()(EVP_PKEY *key) const;
    };
    explicit SigningKey(EVP_PKEY *owned) : key(owned) {}

    std::unique_ptr<EVP_PKEY, Free> key;
};

} // namespace korvel
