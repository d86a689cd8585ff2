#include "publisher/signing_key.h"

#include <QFile>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

using Bio = std::unique_ptr<BIO, decltype(&BIO_free)>;

constexpr size_t PUBLIC_BYTES = 32;
constexpr size_t SIGNATURE_BYTES = 64;

unsigned char *bytesOf(QByteArray &bytes) { return reinterpret_cast<unsigned char *>(bytes.data()); }
const unsigned char *bytesOf(const QByteArray &bytes) {
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

Error unreadable(const QString &detail) { return {ErrorKind::UnreadableResponse, detail}; }

} // namespace

void SigningKey::Free::operator()(EVP_PKEY *owned) const { EVP_PKEY_free(owned); }

std::optional<SigningKey> SigningKey::generate() {
    EVP_PKEY *made = EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
    return made ? std::optional(SigningKey(made)) : std::nullopt;
}

std::optional<SigningKey> SigningKey::fromSeed(const QByteArray &seed) {
    EVP_PKEY *made = EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, bytesOf(seed), size_t(seed.size()));
    return made ? std::optional(SigningKey(made)) : std::nullopt;
}

Result<SigningKey> SigningKey::read(const QString &path) {
    constexpr QFile::Permissions OTHERS = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    if ((QFile::permissions(path) & OTHERS) != QFile::Permissions())
        return unreadable(u"others have rights to it; take them away with chmod 600"_s);
    const Bio file(BIO_new_file(QFile::encodeName(path).constData(), "r"), &BIO_free);
    if (!file)
        return unreadable(u"it cannot be read"_s);
    SigningKey found(PEM_read_bio_PrivateKey(file.get(), nullptr, nullptr, nullptr));
    if (!found.key || EVP_PKEY_get_id(found.key.get()) != EVP_PKEY_ED25519)
        return unreadable(u"it holds no Ed25519 key, or the passphrase is wrong"_s);
    return found;
}

QString SigningKey::writeNew(const QString &path) const {
    const Bio pem(BIO_new(BIO_s_secmem()), &BIO_free);
    if (!pem || PEM_write_bio_PKCS8PrivateKey(pem.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1)
        return u"the key cannot be written down"_s;
    char *text = nullptr;
    const qint64 size = BIO_get_mem_data(pem.get(), &text);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered,
                   QFile::ReadOwner | QFile::WriteOwner))
        return file.errorString();
    if (file.write(text, size) == size && ::fsync(file.handle()) == 0)
        return {};
    file.remove();
    return u"the disk does not take it"_s;
}

QString SigningKey::publicKey() const {
    QByteArray raw(PUBLIC_BYTES, '\0');
    size_t size = PUBLIC_BYTES;
    return EVP_PKEY_get_raw_public_key(key.get(), bytesOf(raw), &size) == 1 ? QString::fromLatin1(raw.toBase64())
                                                                            : QString();
}

QByteArray SigningKey::sign(const QByteArray &message) const {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    QByteArray signature(SIGNATURE_BYTES, '\0');
    size_t size = SIGNATURE_BYTES;
    const bool made =
        context && EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1 &&
        EVP_DigestSign(context.get(), bytesOf(signature), &size, bytesOf(message), size_t(message.size())) == 1;
    return made ? signature : QByteArray();
}

} // namespace korvel
