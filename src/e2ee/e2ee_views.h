#pragma once

#include "app/model/situation.h"
#include "base/result.h"
#include "ui/views/menu_entry.h"
#include "ui/views/notice_view.h"

#include <QJsonObject>

namespace korvel {

Notice encryptedNotice();

/// Shown while the agent verifies the code of a new device.
Notice verifyingNotice();
Notice allowedNotice(const QString &device);
Notice deniedNotice(const QString &device);
/// `reply` says why the device was not approved, unless there was none.
Notice notAdmittedNotice(const Result<QJsonObject> &reply);

/// Shown if the user did not start an encryption reset.
Notice strangersResetNotice();
Notice notRejoinedNotice(const Result<QJsonObject> &reply);

Notice speechDownloadNotice();
Notice noSpeechDownloadNotice(const Result<QJsonObject> &reply);

/// The encryption block of the menu. Empty if there is nothing to show, otherwise ends with a separator.
QList<MenuEntry> e2MenuItems(const Situation &situation);

} // namespace korvel
