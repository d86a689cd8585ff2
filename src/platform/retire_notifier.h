#pragma once

#include <QSocketNotifier>
#include <memory>

namespace korvel {

/// Ends a notifier. It may be told to go by the activity that it reports, so it is deleted later.
inline void retire(std::unique_ptr<QSocketNotifier> &notifier) {
    if (!notifier)
        return;
    notifier->setEnabled(false);
    notifier.release()->deleteLater();
}

} // namespace korvel
