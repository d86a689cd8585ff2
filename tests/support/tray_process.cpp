#include "support/tray_process.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace korvel::test {

QString trayProgram() { return QStringLiteral(KORVEL_TRAY_PROGRAM); }
QString exchangeProgram() { return QStringLiteral(KORVEL_EXCHANGE_PROGRAM); }

TrayProcess::TrayProcess(sim::SimulatedHome &home, Shown shown, const QString &language)
    : placed(home.assembleBundle(trayProgram())) {
    EXPECT_FALSE(placed.isEmpty());
    QProcessEnvironment environment = home.environment();
    if (shown == Shown::Nowhere)
        for (const QString &name :
             {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
            environment.remove(name);
    environment.insert(u"LANGUAGE"_s, language);
    environment.insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
    setProcessEnvironment(environment);
    setProgram(placed);
}

TrayProcess::~TrayProcess() {
    if (state() != NotRunning)
        stop(SIGKILL);
}

bool TrayProcess::begin() {
    setProcessChannelMode(MergedChannels);
    start();
    return waitForStarted();
}

void TrayProcess::beginAutomation(const QStringList &arguments, const QByteArray &input) {
    QProcessEnvironment environment = processEnvironment();
    environment.insert(u"KORVEL_TRAY_AUTOMATION"_s, u"1"_s);
    setProcessEnvironment(environment);
    setArguments(arguments);
    start();
    write(input);
    closeWriteChannel();
}

QByteArray TrayProcess::stop(int signal) {
    if (state() != NotRunning) { // else its id would be 0, which addresses the group of this process
        ::kill(static_cast<pid_t>(processId()), signal);
        EXPECT_TRUE(waitForFinished(20'000));
    }
    return readAll();
}

void TrayProcess::end() {
    const QByteArray printed = stop(SIGTERM);
    EXPECT_TRUE(hasEndedWell()) << printed.constData();
    EXPECT_FALSE(printed.contains("Sanitizer") || printed.contains("runtime error")) << printed.constData();
}

} // namespace korvel::test
