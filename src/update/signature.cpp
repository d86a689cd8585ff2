#include "update/signature.h"

#include <memory>
#include <openssl/evp.h>
#include <optional>

namespace korvel {

namespace {

constexpr qsizetype SIGNATURE_BYTES = 64;

std::optional<QByteArray> fromBase64(const QString &text) {
    const auto decoded = QByteArray::fromBase64Encoding(text.toUtf8(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(*decoded) : std::nullopt;
}

const unsigned char *bytesOf(const QByteArray &bytes) {
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

} // namespace

QByteArray signedMessage(const QString &prefix, const UpdateInfo &info) {
    return QStringList{prefix, info.file, info.ver, info.sha}.join(u'\n').toUtf8();
}

bool updateSignatureValid(const FixedConfig &config, const UpdateInfo &info) {
    const auto rawKey = fromBase64(config.UPDATE_PUBKEY);
    const auto signature = fromBase64(info.sig);
    if (!rawKey || !signature || signature->size() != SIGNATURE_BYTES)
        return false;
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(*rawKey), static_cast<size_t>(rawKey->size())),
        &EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!key || !context || EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1)
        return false;
    const QByteArray message = signedMessage(config.UPDATE_SIG_PREFIX, info);
    return EVP_DigestVerify(context.get(), bytesOf(*signature), static_cast<size_t>(signature->size()),
                            bytesOf(message), static_cast<size_t>(message.size())) == 1;
}

} // namespace korvel
