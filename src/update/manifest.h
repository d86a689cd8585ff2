#pragma once

#include "app/model/fixed_config.h"
#include "app/model/tray_state.h"

#include <QJsonObject>
#include <optional>

namespace korvel {

/// Whether a package of a manifest is meant for this edition. A mainland package is known by its platform and by the
/// end of its file's name; both have to agree.
bool isOurPackage(const FixedConfig &config, const QJsonObject &package);

/// The first package for this edition in a manifest; none when there is none or the text is no manifest.
std::optional<UpdateInfo> packageIn(const FixedConfig &config, const QByteArray &manifest);

/// The numbers of a dotted version; what is no number counts as 0.
QList<qint64> verParts(const QString &version);

/// Whether version `a` comes after version `b`, number by number; a missing number counts as 0.
bool isNewer(const QString &a, const QString &b);

/// Whether name, version and hash have the form that may reach a path and a shell.
bool isWellFormed(const UpdateInfo &info);

} // namespace korvel
