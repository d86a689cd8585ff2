#include "journey/journey.h"

#include "app/model/deployment.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <unistd.h>

namespace korvel::test {

namespace {

void become(const QProcessEnvironment &wanted) {
    const QProcessEnvironment now = QProcessEnvironment::systemEnvironment();
    for (const QString &name : now.keys())
        if (!wanted.contains(name))
            qunsetenv(name.toLocal8Bit().constData());
    for (const QString &name : wanted.keys())
        if (now.value(name) != wanted.value(name))
            qputenv(name.toLocal8Bit().constData(), wanted.value(name).toLocal8Bit());
}

} // namespace

bool eventually(const std::function<bool()> &condition, std::chrono::milliseconds limit) {
    QElapsedTimer clock;
    clock.start();
    QTimer look; // what the condition looks at may be another process's
    look.start(10);
    while (!condition()) {
        if (clock.elapsed() > limit.count())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

EnvironmentScope::EnvironmentScope(const sim::SimulatedHome &home) : before(QProcessEnvironment::systemEnvironment()) {
    become(home.environment());
}
EnvironmentScope::~EnvironmentScope() { become(before); }

Journey::Journey(int speed)
    : launchEnvironment{.preferredLanguages = {},
                        .home = home.path(),
                        .hookPort = QString::number(home.port()),
                        .korvelHome = std::nullopt,
                        .automation = std::nullopt},
      fixed(makeFixedConfig(testDeployment(), launchEnvironment)), paths(makePaths(fixed, home.path(), ::getuid())),
      programs(simulatedRoot()), scheduler(speed), services(programs, paths.uid) {}

Journey::~Journey() {
    tray.reset();
    eventually([this] { return scheduler.finishBackground(); });
}

void Journey::installAndSignIn() {
    ASSERT_TRUE(home.signIn(u"ann"_s));
    ASSERT_TRUE(home.installJobFile());
}

QJsonObject Journey::cfg() const {
    QFile file(home.configPath());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

void Journey::configure(const QString &key, const QString &value) {
    QJsonObject changed = cfg();
    changed[key] = value;
    QDir().mkpath(QFileInfo(home.configPath()).path());
    QFile file(home.configPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QJsonDocument(changed).toJson());
}

TrayPorts Journey::ports(HttpClient &client) {
    return {scheduler, client,    servers,    programs, services,           desktop, item, notices,
            alerts,    pairPanel, loginPanel, bundle,   home.agentProgram()};
}

void Journey::assembleBundle() {
    const QString program = home.assembleBundle(trayProgram());
    ASSERT_FALSE(program.isEmpty());
    bundle = QDir::cleanPath(QFileInfo(program).path() + u"/../.."_s);
}

void Journey::launch() {
    tray = std::make_unique<TrayApp>(fixed, paths, ports(http));
    tray->launch(trayProgram());
}

void Journey::startConnected() {
    installAndSignIn();
    launch();
    ASSERT_TRUE(showsSoon(CONNECTED));
}

void Journey::breakAgent(const QJsonObject &fault) {
    ASSERT_TRUE(home.setScenario({{u"faults"_s, QJsonObject{{u"/health"_s, fault}}}}));
}

bool Journey::showsSoon(const QString &statusLine) {
    const bool shown = eventually([&] { return item.statusLine() == statusLine; });
    EXPECT_EQ(item.statusLine(), statusLine);
    return shown;
}

bool Journey::tells(const QString &notice) {
    const bool told = eventually([&] { return notices.last() == notice; });
    EXPECT_EQ(notices.last(), notice);
    return told;
}

} // namespace korvel::test
