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

#include <functional>
#include <memory>
#include <optional>

namespace korvel::test {

/// Runs the event loop until `condition` holds; false when it does not within `limit`.
bool eventually(const std::function<bool()> &condition, std::chrono::milliseconds limit = std::chrono::seconds(20));

/// Sends a request and waits for its outcome.
template <class Client, class Request>
Result<HttpReply> outcomeOf(Client &client, const Request &request) {
    std::optional<Result<HttpReply>> outcome;
    client.send(request, Done<HttpReply>([&](Result<HttpReply> reply) { outcome.emplace(std::move(reply)); }));
    EXPECT_FALSE(outcome.has_value()); // never before send() returned
    EXPECT_TRUE(eventually([&] { return outcome.has_value(); }));
    return outcome.value_or(Error{});
}

/// The parent of this process if it is a run of korvel-exchange. Linux only, like exchangesOf().
std::optional<pid_t> parentOfExchange(pid_t process);
/// The runs of korvel-exchange that `parent` has started. Their environment is hidden from other processes.
QList<pid_t> exchangesOf(pid_t parent);

/// The part of a scenario with a fault of the agent at `path` (or "*"), and the same of the account server.
inline QJsonObject agentFault(const QString &path, const QJsonObject &fault) {
    return {{u"faults"_s, QJsonObject{{path, fault}}}};
}
inline QJsonObject serverFault(const QString &path, const QJsonObject &fault) {
    return {{u"server"_s, agentFault(path, fault)}};
}

/// The status line of a signed-in Mac that is well.
inline const QString CONNECTED = u"● Connected · ann · 0 sessions"_s;

/// A TrayApp on real sockets, processes and files, in a home of its own whose agent is simulated. Its clock runs
/// `speed` times as fast as real time; the time limits of programs and requests stay real. The programs that it starts
/// get the environment of the home.
struct Journey : ::testing::Test, FakeScreen {
    explicit Journey(int speed = 5);
    ~Journey() override;

    QTemporaryDir folder;
    sim::SimulatedHome home{folder.filePath(QStringLiteral("home"))};
    LaunchEnvironment launchEnvironment;
    FixedConfig fixed;
    Paths paths;
    QtPrograms programs;
    QtScheduler scheduler;
    LoopbackHttpClient http;
    ExchangeClient servers{programs, scheduler, exchangeProgram()};
    Launchctl services;
    std::unique_ptr<TrayApp> tray;

    /// A signed-in Mac with the agent installed but not loaded.
    void installAndSignIn();
    /// Changes one key of the agent's configuration.
    void configure(const QString &key, const QString &value);
    /// Launches a tray that reaches the agent through `client`.
    void launch(HttpClient &client);
    void launch() { launch(http); }
    /// Signs in, launches, and waits until all is well.
    void startConnected();
    bool showsSoon(const QString &statusLine);

private:
    const QProcessEnvironment before = QProcessEnvironment::systemEnvironment();
};

} // namespace korvel::test
