#include "app/system_parts.h"

#include "platform/desktop_mac.h"
#include "platform/log.h"
#include "platform/native_application_mac.h"
#include "platform/native_log_mac.h"
#include "platform/running_copies_mac.h"
#include "platform/status_item_mac.h"

namespace korvel {

QList<const char *> toolkitArguments() { return {}; }

void settleApplication() {
    setLogSink([](const QString &line) { native::writeSystemLog(line.toStdString()); });
    native::becomeAccessory();
}

std::shared_ptr<void> listenForReopen(std::function<void()> reopened) {
    return std::make_shared<native::ReopenListener>(std::move(reopened));
}

std::unique_ptr<RunningCopies> makeRunningCopies() { return std::make_unique<RunningCopiesMac>(); }

std::unique_ptr<StatusItem> makeStatusItem() { return std::make_unique<StatusItemMac>(); }

std::unique_ptr<Desktop> makeDesktop(Programs &programs, bool hasStandIns) {
    return std::make_unique<DesktopMac>(programs, hasStandIns);
}

} // namespace korvel
