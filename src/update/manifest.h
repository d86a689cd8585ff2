#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"
#include "ports/server_client.h"

#include <QJsonObject>
#include <optional>

namespace korvel {

/// Whether a package of a manifest is for this edition. Both its platform and the end of its file name mark a mainland
/// package; they have to agree.
bool isOurPackage(const FixedConfig &config, const QJsonObject &package);

/// The first package for this edition in a manifest; none without one, and if the text is not a manifest.
std::optional<UpdateInfo> packageIn(const FixedConfig &config, const QByteArray &manifest);

/// The numbers of a dotted version. A part that is not a number counts as 0.
QList<qint64> verParts(const QString &version);

/// Whether version `a` is newer than version `b`, compared number by number. A missing number counts as 0.
bool isNewer(const QString &a, const QString &b);

/// Whether name, version and hash are well-formed, and so safe in a path and a shell command.
bool isWellFormed(const UpdateInfo &info);

/// The text that the publisher signs: prefix, file, version and hash on a line each, without a final line feed.
QByteArray signedMessage(const QString &prefix, const UpdateInfo &info);

/// The data to verify this package's signature with UPDATE_PUBKEY; none if the key or the signature is not base64.
std::optional<SignatureProof> updateSignature(const FixedConfig &config, const UpdateInfo &info);

/// Whether the publisher signed this package. An error means that the check could not run.
void verifyUpdate(ServerClient &servers, const FixedConfig &config, const UpdateInfo &info, Done<bool> done);

} // namespace korvel
