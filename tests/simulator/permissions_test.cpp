#include "home_fixture.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QString SCREEN = u"Screen Recording"_s;
const QString ACCESSIBILITY = u"Accessibility"_s;
const QString MICROPHONE = u"Microphone"_s;
const QString DISK = u"Full Disk Access"_s;
constexpr int FOR_EVER = 1'000'000;

class PermissionsTest : public HomeTest {
protected:
    void start(const QJsonObject &settings) {
        home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 10}}}, {u"permissions"_s, settings}});
        ASSERT_TRUE(startAgent());
    }
    void change(const QJsonObject &settings) { home.changeScenario({{u"permissions"_s, settings}}); }
    static QJsonObject parsed(const Exchange &exchange) { return QJsonDocument::fromJson(exchange.body).object(); }
    QJsonObject list() { return parsed(get(home.port(), "/perms", token())); }
    QJsonObject item(int index) { return list().value("items"_L1)[index].toObject(); }
    QJsonObject summary() { return parsed(health()).value("perms"_L1).toObject(); }
    QJsonObject request() { return parsed(post(home.port(), "/perms/request", token(), {}, 20'000)); }
    std::future<QJsonObject> requestAside() {
        return std::async(std::launch::async, [this] { return request(); });
    }
    // Whether the agent has asked the system for what is undetermined.
    bool isRequested(qsizetype times = 1) {
        return eventually([&] {
            const auto all = home.requests();
            return std::count_if(all.begin(), all.end(), [](const QJsonObject &each) {
                       return each.value("path"_L1).toString() == "/perms/request"_L1;
                   }) == times;
        });
    }
    bool isOpen(const std::future<QJsonObject> &future) const {
        return future.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    }
};

QStringList missingIn(const QJsonObject &report) { return report.value("missing"_L1).toVariant().toStringList(); }

} // namespace

TEST_F(PermissionsTest, HealthyMacMissesNothingAndAFreshOneEverything) {
    start({});
    EXPECT_EQ(summary(), (QJsonObject{{u"ok"_s, true}, {u"missing"_s, QJsonArray{}}}));
    EXPECT_EQ(item(3).value("state"_L1), QJsonValue(u"granted"_s));
    change({{u"start"_s, u"fresh"_s}});
    EXPECT_EQ(missingIn(summary()), (QStringList{SCREEN, ACCESSIBILITY, MICROPHONE, DISK}));
    EXPECT_EQ(missingIn(list()), missingIn(summary()));
    for (const char *text : {"name", "pane", "why", "breaks"})
        EXPECT_FALSE(item(0).value(QLatin1StringView(text)).toString().isEmpty()) << text;
    home.changeScenario({{u"e2ee"_s, QJsonObject{{u"lang"_s, u"zh"_s}}}});
    EXPECT_EQ(missingIn(summary()).value(2), u"麦克风"_s);
    EXPECT_EQ(home.permissions().missing().value(2), MICROPHONE);
    EXPECT_TRUE(get(home.port(), "/perms", "guess").head.contains(" 401 "));
    EXPECT_TRUE(post(home.port(), "/perms/request", {}, {}).head.contains(" 401 "));
}

TEST_F(PermissionsTest, RequestAsksForWhatIsUndeterminedAndAccessibilityWaitsForTheHand) {
    start({{u"start"_s, u"fresh"_s}, {u"promptMs"_s, 0}, {u"deny"_s, QJsonArray{MICROPHONE}}});
    const QJsonObject report = request();
    EXPECT_EQ(missingIn(report), (QStringList{ACCESSIBILITY, MICROPHONE}));
    EXPECT_EQ(report, list());
    change({{u"deny"_s, QJsonArray{}}});
    EXPECT_EQ(request(), report) << "the system does not ask again for what was refused";
    EXPECT_TRUE(home.permissions().grant(ACCESSIBILITY) && home.permissions().grant(MICROPHONE));
    EXPECT_EQ(summary().value("ok"_L1), QJsonValue(true));
    EXPECT_FALSE(home.permissions().grant(u"Camera"_s));
}

TEST_F(PermissionsTest, RequestStaysOpenUntilEveryPromptIsAnswered) {
    start({{u"start"_s, u"fresh"_s}, {u"promptMs"_s, FOR_EVER}});
    auto first = requestAside();
    ASSERT_TRUE(isRequested());
    auto second = requestAside();
    ASSERT_TRUE(isRequested(2));
    EXPECT_EQ(missingIn(summary()).size(), 4) << "everything else is answered meanwhile";
    for (const QString &name : {SCREEN, ACCESSIBILITY, MICROPHONE}) {
        EXPECT_TRUE(home.permissions().grant(name));
        EXPECT_EQ(missingIn(list()).contains(name), false);
    }
    EXPECT_TRUE(isOpen(first) && isOpen(second));
    EXPECT_TRUE(home.permissions().revoke(DISK));
    EXPECT_EQ(missingIn(first.get()), QStringList{DISK});
    EXPECT_EQ(missingIn(second.get()), QStringList{DISK}) << "one round of prompts for both";
}

TEST_F(PermissionsTest, StatesOutliveTheAgentAndAnUnansweredPrompt) {
    start({{u"start"_s, u"fresh"_s}, {u"promptMs"_s, FOR_EVER}});
    EXPECT_TRUE(home.permissions().grant(SCREEN) && home.permissions().revoke(ACCESSIBILITY));
    auto lost = requestAside();
    ASSERT_TRUE(isRequested());
    ASSERT_TRUE(home.killAgent(SIGKILL));
    EXPECT_TRUE(lost.get().isEmpty());
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
    EXPECT_EQ(home.permissions().state(MICROPHONE), u"undetermined"_s);
    EXPECT_EQ(missingIn(summary()), (QStringList{ACCESSIBILITY, MICROPHONE, DISK}));
    home.setScenario({});
    EXPECT_EQ(missingIn(summary()).size(), 3) << "a scenario that says nothing about them leaves them alone";
    change({{u"start"_s, u"granted"_s}});
    EXPECT_TRUE(missingIn(summary()).isEmpty());
}

TEST_F(PermissionsTest, ScenarioChangesItemsAndLeavesTheUserFreeToActOnThem) {
    start({{u"items"_s, QJsonObject{{MICROPHONE, QJsonObject{{u"state"_s, u"denied"_s}, {u"pane"_s, u"not one"_s}}},
                                    {SCREEN, QJsonObject{{u"state"_s, u"unknown-tcc"_s}}},
                                    {DISK, QJsonObject{{u"state"_s, u"denied"_s}, {u"unknown"_s, true}}},
                                    {u"Camera"_s, QJsonObject{{u"state"_s, u"undetermined"_s}}}}}});
    EXPECT_EQ(missingIn(summary()), (QStringList{MICROPHONE, u"Camera"_s})) << "what is unknown is not missing";
    EXPECT_EQ(item(2).value("pane"_L1), QJsonValue(u"not one"_s));
    EXPECT_TRUE(home.permissions().grant(MICROPHONE));
    change({{u"items"_s, QJsonObject{{DISK, QJsonObject{{u"unknown"_s, {}}}}}}});
    EXPECT_EQ(missingIn(summary()), (QStringList{DISK, u"Camera"_s})) << "only what changed is taken over";
    change({{u"partial"_s, true}, {u"promptMs"_s, 0}});
    EXPECT_EQ(list(), (QJsonObject{{u"ok"_s, false}}));
    EXPECT_EQ(request(), (QJsonObject{{u"ok"_s, false}}));
    EXPECT_EQ(missingIn(summary()), QStringList{DISK}) << "the summary of the health report is whole";
}

TEST_F(PermissionsTest, ControlProgramSetsPermissions) {
    const auto control = [this](const QStringList &arguments) {
        return run(standInRoot() + "/usr/local/bin/korvel-simulator"_L1, QStringList(u"permission"_s) + arguments);
    };
    EXPECT_EQ(control({u"revoke"_s, DISK}).status, 0);
    EXPECT_EQ(control({u"set"_s, SCREEN, u"notrunning"_s}).status, 0);
    EXPECT_EQ(control({u"missing"_s}).output, "Full Disk Access\n");
    EXPECT_TRUE(control({}).output.startsWith("Screen Recording: notrunning\n"));
    EXPECT_EQ(control({u"grant"_s, u"Camera"_s}).status, 1);
    EXPECT_EQ(control({u"set"_s, SCREEN, u"sideways"_s}).status, 1);
    EXPECT_EQ(control({u"grant"_s}).status, 2);
}

} // namespace korvel::sim
