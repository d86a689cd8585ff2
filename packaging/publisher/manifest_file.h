#pragma once

#include "base/result.h"

#include <QJsonObject>

namespace korvel {

/// Reads a manifest file, up to the size that a tray accepts. The error's detail gives the reason.
Result<QByteArray> readManifest(const QString &path);

/// The object in a manifest file; empty if there is no file. Fails if the file holds anything else.
Result<QJsonObject> manifestToExtend(const QString &path);

/// Replaces a manifest through a temporary file and a rename, and keeps its permissions. Returns the error's text,
/// empty on success.
QString replaceManifest(const QString &path, const QJsonObject &manifest);

} // namespace korvel
