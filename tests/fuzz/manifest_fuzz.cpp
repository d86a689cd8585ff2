// The update manifest, whose entries the mutator signs anew with a test key.
#include "exchange/ed25519.h"
#include "fuzz/json_mutator.h"
#include "support/signing.h"
#include "update/manifest.h"

using namespace korvel;
using namespace Qt::StringLiterals;
using fuzz::require;

namespace {

FixedConfig configOf(const QString &edition) {
    return makeFixedConfig({.edition = edition, .updatePubkey = test::PUBLIC_KEY}, {});
}

/// What is chosen is for this edition, and its signature covers well-formed entries only.
void checkChoice(const FixedConfig &config, const QByteArray &manifest) {
    const auto info = packageIn(config, manifest);
    if (!info)
        return;
    require(info->file.endsWith(u"-cn.pkg", Qt::CaseInsensitive) == config.IS_CN, "it is of this edition");
    const auto proof = updateSignature(config, *info);
    if (!isWellFormed(*info) || !proof)
        return;
    const QStringList fields{config.UPDATE_SIG_PREFIX, info->file, info->ver, info->sha};
    require(proof->message == fields.join(u'\n').toUtf8(), "the signature covers all of the entry");
    require(info->file.size() <= 84 && info->sha.size() == 64 && fuzz::isPlain(fields.mid(1).join(QString()), "._-"),
            "a well-formed entry is safe in a path and a shell command");
    const auto good = QByteArray::fromBase64(test::signature(proof->message).toLatin1());
    require(ed25519Valid(*proof) == (proof->signature == good), "only the publisher's signature is valid");
}

void checkOrder(const QStringList &versions) {
    for (const QString &a : versions) {
        require(!isNewer(a, a), "no version is newer than itself");
        for (const QString &b : versions) {
            require(!isNewer(a, b) || !isNewer(b, a), "the order is antisymmetric");
            for (const QString &c : versions) {
                require(!isNewer(a, b) || !isNewer(b, c) || isNewer(a, c), "the order is transitive");
                require(isNewer(a, b) || isNewer(b, c) || !isNewer(a, c), "equality is transitive");
            }
        }
    }
}

void signAnew(QJsonDocument &document, unsigned seed) {
    QJsonObject manifest = document.object();
    if (seed % 8 == 1 || !manifest[u"packages"].isArray())
        return;
    QJsonArray packages = manifest[u"packages"].toArray();
    for (QJsonValueRef package : packages) {
        QJsonObject entry = package.toObject();
        const UpdateInfo info{
            .ver = entry[u"ver"].toString(), .file = entry[u"file"].toString(), .sha = entry[u"sha256"].toString()};
        if (!entry.isEmpty())
            entry[u"sig"] = test::signature(signedMessage(configOf(u"cn"_s).UPDATE_SIG_PREFIX, info));
        package = entry;
    }
    manifest[u"packages"] = packages;
    document.setObject(manifest);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    fuzz::repair = signAnew;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const FixedConfig CN = configOf(u"cn"_s), INTL = configOf(u"intl"_s);
    const fuzz::Input input(data, size);
    checkChoice(CN, input.bytes);
    checkChoice(INTL, input.bytes);
    QStringList versions{u"1.2.3"_s};
    for (const QJsonValue package : QJsonDocument::fromJson(input.bytes).object()[u"packages"].toArray()) {
        const QJsonObject entry = package.toObject();
        require(!isOurPackage(CN, entry) || !isOurPackage(INTL, entry), "an entry is for one edition");
        if (versions.size() < 4)
            versions.append(entry[u"ver"].toString());
    }
    checkOrder(versions);
    return 0;
}
