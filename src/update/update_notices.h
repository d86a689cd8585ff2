#pragma once

#include "app/model/tray_state.h"
#include "ui/views/notice_view.h"

namespace korvel {

/// A requested check found nothing newer than the running `version`.
Notice upToDateNotice(const QString &version);
/// A requested check failed. `reason` may be empty.
Notice notCheckedNotice(const QString &reason = {});
/// A newer version is offered without the publisher's signature.
Notice unsignedNotice(const QString &version, const QString &website);
Notice availableNotice(const QString &version);

Notice downloadingNotice(const UpdateInfo &info);
/// The download ended without a package.
Notice downloadFailedNotice(const QString &reason = {});
/// The server refused the download: shows the text of its response if that is fit to show.
Notice downloadRefusedNotice(int status, const QByteArray &body, const QString &website);
Notice notSavedNotice();
/// The package could not be checked.
Notice notVerifiedNotice();
/// The package differs from the announced one.
Notice modifiedNotice();

Notice installingNotice(const QString &version);
Notice installedNotice(const QString &version);
Notice installCancelledNotice(const QString &version);
/// The package changed between the last check and the installation.
Notice swappedNotice();
/// The system's own installer was opened instead.
Notice installerOpenedNotice();

} // namespace korvel
