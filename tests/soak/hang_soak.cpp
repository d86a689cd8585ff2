#include "journey/journey.h"

namespace korvel::test {
namespace {

const QString PAUSED = u"⏻ Sync paused · ann"_s;
/// A toggle runs at most seven commands one after the other, and each has 30 s.
constexpr auto TOGGLE_TIMEOUT = std::chrono::seconds(240);

struct HangSoak : Journey {
    void behave(const QJsonObject &launchctl) {
        home.changeScenario({{u"launchctl"_s, QJsonValue()}});
        home.changeScenario({{u"launchctl"_s, launchctl}});
    }
    /// Toggles, and waits for the end of it.
    void toggle() {
        item.choose(Action::MenuToggle);
        ASSERT_TRUE(tray->currentState().service.busy);
        ASSERT_TRUE(eventually([this] { return !tray->currentState().service.busy; }, TOGGLE_TIMEOUT));
    }
};

TEST_F(HangSoak, WhicheverSubcommandHangsTheToggleEndsAndTheNextOneWorks) {
    const QJsonObject hangs{{u"delayMs"_s, 600'000}}, fails{{u"status"_s, 5}};
    ASSERT_NO_FATAL_FAILURE(startConnected());
    for (const QString &subcommand : {u"bootout"_s, u"disable"_s, u"print"_s}) {
        SCOPED_TRACE(subcommand.toStdString());
        behave({{subcommand, hangs}});
        ASSERT_NO_FATAL_FAILURE(toggle());
        behave({});
        if (home.agentPid() != 0) { // what hung is what stops it
            ASSERT_NO_FATAL_FAILURE(toggle());
        }
        ASSERT_TRUE(showsSoon(PAUSED));
        ASSERT_NO_FATAL_FAILURE(toggle());
        ASSERT_TRUE(showsSoon(CONNECTED));
    }
    for (const QString &subcommand : {u"enable"_s, u"bootstrap"_s, u"kickstart"_s, u"print"_s}) {
        SCOPED_TRACE(subcommand.toStdString());
        ASSERT_NO_FATAL_FAILURE(toggle());
        ASSERT_TRUE(showsSoon(PAUSED));
        behave({{u"bootstrap"_s, subcommand == u"kickstart" ? fails : QJsonObject()}, {subcommand, hangs}});
        ASSERT_NO_FATAL_FAILURE(toggle());
        behave({});
        if (home.agentPid() == 0) {
            ASSERT_NO_FATAL_FAILURE(toggle());
        }
        ASSERT_TRUE(showsSoon(CONNECTED));
    }
}

} // namespace
} // namespace korvel::test
