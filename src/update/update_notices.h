#pragma once

#include "app/model/tray_state.h"
#include "ui/views/notice_view.h"

namespace korvel {

/// A check that the user asked for found nothing newer than `version`, which runs.
Notice upToDateNotice(const QString &version);
/// Such a check failed, for a reason that is known or for none.
Notice notCheckedNotice(const QString &reason = {});
/// A newer version is offered, but not with the publisher's signature.
Notice unsignedNotice(const QString &version, const QString &website);
Notice availableNotice(const QString &version);

Notice downloadingNotice(const UpdateInfo &info);
/// The download ended without a package.
Notice downloadFailedNotice(const QString &reason = {});
/// The server gave an answer instead of the package: what it says, where that can be shown.
Notice downloadRefusedNotice(int status, const QByteArray &body, const QString &website);
Notice notSavedNotice();
/// The package could not be looked at.
Notice notVerifiedNotice();
/// The package is not the one that was announced.
Notice modifiedNotice();

Notice installingNotice(const QString &version);
Notice installedNotice(const QString &version);
Notice installCancelledNotice(const QString &version);
/// The package changed between the last check and the installation.
Notice swappedNotice();
/// The system's own installer was opened instead.
Notice installerOpenedNotice();

} // namespace korvel
