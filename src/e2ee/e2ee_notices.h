#pragma once

#include "base/result.h"
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
Notice notAdmittedNotice(const Result<QJsonObject> &reply);

/// An encryption reset was not the user's own doing.
Notice strangersResetNotice();
Notice notRejoinedNotice(const Result<QJsonObject> &reply);

Notice speechDownloadNotice();
Notice noSpeechDownloadNotice(const Result<QJsonObject> &reply);

} // namespace korvel
