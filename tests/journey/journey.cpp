#include "journey/journey.h"

#include "app/model/deployment.h"
#include "simulator/home/files.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <unistd.h>

namespace korvel::test {

namespace {

/// Sets the environment of this process.
void become(const QProcessEnvironment &wanted) {
    for (const QString &name : QProcessEnvironment::systemEnvironment().keys() + wanted.keys())
        wanted.contains(name) ? qputenv(name.toLocal8Bit().constData(), wanted.value(name).toLocal8Bit())
                              : qunsetenv(name.toLocal8Bit().constData());
}

} // namespace

bool eventually(const std::function<bool()> &condition, std::chrono::milliseconds limit) {
    QElapsedTimer clock;
    clock.start();
    QTimer look; // the condition may depend on another process
    look.start(10);
    while (!condition()) {
        if (clock.elapsed() > limit.count())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

std::optional<pid_t> parentOfExchange(pid_t process) {
    QFile file(u"/proc/%1/stat"_s.arg(process)); // "PID (NAME) STATE PARENT ..."
    const QList<QByteArray> words = file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QList<QByteArray>();
    const bool lives = words.value(1) == "(korvel-exchange)" && words.value(2) != "Z";
    return lives ? std::optional(words.value(3).toInt()) : std::nullopt;
}

QList<pid_t> exchangesOf(pid_t parent) {
    QList<pid_t> found;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs))
        if (parentOfExchange(name.toInt()) == parent)
            found.append(name.toInt());
    return found;
}

Journey::Journey(int speed)
    : launchEnvironment{.preferredLanguages = {},
                        .home = home.path(),
                        .hookPort = QString::number(home.port()),
                        .korvelHome = std::nullopt,
                        .automation = std::nullopt},
      fixed(makeFixedConfig(testDeployment(), launchEnvironment)), paths(makePaths(fixed, home.path(), ::getuid())),
      programs(simulatedRoot()), scheduler(speed), services(programs, paths.uid) {
    become(home.environment());
}

Journey::~Journey() {
    tray.reset();
    eventually([this] { return scheduler.finishBackground(); });
    become(before);
}

void Journey::installAndSignIn() {
    ASSERT_TRUE(home.signIn(u"ann"_s));
    ASSERT_TRUE(home.installJobFile());
}

void Journey::configure(const QString &key, const QString &value) {
    QJsonObject changed = sim::readObject(home.configPath());
    changed[key] = value;
    QDir().mkpath(QFileInfo(home.configPath()).path());
    ASSERT_TRUE(sim::replaceFile(home.configPath(), changed));
}

void Journey::launch(HttpClient &client) {
    const TrayPorts ports{scheduler, client,    servers,    programs, services,           desktop, item, notices,
                          alerts,    pairPanel, loginPanel, {},       home.agentProgram()};
    tray = std::make_unique<TrayApp>(fixed, paths, ports);
    tray->launch(trayProgram());
}

void Journey::startConnected() {
    installAndSignIn();
    launch();
    ASSERT_TRUE(showsSoon(CONNECTED));
}

bool Journey::showsSoon(const QString &statusLine) {
    const bool shown = eventually([&] { return item.statusLine() == statusLine; });
    EXPECT_EQ(item.statusLine(), statusLine);
    return shown;
}

} // namespace korvel::test
