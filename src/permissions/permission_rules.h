#pragma once

#include "app/model/tray_state.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <optional>

namespace korvel {

/// Whether the agent reports missing permissions and names them.
bool permissionsMissing(const PermissionState &permissions);

/// The fields that the tray reads of a reply, or of the summary in a health response, with bounded sizes.
QJsonObject boundedPerms(const QJsonObject &reply);

/// Applies the summary: whether permissions are missing, and which. Fields absent from `perms` become unknown.
void applyPermSummary(PermissionState &permissions, const QJsonObject &perms);

/// Whether an agent's reply lists its permissions. Older agents may omit the list.
bool holdsPermItems(const QJsonObject &reply);

/// Applies a reply. A reply without a list changes nothing, so that the last good list stays.
void applyPermReply(PermissionState &permissions, const QJsonObject &reply);

/// Whether the state of a permission item is unknown.
bool permUnknown(const QJsonObject &item);

/// Display text of a permission's state word.
QString permStateText(const QString &state);

/// Whether a permission is known to be missing.
bool permLacks(const QJsonObject &item);

/// The address of a permission's settings; none unless it is a pane of the system's settings or a web page.
std::optional<QString> settingsAddress(const QJsonValue &pane);

/// Heading of the menu's permission block with `count` missing permissions.
QString permHeadTitle(qsizetype count);

} // namespace korvel
