#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/result.h"
#include "publisher/signing_key.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace korvel {

/// The configuration of a tray that matters for updates: edition ("cn" or "intl"), public key and installed version.
FixedConfig trayWith(const QString &edition, const QString &publicKey, const QString &installed);

/// The edition of a package, by its file name.
QString editionOf(const QString &file);

/// The signature of a package in the manifest's form.
QString signatureOf(const SigningKey &key, const UpdateInfo &info);

/// A package as an entry of the manifest's `packages`.
QJsonObject entryOf(const UpdateInfo &info);

/// Describes a package file by name, size and hash, and signs it as `version`. The error's detail gives the reason.
Result<UpdateInfo> signedPackage(const SigningKey &key, const QString &version, const QString &path);

/// The manifest with the package added: it replaces the older package that its edition takes, or is appended. Keeps all
/// other content. Fails if the version is not newer, or if trays with `publicKey` would refuse the package; the error's
/// detail gives the reason.
Result<QJsonObject> withPackage(const QJsonObject &manifest, const UpdateInfo &info, const QString &publicKey);

/// A tray's decision about a manifest.
struct Verdict {
    std::optional<UpdateInfo> package = {}; ///< The package for its edition.
    QString refusal = {};                   ///< Why it does not offer the package; empty if it does.
};
Verdict judge(const FixedConfig &tray, const QByteArray &manifest);

/// Why a tray that offers this package would not install the file; empty if it would.
QString fileRefusal(const UpdateInfo &info, const QString &path);

} // namespace korvel
