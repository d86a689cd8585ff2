#include "exchange/ed25519.h"

#include <memory>
#include <openssl/evp.h>

namespace korvel {

namespace {

constexpr qsizetype SIGNATURE_BYTES = 64;

const unsigned char *bytesOf(const QByteArray &bytes) {
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

} // namespace

bool ed25519Valid(const SignatureProof &proof) {
    const auto &[rawKey, signature, message] = proof;
    if (signature.size() != SIGNATURE_BYTES)
        return false;
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, bytesOf(rawKey), static_cast<size_t>(rawKey.size())),
        &EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!key || !context || EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) != 1)
        return false;
    return EVP_DigestVerify(context.get(), bytesOf(signature), static_cast<size_t>(signature.size()), bytesOf(message),
                            static_cast<size_t>(message.size())) == 1;
}

} // namespace korvel
