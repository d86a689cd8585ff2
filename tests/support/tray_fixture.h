#pragma once

#include "app/tray_app.h"
#include "support/fakes.h"
#include "support/manual_scheduler.h"

#include <algorithm>
#include <memory>

namespace korvel::test {

inline const QByteArray ONLINE = R"({"ok":true,"online":true,"account":"ann","sessions":1})";
inline const QByteArray OFFLINE = R"({"ok":true,"online":false,"account":"ann"})";
inline const QByteArray SIGNED_OUT = R"({"ok":true,"online":false,"account":"ann","authDead":true})";

/// A whole TrayApp on scripted ports and a virtual clock.
struct TrayFixture : ::testing::Test, FakeScreen {
    TestHome home;
    ManualScheduler scheduler;
    FakeHttp http;
    FakeServices services;
    FakePrograms programs;
    LoginPanel *shownLogin = &loginPanel;
    std::unique_ptr<TrayApp> tray;

    /// Puts an agent program into the tray's bundle.
    void placeAgent() {
        const QString agent = home.home() + u"/Contents/Resources/korvel-agent"_s;
        home.write(agent, "#!/bin/sh\n");
        QFile::setPermissions(agent, QFile::permissions(agent) | QFile::ExeOwner);
    }
    /// Requests to one path of the agent's interface.
    int requestsTo(const QString &path) const {
        return static_cast<int>(std::count(http.paths.begin(), http.paths.end(), path));
    }
    /// A Mac bound to an account with the agent's job loaded.
    void installAndBind() {
        home.bind();
        home.installJobFile();
        services.loaded = true;
    }
    void makeTray() {
        tray =
            std::make_unique<TrayApp>(home.fixed, home.paths,
                                      TrayPorts{scheduler, http, http, programs, services, desktop, item, notices,
                                                alerts, pairPanel, *shownLogin, home.home(), u"/opt/korvel-agent"_s});
    }
    void launch() {
        makeTray();
        tray->launch(u"/Applications/Korvel.app/Contents/MacOS/korvel-tray"_s);
        scheduler.runDue();
    }
    /// Launches a Mac bound to an account whose agent answers polls with `body`.
    void launchBound(const QByteArray &body = ONLINE) {
        installAndBind();
        agentAnswers(body);
        launch();
    }
    /// Has the agent answer with `body` from the next poll on, which is sent now.
    void nextPoll(const QByteArray &body) {
        agentAnswers(body);
        scheduler.advance(3s);
    }
    /// The edition that signs in through the browser or with a small dialog, installed and not signed in.
    void makeInternational() {
        home.fixed = makeFixedConfig(testDeployment(u"intl"_s), {.preferredLanguages = {},
                                                                 .home = home.home(),
                                                                 .hookPort = std::nullopt,
                                                                 .korvelHome = std::nullopt,
                                                                 .automation = std::nullopt});
        home.installJobFile();
    }
    /// Answers the oldest open request whose address ends in `path`.
    void answerOpen(const QString &path, Result<HttpReply> reply) {
        for (size_t i = 0; i < http.open.size(); ++i)
            if (http.open[i].request.url.endsWith(path))
                return http.reply(i, std::move(reply));
        ADD_FAILURE() << "no open request to " << path.toStdString();
    }
    void agentAnswers(const QByteArray &body) {
        http.answer = [body](const HttpRequest &) { return json(body); };
    }
    void agentIsSilent() {
        http.answer = [](const HttpRequest &) { return noAnswer(); };
    }
    const HealthState &health() const { return tray->currentState().health; }
};

} // namespace korvel::test
