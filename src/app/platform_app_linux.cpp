#include "app/platform_app.h"

#include "account/cn_login_window.h"
#include "app/bundle.h"
#include "app/deployment.h"
#include "app/single_instance.h"
#include "app/tray_app.h"
#include "e2ee/pair_window.h"
#include "platform/curl_http_client.h"
#include "platform/desktop_qt.h"
#include "platform/qt_programs.h"
#include "platform/qt_scheduler.h"
#include "platform/quit_signals.h"
#include "platform/running_copies_linux.h"
#include "platform/status_item_linux.h"
#include "service/launchctl.h"
#include "status/icon_view.h"
#include "ui/alert_window.h"
#include "ui/icon_image.h"
#include "ui/notice_window.h"

#include <QApplication>
#include <QTimer>
#include <cstdlib>
#include <vector>

namespace korvel {

namespace {

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

/// The arguments for Qt: none of the tray's own, which are ignored. Off screen is chosen here and not through the
/// environment, which the agent's programs inherit.
std::vector<char *> qtArguments(char **argv) {
    static char platform[] = "-platform";
    static char offscreen[] = "offscreen";
    std::vector<char *> arguments{argv[0]};
    if (!hasDisplay())
        arguments.insert(arguments.end(), {platform, offscreen});
    arguments.push_back(nullptr);
    return arguments;
}

void runLoopFor(milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int runTray(char **argv, const FixedConfig &config, const Paths &paths) {
    std::vector<char *> arguments = qtArguments(argv);
    int count = static_cast<int>(arguments.size()) - 1;
    QApplication app(count, arguments.data());
    QApplication::setApplicationName(QStringLiteral("Korvel"));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(panelIcon({.on = true, .dimmed = false, .toolTip = {}}));
    bool quit = false;
    const QuitSignals signals([&quit] {
        quit = true;
        QCoreApplication::exit(0);
    });
    {
        RunningCopiesLinux copies;
        endOtherCopies(copies, runLoopFor, Clock::now);
    }
    if (quit) // asked to go while an older copy was still going
        return 0;

    QtPrograms programs(standInRoot());
    QtScheduler scheduler;
    int status = 0;
    {
        CurlHttpClient http(scheduler);
        Launchctl services(programs, paths.uid);
        DesktopQt desktop(programs, !standInRoot().isEmpty());
        StatusItemLinux item;
        NoticeWindow notice;
        AlertWindow alerts;
        PairWindow pairing;
        CnLoginPanel login;
        TrayApp tray(config, paths,
                     {scheduler, http, programs, services, desktop, item, notice, alerts, pairing, login, bundlePath(),
                      agentOverride()});
        tray.launch(executablePath());
        status = QApplication::exec();
        if (!scheduler.finishBackground())
            std::_Exit(status); // a program that still runs must not keep the tray from going
    }
    return status;
}

} // namespace korvel
