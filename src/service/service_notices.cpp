#include "service/service_notices.h"

#include "app/model/wording.h"

namespace korvel {

Notice quittingNotice() { return {.text = L(u"⏻ 正在退出…", u"⏻ Quitting…"), .secs = Seconds(3)}; }

Notice noLogNotice() { return {.text = L(u"暂无日志", u"No log yet"), .secs = Seconds(2.5)}; }

Notice repairedNotice() { return {.text = L(u"✓ 已修复", u"✓ Repaired"), .secs = Seconds(2.5)}; }

Notice repairFailedNotice(const QString &website) {
    return {.text = L(u"修复失败，请从官网下载 Korvel 并重新安装",
                      u"Couldn't repair Korvel. Download it from the website and reinstall."),
            .secs = Seconds(8),
            .error = true,
            .link = website};
}

} // namespace korvel
