#pragma once

#include "ui/views/notice_view.h"

namespace korvel {

Notice quittingNotice();
Notice noLogNotice();
Notice repairedNotice();
/// A click opens `website`, where the user can download the program again.
Notice repairFailedNotice(const QString &website);

} // namespace korvel
