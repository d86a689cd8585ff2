#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "base/result.h"
#include "publisher/signing_key.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

namespace korvel {

/// A tray as far as updates go: its edition ("cn" or "intl"), the public key that it holds and the version that runs.
FixedConfig trayWith(const QString &edition, const QString &publicKey, const QString &installed);

/// The edition that a package is for, by its name.
QString editionOf(const QString &file);

/// The signature of a package as the manifest has it.
QString signatureOf(const SigningKey &key, const UpdateInfo &info);

/// A package as an object of the manifest's `packages`.
QJsonObject entryOf(const UpdateInfo &info);

/// A package file with its name, size and hash, signed as that version. The error's detail says why there is none.
Result<UpdateInfo> signedPackage(const SigningKey &key, const QString &version, const QString &path);

/// A manifest with that package in it: in place of the one that its edition would take now, if that is an older one,
/// or else at the end. All else stays. The error's detail says why not: a version that is not newer, or a package that
/// trays with `publicKey` would not take.
Result<QJsonObject> withPackage(const QJsonObject &manifest, const UpdateInfo &info, const QString &publicKey);

/// What a tray makes of a manifest.
struct Verdict {
    std::optional<UpdateInfo> package = {}; ///< The one that it looks at.
    QString refusal = {};                   ///< Why it does not offer it; empty when it does.
};
Verdict judge(const FixedConfig &tray, const QByteArray &manifest);

/// Why a tray that was offered this package would not install that file; empty when it would.
QString fileRefusal(const UpdateInfo &info, const QString &path);

} // namespace korvel
