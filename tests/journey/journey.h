#pragma once

#include "app/tray_app.h"
#include "platform/net/exchange_client.h"
#include "platform/net/loopback_http_client.h"
#include "platform/qt/qt_programs.h"
#include "platform/qt/qt_scheduler.h"
#include "service/launchctl.h"
#include "simulator/home/simulated_home.h"
#include "support/fakes.h"
#include "support/tray_process.h"

#include <QTemporaryDir>
#include <functional>
#include <memory>

namespace korvel::test {

/// Runs the event loop until `condition` holds; false when it does not within `limit`.
bool eventually(const std::function<bool()> &condition, std::chrono::milliseconds limit = std::chrono::seconds(20));

/// The environment of this process is that of `home` while this lives, for the programs that the tray starts.
class EnvironmentScope {
public:
    explicit EnvironmentScope(const sim::SimulatedHome &home);
    ~EnvironmentScope();

private:
    QProcessEnvironment before;
};

/// The status line of a signed-in Mac that is well.
inline const QString CONNECTED = u"● Connected · ann · 0 sessions"_s;

/// A TrayApp on real sockets, processes and files, in a home of its own whose agent is simulated. Its clock runs
/// `speed` times as fast as the one on the wall, so that a test does not wait; time limits of programs and requests
/// stay real.
struct Journey : ::testing::Test, FakeScreen {
    explicit Journey(int speed = 5);
    ~Journey() override;

    QTemporaryDir folder;
    sim::SimulatedHome home{folder.filePath(QStringLiteral("home"))};
    EnvironmentScope environment{home};
    LaunchEnvironment launchEnvironment;
    FixedConfig fixed;
    Paths paths;
    QtPrograms programs;
    QtScheduler scheduler;
    LoopbackHttpClient http;
    ExchangeClient servers{programs, scheduler, exchangeProgram()};
    Launchctl services;
    QString bundle; ///< The tray's own bundle; empty: none, and the agent's program is named by the environment.
    std::unique_ptr<TrayApp> tray;

    /// Makes the tray one of another edition, before it is launched.
    void becomeEdition(const QString &edition) { fixed = makeFixedConfig(testDeployment(edition), launchEnvironment); }
    /// Puts the tray into a bundle of its own, with the agent in it.
    void assembleBundle();
    /// A signed-in Mac with the agent installed but not loaded.
    void installAndSignIn();
    /// The agent's configuration.
    QJsonObject cfg() const;
    /// Changes one key of it.
    void configure(const QString &key, const QString &value);
    /// Everything that a TrayApp runs on, with `client` for the agent.
    TrayPorts ports(HttpClient &client);
    void launch();
    /// Signs in, launches, and waits until all is well.
    void startConnected();
    /// Gives the agent's responses to polls this fault.
    void breakAgent(const QJsonObject &fault);
    bool showsSoon(const QString &statusLine);
    bool tells(const QString &notice);
};

} // namespace korvel::test
