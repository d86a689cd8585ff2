#include "e2ee/e2ee_views.h"
#include "e2ee/prompts.h"
#include "e2ee/report.h"
#include "support/tray_fixture.h"

namespace korvel::test {
namespace {

TEST(E2eeReport, IsStoredWithinBounds) {
    const QJsonObject usual = object(
        R"({"state":"pending","required":true,"relay":"ok","trouble":"t","pair":{"show":"482 913","wrong":true,
            "paired":false},"asr":{"ready":false,"installing":"download","pct":37},
            "pending":[{"pendingId":"1","attempt":2,"name":"n","platform":"ios","ready":true,"busy":false}],
            "alarms":[{"id":"1","kind":"reset","text":"t"}]})");
    EXPECT_EQ(boundedReport(usual), usual);
    EXPECT_EQ(boundedReport(object(R"({"state":["active"],"pending":[{},1],"alarms":{},"pair":"x","other":[1]})")),
              QJsonObject());
    QByteArray large =
        R"({"state":"T","trouble":"T","pair":{"show":"T"},"pending":[{"name":"T"}F],"alarms":[{"text":"T"}F]})";
    large.replace("F", QByteArray(R"(,{"name":"T","text":"T"})").repeated(199));
    const QJsonObject kept = boundedReport(object(large.replace("T", QByteArray("😀").repeated(1000))));
    EXPECT_EQ(e2State(kept), u"😀"_s.repeated(499) + u'…'); // no half character
    EXPECT_LE(kept.value(u"trouble").toString().size(), 1000);
    EXPECT_LE(e2PairShow(kept)->size(), 16);
    ASSERT_EQ(e2Pending(kept).size(), 64);
    ASSERT_EQ(e2Alarms(kept).size(), 64);
    EXPECT_LE(e2Pending(kept)[63].value(u"name").toString().size(), 1000);
    EXPECT_LE(e2Alarms(kept)[63].value(u"text").toString().size(), 1000);
}

TEST(E2eeReport, PairingIsNeededByStateSignInAndRequirement) {
    const std::tuple<bool, bool, QStringList> cases[] = {
        {true, false, {u"waiting"_s, u"pending"_s, u"approved"_s, u"rejected"_s, u"expired"_s}},
        {true, false, {u"off, required"_s, u"starting, required"_s}},
        {true, true, {u"pair-failed"_s}},
        {false, false, {u"off"_s, u"starting"_s, u"active, required"_s}},
        {false, false, {u"revoked"_s, u"suspended"_s, u"new, required"_s}},
    };
    for (const auto &[signedIn, signedOut, states] : cases)
        for (const QString &state : states) {
            const QJsonObject e2{{u"state"_s, state.section(u',', 0, 0)}, {u"required"_s, state.contains(u',')}};
            EXPECT_EQ(e2NeedsPairing(e2, true, false), signedIn) << state.toStdString();
            EXPECT_EQ(e2NeedsPairing(e2, true, true), signedOut) << state.toStdString();
            EXPECT_FALSE(e2NeedsPairing(e2, false, false)) << state.toStdString();
        }
}

TEST(E2eeMenuBlock, ShowsWhatTheStatusLineDoesNot) {
    constexpr PairContext SIGNED_IN{.bound = true}, LOST{.bound = true, .authDead = true};
    const struct {
        const char *report;
        QString lines; ///< "[x] " marks an entry that can be chosen.
        PairContext account = SIGNED_IN;
        bool running = true;
    } cases[] = {
        {R"({"state":"off","pending":[{"name":"x"}],"alarms":[{"id":"1"}]})", u""_s},
        {R"({"state":"something-new"})", u""_s},
        {R"({"state":"pending"})", u"Show Pairing Code… | ---"_s},
        {R"({"state":"pending","pair":{"show":"1","paired":true}})", u"Show Pairing Code… | ---"_s},
        {R"({"state":"pending","pair":{"show":"1"}})", u"[x] Show Pairing Code… | ---"_s},
        {R"({"state":"pending","pair":{"show":"1"}})", u"🔒 Enter code 1 on your phone | [x] Show Pairing Code… | ---"_s,
         SIGNED_IN, false},
        {R"({"state":"expired","pair":{"show":"1"}})",
         u"🔒 The pairing code expired. Refreshing… | Show Pairing Code… | ---"_s, SIGNED_IN, false},
        {R"({"state":"revoked"})", u"⚠ This Mac was removed from your account. Sign in again. | ---"_s},
        {R"({"state":"revoked"})", u""_s, {}, false},
        {R"({"state":"rejected"})", u"[x] Sign In Again… | ---"_s},
        {R"({"state":"rejected"})", u"⚠ Your phone denied this Mac. Sign in again to retry. | ---"_s, LOST},
        {R"({"state":"active","relay":"ok","pending":[{"name":"Anna's phone","platform":"ios"},{}],
             "asr":{"installing":"download","pct":42},"alarms":[{"id":"1","text":"t"}]})",
         u"🔒 Encrypted | [x] New device: Anna's phone · iPhone… | [x] New device: ? · Device… | "
         "Installing speech recognition… 42% | [x] ⚠ Security Alert… | ---"_s},
        {R"({"state":"active","relay":"down"})",
         u"🔒 Encrypted · Connecting to the server… | [x] Install Speech Recognition (180 MB)… | ---"_s},
        {R"({"state":"active","relay":"ok","asr":{"installing":"failed"}})",
         u"🔒 Encrypted | [x] Retry Installing Speech Recognition… | ---"_s},
        {R"({"state":"active","relay":"ok","asr":{"ready":true}})",
         u"🔒 Encrypted | Speech recognition is installed. Choose My computer on your phone. | ---"_s},
    };
    for (const auto &c : cases) {
        TrayState state;
        state.health.running = c.running;
        state.health.authDead = c.account.authDead;
        state.e2ee.e2 = object(c.report);
        QStringList lines;
        for (const MenuEntry &e : e2MenuItems(
                 {.state = state, .isCn = true, .version = {}, .timing = {}, .bound = c.account.bound, .server = {}}))
            lines.append(e.isSeparator() ? u"---"_s : (e.enabled ? u"[x] "_s : u""_s) + e.title);
        EXPECT_EQ(lines.join(u" | "), c.lines) << c.report;
    }
}

struct PromptRules : ::testing::Test {
    E2State e2ee;
    PairState pairing;
    PromptContext context{.bound = true};

    E2Prompt after(const QByteArray &report) {
        e2ee.e2 = object(report);
        return takePrompt(e2ee, pairing, context);
    }
    /// The kind of prompt that a report raises, with the id of its subject.
    QString raised(const QByteArray &report) {
        const E2Prompt prompt = after(report);
        const QString id = prompt.subject.value(u"pendingId").toString() + prompt.subject.value(u"id").toString();
        return QStringList{u"none"_s, u"window"_s, u"approve "_s + id, u"alarm "_s + id}.value(
            static_cast<int>(prompt.kind));
    }
};

TEST_F(PromptRules, OnePromptAReportInAFixedOrder) {
    const char *all = R"({"state":"waiting","alarms":[{"id":"1"},{"id":"2"}],
        "pending":[{"pendingId":"a","ready":true},{"pendingId":"b","ready":true}]})";
    for (const QString &prompt : {u"window"_s, u"approve a"_s, u"approve b"_s, u"alarm 1"_s, u"alarm 2"_s, u"none"_s})
        EXPECT_EQ(raised(all), prompt);
}

TEST_F(PromptRules, ARequestIsPromptedOncePerAttemptAndOnlyWhenItCanBeAnswered) {
    const auto promptFor = [this](const QByteArray &request) {
        return raised(R"({"state":"active","pending":[{"pendingId":"a",)" + request + "}]}");
    };
    for (const char *notYet : {R"("ready":false)", R"("ready":true,"busy":true)", R"("ready":"yes")"})
        EXPECT_EQ(promptFor(notYet), u"none"_s);
    EXPECT_EQ(promptFor(R"("ready":true,"attempt":1)"), u"approve a"_s);
    EXPECT_EQ(promptFor(R"("ready":true,"attempt":1)"), u"none"_s);
    e2ee.e2Answering.insert(u"a"_s);
    EXPECT_EQ(promptFor(R"("ready":true,"attempt":2)"), u"none"_s);
    e2ee.e2Answering.clear();
    EXPECT_EQ(promptFor(R"("ready":true,"attempt":2)"), u"approve a"_s);
}

TEST_F(PromptRules, TheWindowOpensOnceAndNotWhileEncryptionStarts) {
    EXPECT_EQ(raised("{}"), u"none"_s);
    EXPECT_EQ(raised(R"({"state":"starting","required":true})"), u"none"_s);
    context.authDead = true;
    EXPECT_EQ(raised(R"({"state":"pending"})"), u"none"_s);
    context.authDead = false;
    EXPECT_EQ(raised(R"({"state":"pending"})"), u"window"_s);
    EXPECT_EQ(raised(R"({"state":"rejected"})"), u"none"_s);
}

TEST_F(PromptRules, ActiveEncryptionIsAnnouncedWhereNoWindowShowsIt) {
    for (const auto &[before, visible, announced] : {std::tuple(R"({"state":"pending"})", false, true),
                                                     {R"({"state":"approved"})", false, true},
                                                     {R"({"state":"pending"})", true, false},
                                                     {R"({"state":"expired"})", false, false},
                                                     {R"({"state":"active"})", false, false}}) {
        context.pairWindowVisible = visible;
        after(before);
        EXPECT_EQ(after(R"({"state":"active"})").announceActive, announced) << before;
    }
}

struct E2eeOperations : TrayFixture {
    void SetUp() override { launchBound(withReport(R"({"state":"active"})")); }
};

const QByteArray ASKING =
    R"({"state":"active","pending":[{"pendingId":"p","attempt":1,"name":"Anna's phone","platform":"ios","ready":true}]})";

TEST_F(E2eeOperations, ADeviceIsAllowedByItsCodeDeniedOrLeft) {
    nextReport(ASKING);
    ASSERT_TRUE(alerts.isOpen());
    EXPECT_EQ(alerts.by, OpenedBy::Program);
    reply = R"({"ok":true})";
    const qsizetype polls = requestsTo(u"/health"_s);
    alerts.answer(0, {u"１２３ 456"_s});
    ASSERT_EQ(http.posts.size(), 1);
    EXPECT_EQ(http.posts.last().body, R"({"code":"123456","pendingId":"p"})");
    EXPECT_EQ(http.posts.last().timeout, 75s);
    EXPECT_EQ(notices.take(), u"Verifying… | ✓ Allowed Anna's phone"_s);
    EXPECT_EQ(requestsTo(u"/health"_s), polls + 1);
    EXPECT_TRUE(tray->currentState().e2ee.e2Answering.isEmpty());
    reply.clear();
    item.choose(Action::E2Pending);
    alerts.answer(1);
    EXPECT_EQ(http.posts.last().url, u"http://127.0.0.1:8790/e2ee/reject"_s);
    EXPECT_EQ(notices.last(), u"Denied Anna's phone. If that wasn't you, change your password immediately."_s);
    item.choose(Action::E2Pending);
    alerts.dismiss();
    EXPECT_EQ(http.posts.size(), 2);
    nextReport(ASKING);
    EXPECT_FALSE(alerts.isOpen());
}

TEST_F(E2eeOperations, AWrongCodeIsRequestedAgainWithTheAgentsSentence) {
    nextReport(ASKING);
    for (const char *code : {"wrong-code", "bad-code", "answered"}) {
        reply = QByteArray(R"({"ok":false,"code":")") + code + R"(","error":"No match."})";
        alerts.answer(0, {u"111111"_s});
        EXPECT_FALSE(alerts.isOpen()) << code;
        scheduler.advance(300ms);
        ASSERT_TRUE(alerts.isOpen()) << code;
        EXPECT_EQ(alerts.view.fromOutside, u"No match."_s);
        EXPECT_TRUE(alerts.view.text.startsWith(u"Enter the pairing code"_s));
        EXPECT_TRUE(alerts.view.warning);
        EXPECT_EQ(alerts.by, OpenedBy::Program);
    }
    reply = R"({"ok":false,"code":"mismatch","error":"Stop."})"; // somebody is in between
    alerts.answer(0, {u"111111"_s});
    scheduler.advance(2s);
    EXPECT_FALSE(alerts.isOpen());
    EXPECT_EQ(notices.last(), u"Stop."_s);
}

TEST_F(E2eeOperations, APromptWaitsWhileAnotherAlertIsOpen) {
    const QByteArray REPORT =
        R"({"state":"active","alarms":[{"id":"1","text":"Knock."}],
        "pending":[{"pendingId":"p","name":"P","ready":true},{"pendingId":"q","name":"Q","ready":true}]})";
    const auto shown = [this] { return alerts.view.title.section(u" · "_s, 0, 0) + u' ' + alerts.view.fromOutside; };
    item.choose(Action::LogoutDialog);
    nextReport(REPORT);
    item.choose(Action::E2Alarm); // opens no second alert
    nextReport(REPORT);
    EXPECT_EQ(shown(), u"Sign Out? "_s);
    alerts.dismiss();
    nextReport(REPORT);
    EXPECT_EQ(shown(), u"New device: P "_s);
    reply = R"({"ok":false,"code":"wrong-code","error":"No match."})";
    alerts.answer(0, {u"111111"_s}); // opens again after 0.3 s; the next report is quicker
    EXPECT_EQ(shown(), u"New device: Q "_s);
    nextReport(REPORT);
    EXPECT_EQ(shown(), u"New device: Q "_s);
    for (const QString &waiting : {u"New device: P No match."_s, u"Security Alert Knock."_s}) {
        alerts.dismiss();
        nextReport(REPORT);
        ASSERT_TRUE(alerts.isOpen());
        EXPECT_EQ(shown(), waiting);
    }
    alerts.dismiss();
    nextReport(REPORT);
    EXPECT_FALSE(alerts.isOpen());
    nextReport(R"({"state":"active","pending":[{"name":"x"}]})"); // without an id
    item.choose(Action::E2Pending);
    EXPECT_FALSE(alerts.isOpen());
}

TEST_F(E2eeOperations, AnAlarmIsDismissedAtTheAgentByItsId) {
    nextReport(R"({"state":"active","alarms":[{"id":"7","text":"Keys <b>changed</b>"}]})");
    EXPECT_EQ(alerts.view.fromOutside, u"Keys <b>changed</b>"_s);
    EXPECT_TRUE(alerts.view.warning);
    alerts.dismiss();
    EXPECT_EQ(http.posts.last().body, R"({"id":"7"})");
    nextReport(R"({"state":"active","alarms":[{"text":"no id"}]})");
    alerts.answer(0);
    EXPECT_EQ(http.posts.size(), 1);
}

TEST_F(E2eeOperations, AResetIsRejoinedOrLeftStanding) {
    const QByteArray RESET = R"({"state":"active","alarms":[{"id":"r","kind":"reset","text":"ignored"}]})";
    nextReport(RESET);
    EXPECT_EQ(alerts.view.title, u"Encryption Was Reset"_s);
    EXPECT_FALSE((alerts.view.text + alerts.view.fromOutside).contains(u"ignored"_s));
    EXPECT_EQ(alerts.view.main, alerts.view.escape); // Return does not accept it
    alerts.dismiss();
    EXPECT_TRUE(http.posts.isEmpty());
    EXPECT_EQ(notices.last(), u"Don't approve any new device, and change your password immediately."_s);

    item.choose(Action::E2Alarm);
    alerts.answer(0);
    EXPECT_EQ(notices.last(), u"Couldn't rejoin: Korvel isn't responding. Try again later."_s);
    reply = R"({"ok":true})";
    nextReport(R"({"state":"pending","pair":{"show":"654321"},"alarms":[{"id":"r","kind":"reset"}]})");
    pairPanel.hide();
    item.choose(Action::E2Alarm);
    alerts.answer(0);
    EXPECT_TRUE(pairPanel.visible);
    EXPECT_EQ(pairPanel.view.code, u"654321"_s);
}

TEST_F(E2eeOperations, SpeechIsInstalledByOneRequest) {
    for (const char *unusable : {"", R"({"ok":false,"error":5})"}) {
        reply = unusable;
        item.choose(Action::E2AsrInstall);
        EXPECT_EQ(notices.last(), u"Couldn't start the installation: Korvel isn't responding. Try again later."_s);
    }
    reply = R"({"ok":true})";
    item.choose(Action::E2AsrInstall);
    EXPECT_EQ(notices.last(), u"Downloading speech recognition. The menu will show when it's ready."_s);
    EXPECT_EQ(http.posts.size(), 3);
    home.writeConfig(R"({"agentToken":"t"})"); // no token for the agent: nothing leaves
    item.choose(Action::E2AsrInstall);
    EXPECT_EQ(http.posts.size(), 3);
}

} // namespace
} // namespace korvel::test
