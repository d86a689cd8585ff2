#include "app/system_parts.h"

#include "platform/linux/running_instances_linux.h"
#include "platform/linux/status_item_linux.h"
#include "platform/qt/desktop_qt.h"
#include "ui/views/icon_view.h"
#include "ui/widgets/contrast_style.h"
#include "ui/widgets/icons.h"

#include <QApplication>
#include <QLocale>

namespace korvel {

namespace {

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

} // namespace

void logToSystem() {}

QStringList preferredLanguages() { return QLocale::system().uiLanguages(); }

// Selects the offscreen platform by argument: the agent's programs inherit the environment.
QList<const char *> prepareToolkit() {
    // With shared memory, the X server passes a descriptor; a program that cannot take one more waits for it without
    // end.
    qputenv("QT_XCB_NO_MITSHM", "1");
    return hasDisplay() ? QList<const char *>() : QList<const char *>{"-platform", "offscreen"};
}

void configureApplication() {
    QApplication::setWindowIcon(panelIcon({.on = true, .dimmed = false, .toolTip = {}}));
    QApplication::setStyle(new ContrastStyle);
}

std::shared_ptr<void> listenForReopen(std::function<void()>) {
    return nullptr; // on Linux, opening again starts a new instance, which replaces this one
}

std::unique_ptr<RunningInstances> makeRunningInstances(const Paths &paths) {
    return std::make_unique<RunningInstancesLinux>(paths.turnFile);
}

std::unique_ptr<StatusItem> makeStatusItem() { return std::make_unique<StatusItemLinux>(); }

std::unique_ptr<Desktop> makeDesktop(Programs &programs, bool hasSimulatedTools) {
    return std::make_unique<DesktopQt>(programs, hasSimulatedTools);
}

} // namespace korvel
