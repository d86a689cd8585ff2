#include "app/timed_notices.h"

#include "base/plain_text.h"

namespace korvel {

void TimedNotices::showHUD(const Notice &notice) {
    panel.show({.text = singleLine(notice.text), .error = notice.error}, [this, link = notice.link] {
        if (!link.isEmpty())
            desktop.openUrl(link);
        hideHUD();
    });
    takeDown = scheduler.after(std::chrono::duration_cast<milliseconds>(notice.secs), [this] { panel.hide(); });
}

void TimedNotices::hideHUD() {
    takeDown.cancel();
    panel.hide();
}

} // namespace korvel
