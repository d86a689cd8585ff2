#pragma once

#include "app/model/tray_state.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <optional>

namespace korvel {

/// Whether the agent says that permissions are missing, and which.
bool permissionsMissing(const PermissionState &permissions);

/// The part of a reply, or of the summary in a health response, that the tray reads, within bounds.
QJsonObject boundedPerms(const QJsonObject &reply);

/// Takes over whether permissions are missing, and which; what `perms` does not say is not known.
void applyPermSummary(PermissionState &permissions, const QJsonObject &perms);

/// Whether a reply of the agent lists its permissions. An older agent's reply may not.
bool holdsPermItems(const QJsonObject &reply);

/// Takes over what a reply lists; one without a list changes nothing, so that the last good list stays.
void applyPermReply(PermissionState &permissions, const QJsonObject &reply);

/// Whether the state of a permission item cannot be told.
bool permUnknown(const QJsonObject &item);

/// A permission's state word as the user reads it.
QString permStateText(const QString &state);

/// Whether the agent says for certain that a permission is missing.
bool permLacks(const QJsonObject &item);

/// The address of a permission's settings, when it is one that may be opened: the system's settings, or a web page.
std::optional<QString> settingsAddress(const QJsonValue &pane);

/// Heading of the menu's permission block with `count` missing permissions.
QString permHeadTitle(qsizetype count);

} // namespace korvel
