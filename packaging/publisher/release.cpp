#include "publisher/release.h"

#include "base/json.h"
#include "exchange/ed25519.h"
#include "exchange/sha256.h"
#include "update/manifest.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace korvel {

namespace {

const QString CN_PLATFORM = u"mac-cn"_s, INTL_PLATFORM = u"mac"_s;

Error refused(const QString &detail) { return {ErrorKind::InvalidRequest, detail}; }

QString platformOf(const QString &file) { return editionOf(file) == u"cn" ? CN_PLATFORM : INTL_PLATFORM; }

/// Describes the malformed one of name, version and hash; empty if none is. Checks each beside two valid values.
QString formRefusal(const UpdateInfo &info) {
    const UpdateInfo right{.ver = u"0"_s, .file = u"a.pkg"_s, .sha = QString(64, u'0')};
    UpdateInfo name = right, version = right, hash = right;
    name.file = info.file;
    version.ver = info.ver;
    hash.sha = info.sha;
    if (!isWellFormed(name))
        return u"the name \"%1\" is no safe name of a package"_s.arg(info.file);
    if (!isWellFormed(version))
        return u"\"%1\" is no version of one to four numbers"_s.arg(info.ver);
    return isWellFormed(hash) ? QString() : u"the hash is not 64 lower-case hexadecimal digits"_s;
}

} // namespace

FixedConfig trayWith(const QString &edition, const QString &publicKey, const QString &installed) {
    Deployment deployment;
    deployment.version = installed;
    deployment.edition = edition;
    deployment.updatePubkey = publicKey;
    return makeFixedConfig(deployment, {});
}

QString editionOf(const QString &file) {
    const QJsonObject forCn{{u"platform"_s, CN_PLATFORM}, {u"file"_s, file}};
    return isOurPackage(trayWith(u"cn"_s, {}, {}), forCn) ? u"cn"_s : u"intl"_s;
}

QString signatureOf(const SigningKey &key, const UpdateInfo &info) {
    const QString prefix = trayWith({}, {}, {}).UPDATE_SIG_PREFIX;
    return QString::fromLatin1(key.sign(signedMessage(prefix, info)).toBase64());
}

QJsonObject entryOf(const UpdateInfo &info) {
    return {{u"platform"_s, platformOf(info.file)},
            {u"file"_s, info.file},
            {u"ver"_s, info.ver},
            {u"sha256"_s, info.sha},
            {u"sig"_s, info.sig},
            {u"bytes"_s, info.bytes}};
}

Result<UpdateInfo> signedPackage(const SigningKey &key, const QString &version, const QString &path) {
    const QFileInfo file(path);
    const std::optional<QString> sha = file.isFile() ? sha256File(path) : std::nullopt;
    if (!sha || file.size() == 0)
        return refused(u"it is empty, or cannot be read"_s);
    if (file.fileName().contains(u"-trial"))
        return refused(u"its name says that it is a trial"_s);
    UpdateInfo info{.ver = version, .file = file.fileName(), .sha = *sha, .bytes = file.size()};
    info.sig = signatureOf(key, info);
    return info;
}

Result<QJsonObject> withPackage(const QJsonObject &manifest, const UpdateInfo &info, const QString &publicKey) {
    const QJsonValue held = manifest.value(u"packages");
    if (!held.isUndefined() && !jsonObjects(held))
        return refused(u"the manifest's \"packages\" is no list of objects"_s);
    const FixedConfig tray = trayWith(editionOf(info.file), publicKey, u"0"_s);
    QJsonArray packages = held.toArray();
    if (const auto before = packageIn(tray, QJsonDocument(manifest).toJson())) {
        if (!isNewer(info.ver, before->ver) && *before != info)
            return refused(u"the manifest holds version %1 of %2 already"_s.arg(before->ver, platformOf(info.file)));
        *std::find_if(packages.begin(), packages.end(), [&tray](const QJsonValue &package) {
            return isOurPackage(tray, package.toObject());
        }) = entryOf(info);
    } else {
        packages.append(entryOf(info));
    }
    QJsonObject extended = manifest;
    extended.insert(u"packages"_s, packages);
    const Verdict verdict = judge(tray, QJsonDocument(extended).toJson());
    if (!verdict.refusal.isEmpty())
        return refused(verdict.refusal);
    return extended;
}

Verdict judge(const FixedConfig &tray, const QByteArray &manifest) {
    const auto info = packageIn(tray, manifest);
    if (!info)
        return {.refusal = u"the manifest holds no package for the edition %1"_s.arg(tray.EDITION)};
    if (const QString form = formRefusal(*info); !form.isEmpty())
        return {info, form};
    if (!isNewer(info->ver, tray.VERSION))
        return {info, u"version %1 is not newer than %2"_s.arg(info->ver, tray.VERSION)};
    const auto signature = updateSignature(tray, *info);
    if (signature && ed25519Valid(*signature))
        return {info};
    return {info, u"the signature is not one of this key over name, version and hash"_s};
}

QString fileRefusal(const UpdateInfo &info, const QString &path) {
    const QFileInfo file(path);
    if (file.fileName() != info.file)
        return u"the manifest's package is named %1"_s.arg(info.file);
    if (info.bytes > 0 && file.size() != info.bytes)
        return u"it has %1 bytes, the manifest says %2"_s.arg(file.size()).arg(info.bytes);
    return sha256File(path) == info.sha ? QString() : u"its hash is not the manifest's"_s;
}

} // namespace korvel
