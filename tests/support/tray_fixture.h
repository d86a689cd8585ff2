#pragma once

#include "app/tray_app.h"
#include "service/launchctl.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"

#include <memory>

namespace korvel::test {

inline const QByteArray ONLINE = R"({"ok":true,"online":true,"account":"ann","sessions":1})";
inline const QByteArray OFFLINE = R"({"ok":true,"online":false,"account":"ann"})";
inline const QByteArray SILENCE;
inline const QByteArray DELETED = R"({"ok":true,"online":false,"account":"ann","authDead":true,"accountGone":true})";
inline const QByteArray SIGNED_OUT = R"({"ok":true,"online":false,"account":"ann","authDead":true})";
/// A health response with an encryption report.
inline QByteArray withReport(const QByteArray &report) { return R"({"ok":true,"online":true,"e2ee":)" + report + '}'; }

/// A whole TrayApp on fake ports and a virtual clock.
struct TrayFixture : ::testing::Test, FakeScreen {
    TestHome home;
    ManualScheduler scheduler;
    FakeHttp http;
    FakeLaunchctl services;
    Launchctl launchctl{services, 501};
    FakePrograms programs;
    LoginPanel *shownLogin = &loginPanel;
    QByteArray reply = SILENCE; ///< The agent's response to a POST.
    std::unique_ptr<TrayApp> tray;

    /// Puts an agent program into the tray's bundle.
    void placeAgent() const {
        const QString agent = home.home() + u"/Contents/Resources/korvel-agent"_s;
        home.write(agent, "#!/bin/sh\n");
        QFile::setPermissions(agent, QFile::permissions(agent) | QFile::ExeOwner);
    }
    /// The number of requests to one path.
    qsizetype requestsTo(const QString &path) const { return http.paths.count(path); }
    /// A Mac bound to an account with the agent's job loaded.
    void installAndBind() {
        home.bind();
        home.installJobFile();
        services.loaded = true;
    }
    /// The edition that signs in through the browser or with a small dialog, installed and not signed in.
    void makeInternational() {
        home.fixed = testConfig(u"intl"_s, home.home());
        home.installJobFile();
    }
    void launch() {
        tray =
            std::make_unique<TrayApp>(home.fixed, home.paths,
                                      TrayPorts{scheduler, http, http, programs, launchctl, desktop, item, notices,
                                                alerts, pairPanel, *shownLogin, home.home(), u"/opt/korvel-agent"_s});
        tray->launch(u"/Applications/Korvel.app/Contents/MacOS/korvel-tray"_s);
        scheduler.runDue();
    }
    /// Launches a Mac bound to an account whose agent responds to polls with `body`.
    void launchBound(const QByteArray &body = ONLINE) {
        installAndBind();
        agentResponds(body);
        launch();
        forget();
    }
    void forget() {
        services.calls.clear();
        notices.shown.clear();
    }
    /// Chooses a menu entry and runs what follows at once.
    void choose(Action action) {
        item.choose(action);
        scheduler.runDue();
    }
    /// Lets the agent respond with `body` to polls from the next poll on, which is sent now.
    void nextPoll(const QByteArray &body) {
        agentResponds(body);
        scheduler.advance(3s);
    }
    void nextReport(const QByteArray &report) { nextPoll(withReport(report)); }
    void agentResponds(const QByteArray &body) {
        http.respond = [this, body](const HttpRequest &request) {
            const QByteArray &response = request.method == "POST" ? reply : body;
            return response.isEmpty() ? noResponse() : json(response);
        };
    }
    /// Completes the oldest request in flight whose address ends in `path`.
    void complete(const QString &path, Result<HttpReply> reply) {
        for (size_t i = 0; i < http.inFlight.size(); ++i)
            if (http.inFlight[i].request.url.endsWith(path))
                return http.complete(i, std::move(reply));
        ADD_FAILURE() << "no request to " << path.toStdString();
    }
    const HealthState &health() const { return tray->currentState().health; }
};

} // namespace korvel::test
