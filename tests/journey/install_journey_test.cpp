#include "journey/journey.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

const QString CONNECTED = u"● Connected · ann · 0 sessions"_s;

/// A Mac that was signed in and whose agent has no job file.
struct RepairJourney : Journey {
    void SetUp() override {
        assembleBundle();
        ASSERT_TRUE(home.signIn(u"ann"_s));
    }
    bool tells(const QString &notice) {
        const bool told = eventually([&] { return notices.last() == notice; });
        EXPECT_EQ(notices.last(), notice);
        return told;
    }
    QJsonObject failing(const QString &why) const { return {{u"status"_s, 5}, {u"stderr"_s, why}}; }
};

TEST_F(RepairJourney, ALaunchWithoutAJobFileRepairsAndTheAgentComesUp) {
    home.setScenario({{u"installHooks"_s, failing(u"no hooks"_s)}, // not decisive
                      {u"installService"_s, QJsonObject{{u"delayMs"_s, 300}}},
                      {u"agent"_s, QJsonObject{{u"startDelayMs"_s, 600}}},
                      {u"health"_s, QJsonObject{{u"authDead"_s, true}, {u"online"_s, false}}}});
    launch();
    EXPECT_EQ(item.statusLine(), u"Repairing…"_s);
    ASSERT_TRUE(showsSoon(u"○ Starting… · ann"_s));
    ASSERT_TRUE(showsSoon(u"Signed out. Sign in again."_s));
    EXPECT_NE(home.agentPid(), 0);
    EXPECT_TRUE(QFileInfo::exists(home.jobFilePath()));
    EXPECT_EQ(item.entry(Action::Repair), MenuEntry());
}

struct PermissionJourney : Journey {
    /// A connected Mac whose agent has been granted nothing, and whose user takes `promptMs` for each prompt.
    void start(int promptMs) {
        home.setScenario({{u"permissions"_s, QJsonObject{{u"start"_s, u"fresh"_s}, {u"promptMs"_s, promptMs}}}});
        installAndSignIn();
        launch();
        ASSERT_TRUE(showsSoon(CONNECTED + u" · ⚠ %1 permissions missing"_s.arg(home.permissions().names().size())));
        ASSERT_TRUE(eventually([&] { return !titles().isEmpty(); }));
        EXPECT_EQ(titles().filter(u"⚠ "_s).size(), home.permissions().names().size());
    }
    QStringList titles() const {
        QStringList all;
        for (const MenuEntry &entry : item.menu.entries)
            if (entry.action == Action::OpenPermPane)
                all.append(entry.title);
        return all;
    }
};

TEST_F(PermissionJourney, TheRestGoesOnWhileTheUserAnswersThePrompts) {
    start(400);
    item.choose(Action::AskPerms);
    EXPECT_EQ(item.entry(Action::AskPerms).title, u"Requesting…"_s);
    const int polls = requestsTo(u"/health"_s), fetches = requestsTo(u"/perms"_s);
    ASSERT_TRUE(eventually([&] { return requestsTo(u"/health"_s) > polls; }));
    item.events.menuOpening();
    ASSERT_TRUE(eventually([&] { return requestsTo(u"/perms"_s) > fetches; }));
    EXPECT_EQ(item.entry(Action::AskPerms).title, u"Requesting…"_s);
    // One permission cannot be granted in a prompt.
    ASSERT_TRUE(eventually([&] { return notices.last().startsWith(u"Still missing: Accessibility."_s); }));
    EXPECT_EQ(requestsTo(u"/perms/request"_s), 1);
    ASSERT_TRUE(showsSoon(CONNECTED + u" · ⚠ 1 permission missing"_s));

    for (const MenuEntry &entry : item.menu.entries)
        if (entry.action == Action::OpenPermPane && entry.title.startsWith(u"⚠ "_s))
            item.events.chosen(entry);
    EXPECT_EQ(desktop.opened.size(), 1);
    ASSERT_TRUE(home.permissions().grant(u"Accessibility"_s));
    ASSERT_TRUE(showsSoon(CONNECTED));
    item.events.menuOpening();
    ASSERT_TRUE(eventually([&] { return item.entry(Action::AskPerms) == MenuEntry(); }));
    EXPECT_TRUE(titles().isEmpty());
}

} // namespace
} // namespace korvel::test
