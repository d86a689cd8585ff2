#include "journey/e2ee_once.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

TEST_F(E2eeJourney, AMacIsPairedFromTheWaitingPhoneToTheEncryptedSync) {
    startIn(u"waiting"_s);
    ASSERT_TRUE(eventually([&] { return pairPanel.visible; }));
    EXPECT_EQ(pairPanel.view.line, u"Sign in to Korvel on your phone first."_s);
    ASSERT_TRUE(home.encryption().phoneSignIn());
    ASSERT_TRUE(eventually([&] { return pairPanel.view.refreshVisible; }));
    const QString first = home.encryption().pairCode();
    EXPECT_EQ(pairPanel.view.code, first);

    ASSERT_TRUE(home.encryption().type(first == u"000000" ? u"111111"_s : u"000000"_s));
    ASSERT_TRUE(eventually([&] { return !pairPanel.view.error.isEmpty(); }));
    EXPECT_EQ(pairPanel.view.code, home.encryption().pairCode());
    EXPECT_NE(pairPanel.view.code, first);

    notices.shown.clear();
    ASSERT_TRUE(home.encryption().typeRight());
    ASSERT_TRUE(eventually([&] { return pairPanel.view.title == u"Paired"; }));
    ASSERT_TRUE(eventually([&] { return !pairPanel.visible; }));
    EXPECT_EQ(notices.shown.size(), 1u);
    EXPECT_EQ(notices.last(), u"🔒 Encrypted. Syncing now."_s);
    ASSERT_TRUE(showsSoon(CONNECTED));
}

TEST_F(E2eeJourney, AnExpiredCodeIsRenewedAndARefreshGivesANewOne) {
    startIn(u"pending"_s);
    ASSERT_TRUE(eventually([&] { return pairPanel.view.refreshVisible; }));
    const QString first = pairPanel.view.code;
    ASSERT_TRUE(home.encryption().expire());
    ASSERT_TRUE(eventually([&] { return pairPanel.view.refreshVisible && pairPanel.view.code != first; }));
    const QString second = pairPanel.view.code;
    pairPanel.events.renewClicked();
    pairPanel.events.renewClicked();
    ASSERT_TRUE(eventually([&] { return pairPanel.view.code != second && pairPanel.view.refreshEnabled; }));
    EXPECT_EQ(requestsTo(u"/e2ee/pair/new"_s), 1);
}

TEST_F(E2eeJourney, TwoDevicesAndTwoAlarmsAreAskedAboutOneAfterTheOther) {
    startIn(u"active"_s);
    const sim::AskedDevice anna = home.encryption().askDevice(u"Anna's phone"_s, u"ios"_s);
    const sim::AskedDevice other = home.encryption().askDevice(u"Other"_s, u"linux"_s);
    home.encryption().raiseAlarm(u"First"_s);
    home.encryption().raiseAlarm(u"Second"_s);
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    EXPECT_EQ(alerts.view.title, u"New device: Anna's phone · iPhone"_s);
    alerts.answer(0, anna.code);
    ASSERT_TRUE(eventually([&] { return notices.last() == u"✓ Allowed Anna's phone"; }));
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    EXPECT_EQ(alerts.view.title, u"New device: Other · Linux"_s);
    alerts.answer(1);
    for (const QString &text : {u"First"_s, u"Second"_s}) {
        ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
        EXPECT_EQ(alerts.view.fromOutside, text);
        alerts.dismiss();
    }
    ASSERT_TRUE(eventually([&] { return item.entry(Action::E2Alarm) == MenuEntry(); }));
    EXPECT_EQ(item.entry(Action::E2Pending), MenuEntry());
    EXPECT_FALSE(alerts.isOpen());
}

TEST_F(E2eeJourney, AWrongCodeAsksAgainAndAReissuedRequestComesBack) {
    startIn(u"active"_s);
    const sim::AskedDevice device = home.encryption().askDevice(u"Anna's phone"_s, u"ios"_s);
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    alerts.answer(0, device.code == u"000000" ? u"111111"_s : u"000000"_s);
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    EXPECT_TRUE(alerts.view.warning);
    alerts.dismiss();
    const int opened = alerts.opened;
    ASSERT_TRUE(home.encryption().reissueDevice(device.pendingId));
    ASSERT_TRUE(eventually([&] { return alerts.opened > opened; }));
    alerts.answer(0, home.encryption().deviceCode(device.pendingId));
    ASSERT_TRUE(eventually([&] { return notices.last() == u"✓ Allowed Anna's phone"; }));
}

TEST_F(E2eeJourney, AnAgentThatDiesWhileItVerifiesEndsInOneNotice) {
    startIn(u"active"_s);
    home.changeScenario(
        {{u"faults"_s, QJsonObject{{u"/e2ee/pair"_s, QJsonObject{{u"mode"_s, u"exit"_s}, {u"times"_s, 1}}}}}});
    const sim::AskedDevice device = home.encryption().askDevice(u"Anna's phone"_s, u"ios"_s);
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    alerts.answer(0, device.code);
    const auto told = [this] { // the launch has a notice of its own, at some time
        return std::count_if(notices.shown.begin(), notices.shown.end(), [](const NoticeView &notice) {
            return notice.text == u"Korvel isn't responding. Try again later.";
        });
    };
    ASSERT_TRUE(eventually([&] { return told() > 0; }));
    const int polls = requestsTo(u"/health"_s);
    ASSERT_TRUE(eventually([&] { return requestsTo(u"/health"_s) > polls && item.icon.on; }));
    ASSERT_TRUE(showsSoon(CONNECTED));
    EXPECT_EQ(told(), 1);
    EXPECT_EQ(requestsTo(u"/e2ee/pair"_s), 1);
    ASSERT_TRUE(eventually([&] { return item.entry(Action::E2Pending).enabled; }));
    item.choose(Action::E2Pending);
    ASSERT_TRUE(alerts.isOpen());
    alerts.answer(0, device.code);
    ASSERT_TRUE(eventually([&] { return notices.last() == u"✓ Allowed Anna's phone"; }))
        << notices.last().toStdString();
}

TEST_F(E2eeJourney, AResetLeadsToANewPairing) {
    startIn(u"active"_s);
    home.encryption().raiseResetAlarm();
    ASSERT_TRUE(eventually([&] { return alerts.isOpen(); }));
    alerts.answer(0);
    ASSERT_TRUE(eventually([&] { return pairPanel.visible && pairPanel.view.refreshVisible; }))
        << notices.last().toStdString() << item.statusLine().toStdString();
    ASSERT_TRUE(home.encryption().typeRight());
    ASSERT_TRUE(eventually([&] { return !pairPanel.visible; }));
    ASSERT_TRUE(showsSoon(CONNECTED));
}

TEST_F(E2eeJourney, SpeechRecognitionIsInstalledWithItsProgressInTheMenu) {
    home.setScenario({{u"e2ee"_s, QJsonObject{{u"asrMs"_s, 1500}}}});
    startIn(u"active"_s);
    ASSERT_TRUE(eventually([&] { return item.entry(Action::E2AsrInstall).enabled; }));
    item.choose(Action::E2AsrInstall);
    const auto shows = [&](const QString &title) {
        return eventually([&] {
            return std::any_of(item.menu.entries.begin(), item.menu.entries.end(),
                               [&](const MenuEntry &e) { return e.title.startsWith(title); });
        });
    };
    EXPECT_TRUE(shows(u"Installing speech recognition… "_s));
    EXPECT_TRUE(shows(u"Speech recognition is installed."_s));
}

TEST_F(E2eeJourney, NoAnswerOfTheUserIsEverSentTwice) { answerEachOnce(6, 1); }

} // namespace
} // namespace korvel::test
