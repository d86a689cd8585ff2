#include "app/platform_app.h"

#include "app/launch_environment.h"
#include "app/model/deployment.h"
#include "app/single_instance.h"
#include "app/system_parts.h"
#include "app/tray_app.h"
#include "base/unix_process.h"
#include "platform/net/exchange_client.h"
#include "platform/net/loopback_http_client.h"
#include "platform/qt/qt_programs.h"
#include "platform/qt/qt_scheduler.h"
#include "service/launchctl.h"
#include "ui/widgets/alert_window.h"
#include "ui/widgets/cn_login_window.h"
#include "ui/widgets/notice_window.h"
#include "ui/widgets/pair_window.h"

#include <QApplication>
#include <QThreadPool>
#include <QTimer>
#include <csignal>
#include <cstdlib>
#include <vector>

namespace korvel {

namespace {

/// The arguments for Qt. The tray's own command line is not passed on.
std::vector<char *> qtArguments(char **argv) {
    std::vector<char *> arguments{argv[0]};
    for (const char *argument : prepareToolkit())
        arguments.push_back(const_cast<char *>(argument)); // Qt moves the pointers but does not write to the strings
    arguments.push_back(nullptr);
    return arguments;
}

/// Qt's painter shares large fills among threads of a pool and waits for them. A thread that cannot be started for want
/// of descriptors or threads ends the program, or is waited for without end; so no painting may need a new one.
void paintWithoutNewThreads() {
    qputenv("QT_NO_GUI_THREADPOOL", "1");
    if constexpr (QT_VERSION < QT_VERSION_CHECK(6, 6, 0)) { // without that switch: one thread that never ends
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        QThreadPool::globalInstance()->setExpiryTimeout(-1);
        QThreadPool::globalInstance()->start([] {});
    }
}

void runLoopFor(milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int runTray(char **argv, const FixedConfig &config, const Paths &paths) {
    std::function<void()> reopen;
    const auto reopenListener = listenForReopen([&reopen] {
        if (reopen)
            reopen();
    });
    std::vector<char *> arguments = qtArguments(argv);
    int count = static_cast<int>(arguments.size()) - 1;
    QApplication app(count, arguments.data());
    paintWithoutNewThreads();
    QApplication::setApplicationName(QStringLiteral("Korvel"));
    QApplication::setQuitOnLastWindowClosed(false);
    configureApplication();
    bool quit = false;
    const UnixSignals signals({SIGTERM, SIGINT, SIGHUP}, [&quit](int) {
        quit = true;
        QCoreApplication::exit(0);
    });
    endOtherInstances(*makeRunningInstances(paths), runLoopFor, Clock::now);
    if (quit) // quit was requested while waiting for older instances
        return 0;

    QtPrograms programs(simulatedRoot());
    QtScheduler scheduler;
    int status = 0;
    {
        LoopbackHttpClient agentHttp;
        ExchangeClient servers(programs, scheduler, exchangeProgram());
        Launchctl services(programs, paths.uid);
        const auto desktop = makeDesktop(programs, !simulatedRoot().isEmpty());
        const auto item = makeStatusItem();
        NoticeWindow notice;
        AlertWindow alerts;
        PairWindowPanel pairing;
        CnLoginPanel login;
        TrayApp tray(config, paths,
                     {scheduler, agentHttp, servers, programs, services, *desktop, *item, notice, alerts, pairing,
                      login, bundlePath(), agentOverride()});
        reopen = [&tray] { tray.reopen(); };
        tray.launch(executablePath());
        status = QApplication::exec();
        reopen = nullptr;
        if (!scheduler.finishBackground())
            std::_Exit(status); // a program that is still running must not delay the exit
    }
    return status;
}

} // namespace korvel
