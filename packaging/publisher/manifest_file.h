#pragma once

#include "base/result.h"

#include <QJsonObject>

namespace korvel {

/// The bytes of a manifest file, as much as a tray takes. The error's detail says what is wrong.
Result<QByteArray> readManifest(const QString &path);

/// The object in a manifest file; empty when there is no file. Fails on one that holds anything else.
Result<QJsonObject> manifestToExtend(const QString &path);

/// Replaces a manifest through a temporary file and a rename; its access rights stay. The error's text; empty on
/// success.
QString replaceManifest(const QString &path, const QJsonObject &manifest);

} // namespace korvel
