#pragma once

#include "ui/views/notice_view.h"

#include <QJsonObject>
#include <optional>

namespace korvel {

Notice encryptedNotice();

/// The code of a new device is on its way to the agent.
Notice verifyingNotice();
Notice allowedNotice(const QString &device);
Notice deniedNotice(const QString &device);
/// `reply` (none: it stayed away) says why the device was not admitted.
Notice notAdmittedNotice(const std::optional<QJsonObject> &reply);

/// An encryption reset was not the user's own doing.
Notice strangersResetNotice();
Notice notRejoinedNotice(const std::optional<QJsonObject> &reply);

Notice speechDownloadNotice();
Notice noSpeechDownloadNotice(const std::optional<QJsonObject> &reply);

} // namespace korvel
