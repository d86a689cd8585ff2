#include "update/manifest.h"

#include "base/json.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

/// Matches the whole text: a pattern that ends in "$" would accept a line break at the end.
bool matches(const QString &pattern, const QString &text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

UpdateInfo infoOf(const QJsonObject &package) {
    return {.ver = package.value(u"ver").toString(),
            .file = package.value(u"file").toString(),
            .sha = package.value(u"sha256").toString(),
            .sig = package.value(u"sig").toString(),
            .bytes = jsonInteger(package.value(u"bytes")).value_or(0)};
}

/// Decodes base64 that consists of whole groups of four. Qt's decoder also accepts base64 without padding.
std::optional<QByteArray> fromBase64(const QString &text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(text.toUtf8(), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(*decoded) : std::nullopt;
}

} // namespace

bool isOurPackage(const FixedConfig &config, const QJsonObject &package) {
    const auto platform = jsonText(package.value(u"platform"));
    const auto file = jsonText(package.value(u"file"));
    if (!platform || !file)
        return false;
    const bool mainland = file->toLower().endsWith(u"-cn.pkg");
    return config.IS_CN ? *platform == u"mac-cn" && mainland : *platform == u"mac" && !mainland;
}

std::optional<UpdateInfo> packageIn(const FixedConfig &config, const QByteArray &manifest) {
    const QJsonObject object = QJsonDocument::fromJson(manifest).object();
    const auto packages = jsonObjects(object.value(u"packages")).value_or(QList<QJsonObject>());
    const auto ours = std::find_if(packages.begin(), packages.end(),
                                   [&config](const QJsonObject &package) { return isOurPackage(config, package); });
    return ours == packages.end() ? std::nullopt : std::optional(infoOf(*ours));
}

QList<qint64> verParts(const QString &version) {
    QList<qint64> parts;
    for (const QString &piece : version.split(u'.', Qt::SkipEmptyParts))
        parts.append(piece.toLongLong());
    return parts;
}

bool isNewer(const QString &a, const QString &b) {
    const QList<qint64> left = verParts(a), right = verParts(b);
    for (qsizetype i = 0; i < std::max(left.size(), right.size()); ++i)
        if (left.value(i) != right.value(i))
            return left.value(i) > right.value(i);
    return false;
}

bool isWellFormed(const UpdateInfo &info) {
    return matches(u"[A-Za-z0-9][A-Za-z0-9._-]{0,79}\\.pkg"_s, info.file) &&
           matches(u"[0-9]+(\\.[0-9]+){0,3}"_s, info.ver) && matches(u"[0-9a-f]{64}"_s, info.sha);
}

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
