#include "exchange/sha256.h"

#include "base/private_file.h"

#include <QFile>
#include <memory>
#include <openssl/evp.h>

namespace korvel {

namespace {
constexpr qint64 CHUNK = 1 << 18;
}

std::optional<QString> sha256File(const QString &path) {
    const int fd = openRegularFile(path);
    QFile file;
    if (fd < 0 || !file.open(fd, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        return std::nullopt;
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
        return std::nullopt;
    QByteArray chunk(CHUNK, Qt::Uninitialized);
    qint64 read = 0;
    while ((read = file.read(chunk.data(), CHUNK)) > 0)
        if (EVP_DigestUpdate(context.get(), chunk.constData(), static_cast<size_t>(read)) != 1)
            return std::nullopt;
    QByteArray digest(EVP_MAX_MD_SIZE, Qt::Uninitialized);
    unsigned int size = 0;
    if (read < 0 || EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char *>(digest.data()), &size) != 1)
        return std::nullopt;
    return QString::fromLatin1(digest.first(size).toHex());
}

} // namespace korvel
