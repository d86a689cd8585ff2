#include "update/signature.h"

namespace korvel {

namespace {

/// Decodes base64 that consists of whole groups of four. Qt's decoder also accepts base64 without padding.
std::optional<QByteArray> fromBase64(const QString &text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(text.toUtf8(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(*decoded) : std::nullopt;
}

} // namespace

QByteArray signedMessage(const QString &prefix, const UpdateInfo &info) {
    return QStringList{prefix, info.file, info.ver, info.sha}.join(u'\n').toUtf8();
}

std::optional<SignatureProof> updateSignature(const FixedConfig &config, const UpdateInfo &info) {
    const auto rawKey = fromBase64(config.UPDATE_PUBKEY);
    const auto signature = fromBase64(info.sig);
    if (!rawKey || !signature)
        return std::nullopt;
    return SignatureProof{*rawKey, *signature, signedMessage(config.UPDATE_SIG_PREFIX, info)};
}

void verifyUpdate(ServerClient &servers, const FixedConfig &config, const UpdateInfo &info, Done<bool> done) {
    if (const auto proof = updateSignature(config, info))
        servers.verify(*proof, std::move(done));
    else
        done(false);
}

} // namespace korvel
