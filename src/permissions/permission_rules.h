#pragma once

#include "app/tray_state.h"

#include <QJsonObject>
#include <QString>

namespace korvel {

/// Whether the agent says that permissions are missing, and which.
bool permissionsMissing(const PermissionState &permissions);

/// Whether the state of a permission item cannot be told.
bool permUnknown(const QJsonObject &item);

/// A permission's state word as the user reads it.
QString permStateText(const QString &state);

/// Heading of the menu's permission block with `count` missing permissions.
QString permHeadTitle(qsizetype count);

} // namespace korvel
