#include "app/system_parts.h"

#include "base/log.h"
#include "platform/mac/desktop_mac.h"
#include "platform/mac/native_application_mac.h"
#include "platform/mac/native_session_mac.h"
#include "platform/mac/running_instances_mac.h"
#include "platform/mac/status_item_mac.h"

#include <QtGlobal>

namespace korvel {

namespace {
constexpr qsizetype MAX_LOG_CHARACTERS = 300; // at most 900 bytes; the system log truncates lines after 1024
}

void logToSystem() {
    setLogSink([](const QString &line) {
        for (qsizetype at = 0; at < line.size(); at += MAX_LOG_CHARACTERS)
            native::writeSystemLog(line.mid(at, MAX_LOG_CHARACTERS).toStdString());
    });
}

QStringList preferredLanguages() {
    return QString::fromStdString(native::preferredLanguageLines()).split(u'\n', Qt::SkipEmptyParts);
}

QList<const char *> prepareToolkit() {
    // Without it, Qt activates the application at every start, also at login and after an update.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    return {};
}

void configureApplication() { native::becomeAccessory(); }

std::shared_ptr<void> listenForReopen(std::function<void()> reopened) {
    return std::make_shared<native::ReopenListener>(std::move(reopened));
}

std::unique_ptr<RunningInstances> makeRunningInstances(const Paths &) {
    return std::make_unique<RunningInstancesMac>();
}

std::unique_ptr<StatusItem> makeStatusItem() { return std::make_unique<StatusItemMac>(); }

std::unique_ptr<Desktop> makeDesktop(Programs &programs, bool hasSimulatedTools) {
    return std::make_unique<DesktopMac>(programs, hasSimulatedTools);
}

} // namespace korvel
