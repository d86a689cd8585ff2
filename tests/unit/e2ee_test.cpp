#include "e2ee/e2ee_views.h"
#include "e2ee/prompts.h"
#include "e2ee/report.h"
#include "support/tray_fixture.h"

#include <QJsonArray>

namespace korvel::test {
namespace {

QJsonObject report(const char *json) { return object(json); }

TEST(E2eeReport, EveryWrongTypeCountsAsItsDefault) {
    for (const char *json : {"{}", R"({"state":1,"required":"yes","pair":[],"pending":{},"alarms":"x"})",
                             R"({"pair":{"show":123456,"wrong":1,"paired":"true"},"pending":[{},1],"alarms":[[]]})"}) {
        const QJsonObject e2 = report(json);
        EXPECT_EQ(e2State(e2), u"off"_s);
        EXPECT_FALSE(e2Required(e2));
        EXPECT_EQ(e2PairShow(e2), std::nullopt);
        EXPECT_FALSE(e2PairWrong(e2));
        EXPECT_FALSE(e2PairDone(e2));
        EXPECT_TRUE(e2Pending(e2).isEmpty());
        EXPECT_TRUE(e2Alarms(e2).isEmpty());
        EXPECT_FALSE(e2NeedsPairing(e2, true, false));
        EXPECT_EQ(e2StatusText(e2), std::nullopt);
    }
    EXPECT_EQ(e2PairShow(report(R"({"pair":{"show":""}})")), std::nullopt);
}

TEST(E2eeReport, IsStoredWithinBounds) {
    const QJsonObject usual = report(
        R"({"state":"pending","required":true,"relay":"ok","trouble":"t","pair":{"show":"482 913","wrong":true,
            "paired":false},"asr":{"ready":false,"installing":"download","pct":37},
            "pending":[{"pendingId":"1","attempt":2,"name":"n","platform":"ios","ready":true,"busy":false}],
            "alarms":[{"id":"1","kind":"reset","text":"t"}]})");
    EXPECT_EQ(boundedReport(usual), usual);
    EXPECT_EQ(boundedReport(report(R"({"state":["active"],"pending":[{},1],"alarms":{},"pair":"x","other":[1]})")),
              QJsonObject());

    const QString text = u"😀"_s.repeated(5000);
    const QJsonObject entry{{u"pendingId"_s, text}, {u"name"_s, text}, {u"id"_s, text}, {u"text"_s, text}};
    QJsonArray flood;
    for (int i = 0; i < 200; ++i)
        flood.append(entry);
    const QJsonObject kept = boundedReport({{u"state"_s, text},
                                            {u"trouble"_s, text},
                                            {u"pair"_s, QJsonObject{{u"show"_s, text}}},
                                            {u"pending"_s, flood},
                                            {u"alarms"_s, flood}});
    EXPECT_EQ(e2State(kept), u"😀"_s.repeated(499) + u'…'); // no half character
    EXPECT_LE(kept.value(u"trouble").toString().size(), 1000);
    EXPECT_LE(e2PairShow(kept)->size(), 16);
    ASSERT_EQ(e2Pending(kept).size(), 64);
    ASSERT_EQ(e2Alarms(kept).size(), 64);
    EXPECT_LE(e2Pending(kept)[63].value(u"name").toString().size(), 1000);
    EXPECT_LE(e2Alarms(kept)[63].value(u"text").toString().size(), 1000);
}

TEST(E2eeReport, PairingIsNeededByStateSignInAndRequirement) {
    const struct {
        bool signedIn, signedOut; // whether it is needed then
        QStringList states;
    } cases[] = {
        {true,
         false,
         {u"waiting"_s, u"pending"_s, u"approved"_s, u"rejected"_s, u"expired"_s, u"off, required"_s,
          u"starting, required"_s}},
        {true, true, {u"pair-failed"_s}},
        {false,
         false,
         {u"off"_s, u"starting"_s, u"active, required"_s, u"revoked"_s, u"suspended"_s, u"new, required"_s}},
    };
    for (const auto &c : cases)
        for (const QString &state : c.states) {
            const QJsonObject e2{{u"state"_s, state.section(u',', 0, 0)}, {u"required"_s, state.contains(u',')}};
            EXPECT_EQ(e2NeedsPairing(e2, true, false), c.signedIn) << state.toStdString();
            EXPECT_EQ(e2NeedsPairing(e2, true, true), c.signedOut) << state.toStdString();
            EXPECT_FALSE(e2NeedsPairing(e2, false, false)) << state.toStdString();
        }
}

TEST(E2eeReport, TheStatusTextFollowsThePairingAndTheAgentsTrouble) {
    const auto text = [](const char *json) { return e2StatusText(report(json)).value_or(QString()); };
    EXPECT_EQ(text(R"({"state":"pending"})"), u"Getting a pairing code…"_s);
    EXPECT_EQ(text(R"({"state":"pending","pair":{"show":"123456"}})"), u"Enter code 123456 on your phone"_s);
    EXPECT_EQ(text(R"({"state":"pending","pair":{"show":"123456","paired":true}})"),
              u"Paired. Turning on encryption…"_s);
    EXPECT_EQ(text(R"({"state":"off","required":true})"), u"Turning on encryption…"_s);
    EXPECT_EQ(text(R"({"state":"starting","required":true,"trouble":"Clock is wrong"})"), u"Clock is wrong"_s);
    EXPECT_EQ(text(R"({"state":"active","trouble":"x"})"), u""_s);
    const LanguageScope chinese(true);
    EXPECT_EQ(text(R"({"state":"pending","pair":{"show":"123456"}})"), u"请在手机上输入配对码 123456"_s);
}

/// The block as lines: "[x] " marks what can be chosen.
QStringList block(const char *json, bool running = true, bool bound = true, bool authDead = false) {
    const TestHome home;
    TrayState state;
    state.health.running = running;
    state.health.authDead = authDead;
    state.e2ee.e2 = report(json);
    QStringList lines;
    for (const MenuEntry &e : e2MenuItems({.state = state,
                              .isCn = true,
                              .version = {},
                              .timing = {},
                              .bound = bound,
                              .plistExists = true,
                              .server = {}}))
        lines.append(e.isSeparator() ? u"---"_s : (e.enabled ? u"[x] "_s : u""_s) + e.title);
    return lines;
}

TEST(E2eeMenuBlock, IsAbsentWhileEncryptionIsNeitherOnNorRequired) {
    EXPECT_TRUE(block(R"({"state":"off","pending":[{"name":"x"}],"alarms":[{"id":"1"}]})").isEmpty());
    EXPECT_TRUE(block(R"({"state":"something-new"})").isEmpty());
}

TEST(E2eeMenuBlock, SaysTheSituationOnlyWhereTheStatusLineDoesNot) {
    EXPECT_EQ(block(R"({"state":"pending"})").value(0), u"Show Pairing Code…"_s);
    EXPECT_EQ(block(R"({"state":"pending","pair":{"show":"1","paired":true}})"),
              (QStringList{u"Show Pairing Code…"_s, u"---"_s}));
    EXPECT_EQ(block(R"({"state":"pending","pair":{"show":"1"}})"),
              (QStringList{u"[x] Show Pairing Code…"_s, u"---"_s}));
    EXPECT_EQ(block(R"({"state":"expired","pair":{"show":"1"}})", false),
              (QStringList{u"🔒 The pairing code expired. Refreshing…"_s, u"Show Pairing Code…"_s, u"---"_s}));
    EXPECT_EQ(block(R"({"state":"revoked"})"),
              (QStringList{u"⚠ This Mac was removed from your account. Sign in again."_s, u"---"_s}));
    EXPECT_EQ(block(R"({"state":"rejected"})"), (QStringList{u"[x] Sign In Again…"_s, u"---"_s}));
    EXPECT_EQ(block(R"({"state":"revoked"})", false, false), QStringList());
    // The main menu offers the sign-in already.
    EXPECT_EQ(block(R"({"state":"rejected"})", true, true, true),
              (QStringList{u"⚠ Your phone denied this Mac. Sign in again to retry."_s, u"---"_s}));
}

TEST(E2eeMenuBlock, ListsDevicesSpeechAndAlarmsWhileActive) {
    EXPECT_EQ(
        block(
            R"({"state":"active","relay":"ok","pending":[{"name":"Anna's phone","platform":"ios"},{}],
                        "asr":{"installing":"download","pct":42},"alarms":[{"id":"1","text":"t"}]})"),
        (QStringList{u"🔒 Encrypted"_s, u"[x] New device: Anna's phone · iPhone…"_s, u"[x] New device: ? · Device…"_s,
                     u"Installing speech recognition… 42%"_s, u"[x] ⚠ Security Alert…"_s, u"---"_s}));
    EXPECT_EQ(block(R"({"state":"active","relay":"down"})").value(0), u"🔒 Encrypted · Connecting to the server…"_s);
    EXPECT_EQ(block(R"({"state":"active"})").value(1), u"[x] Install Speech Recognition (180 MB)…"_s);
    EXPECT_EQ(block(R"({"state":"active","asr":{"installing":"failed"}})").value(1),
              u"[x] Retry Installing Speech Recognition…"_s);
    EXPECT_EQ(block(R"({"state":"active","asr":{"ready":true}})").value(1),
              u"Speech recognition is installed. Choose My computer on your phone."_s);
}

struct PromptRules : ::testing::Test {
    E2State e2ee;
    PairState pairing;
    PromptContext context{.bound = true};

    E2Prompt after(const QByteArray &json) {
        e2ee.e2 = object(json);
        return takePrompt(e2ee, pairing, context);
    }
    /// The kind of prompt that a report raises, with the id of its subject.
    QString raised(const QByteArray &json) {
        const E2Prompt prompt = after(json);
        if (prompt.kind == E2Prompt::Kind::Approval)
            return u"approve "_s + prompt.subject.value(u"pendingId").toString();
        if (prompt.kind == E2Prompt::Kind::Alarm)
            return u"alarm "_s + prompt.subject.value(u"id").toString();
        return prompt.kind == E2Prompt::Kind::PairWindow ? u"window"_s : u"none"_s;
    }
};

TEST_F(PromptRules, OnePromptAReportInAFixedOrder) {
    const char *all =
        R"({"state":"waiting","pending":[{"pendingId":"a","ready":true},{"pendingId":"b","ready":true}],
                          "alarms":[{"id":"1"},{"id":"2"}]})";
    EXPECT_EQ(raised(all), u"window"_s);
    EXPECT_EQ(raised(all), u"approve a"_s);
    EXPECT_EQ(raised(all), u"approve b"_s);
    EXPECT_EQ(raised(all), u"alarm 1"_s);
    EXPECT_EQ(raised(all), u"alarm 2"_s);
    EXPECT_EQ(raised(all), u"none"_s);
}

TEST_F(PromptRules, ARequestIsPromptedOncePerAttemptAndOnlyWhenItCanBeAnswered) {
    const auto asking = [this](const QByteArray &request) {
        return raised(R"({"state":"active","pending":[{"pendingId":"a",)" + request + "}]}");
    };
    for (const char *notYet : {R"("ready":false)", R"("ready":true,"busy":true)", R"("ready":"yes")"})
        EXPECT_EQ(asking(notYet), u"none"_s);
    EXPECT_EQ(asking(R"("ready":true,"attempt":1)"), u"approve a"_s);
    EXPECT_EQ(asking(R"("ready":true,"attempt":1)"), u"none"_s);
    e2ee.e2Answering.insert(u"a"_s);
    EXPECT_EQ(asking(R"("ready":true,"attempt":2)"), u"none"_s);
    e2ee.e2Answering.clear();
    EXPECT_EQ(asking(R"("ready":true,"attempt":2)"), u"approve a"_s);
    EXPECT_EQ(pendKey(object(R"({"pendingId":"abc","attempt":2})")), u"abc#2"_s);
    EXPECT_EQ(pendKey({}), u"#0"_s);
}

TEST_F(PromptRules, TheWindowOpensByItselfOnceAndNotWhileEncryptionStarts) {
    EXPECT_EQ(raised("{}"), u"none"_s);
    EXPECT_EQ(raised(R"({"state":"starting","required":true})"), u"none"_s);
    context.authDead = true;
    EXPECT_EQ(raised(R"({"state":"pending"})"), u"none"_s);
    context.authDead = false;
    EXPECT_EQ(raised(R"({"state":"pending"})"), u"window"_s);
    EXPECT_EQ(raised(R"({"state":"rejected"})"), u"none"_s);
}

TEST_F(PromptRules, EncryptionComingOnIsAnnouncedWhereNoWindowTellsIt) {
    const auto announced = [&](const char *before, bool visible) {
        context.pairWindowVisible = visible;
        after(before);
        return after(R"({"state":"active"})").announceActive;
    };
    EXPECT_TRUE(announced(R"({"state":"pending"})", false));
    EXPECT_TRUE(announced(R"({"state":"approved"})", false));
    EXPECT_FALSE(announced(R"({"state":"pending"})", true));
    EXPECT_FALSE(announced(R"({"state":"expired"})", false));
    EXPECT_FALSE(announced(R"({"state":"active"})", false));
}

/// A tray whose agent answers "/health" with a report and everything else as a test says.
struct E2eeOperations : TrayFixture {
    QByteArray report = R"({"state":"active"})";
    QMap<QString, QByteArray> replies; ///< By path; without an entry the agent stays silent.
    QList<HttpRequest> posts;

    void launchActive() {
        installAndBind();
        http.answer = [this](const HttpRequest &request) -> Result<HttpReply> {
            const QString path = request.url.section(u"8790"_s, 1);
            if (path == u"/health")
                return json(R"({"ok":true,"online":true,"e2ee":)" + report + '}');
            if (request.method == "POST")
                posts.append(request);
            return replies.contains(path) ? json(replies.value(path)) : noAnswer();
        };
        launch();
        notices.shown.clear();
    }
    void next(const QByteArray &json) {
        report = json;
        scheduler.advance(3s);
    }
    QString postedTo() const { return posts.isEmpty() ? QString() : posts.last().url.section(u"8790"_s, 1); }
};

const QByteArray ASKING =
    R"({"state":"active","pending":[{"pendingId":"p","attempt":1,"name":"Anna's phone","platform":"ios","ready":true}]})";

TEST_F(E2eeOperations, ACodeLetsADeviceInAndTheAgentIsAskedAtOnce) {
    launchActive();
    next(ASKING);
    ASSERT_TRUE(alerts.isOpen());
    EXPECT_EQ(alerts.view.title, u"New device: Anna's phone · iPhone"_s);
    EXPECT_EQ(alerts.view.escape, 2);
    EXPECT_EQ(alerts.by, OpenedBy::Program);
    replies[u"/e2ee/pair"_s] = R"({"ok":true})";
    const int polls = http.count;
    alerts.answer(0, u"１２３ 456"_s);
    EXPECT_EQ(posts.last().body, R"({"code":"123456","pendingId":"p"})");
    EXPECT_EQ(posts.last().timeout, 75s);
    EXPECT_EQ(notices.last(), u"✓ Allowed Anna's phone"_s);
    EXPECT_EQ(notices.shown.at(notices.shown.size() - 2).text, u"Verifying…"_s);
    EXPECT_EQ(http.count, polls + 2);
    EXPECT_TRUE(tray->currentState().e2ee.e2Answering.isEmpty());
}

TEST_F(E2eeOperations, AWrongCodeAsksAgainWithTheAgentsSentence) {
    for (const char *code : {"wrong-code", "bad-code", "answered"}) {
        SCOPED_TRACE(code);
        if (!tray)
            launchActive();
        next(ASKING);
        if (!alerts.isOpen())
            item.choose(Action::E2Pending);
        replies[u"/e2ee/pair"_s] = QByteArray(R"({"ok":false,"code":")") + code + R"(","error":"No match."})";
        alerts.answer(0, u"111111"_s);
        EXPECT_FALSE(alerts.isOpen());
        scheduler.advance(300ms);
        ASSERT_TRUE(alerts.isOpen());
        EXPECT_EQ(alerts.view.fromOutside, u"No match."_s);
        EXPECT_TRUE(alerts.view.text.startsWith(u"Enter the pairing code"_s));
        EXPECT_TRUE(alerts.view.warning);
        EXPECT_EQ(alerts.by, OpenedBy::Program);
        alerts.dismiss();
    }
    replies[u"/e2ee/pair"_s] = R"({"ok":false,"code":"mismatch","error":"Stop."})"; // somebody is in between
    item.choose(Action::E2Pending);
    alerts.answer(0, u"111111"_s);
    scheduler.advance(2s);
    EXPECT_FALSE(alerts.isOpen());
    EXPECT_EQ(notices.last(), u"Stop."_s);
}

TEST_F(E2eeOperations, DenyIsToldWhateverTheAgentSaysAndLaterSendsNothing) {
    launchActive();
    next(ASKING);
    alerts.answer(1);
    EXPECT_EQ(postedTo(), u"/e2ee/reject"_s);
    EXPECT_EQ(notices.last(), u"Denied Anna's phone. If that wasn't you, change your password immediately."_s);
    item.choose(Action::E2Pending);
    alerts.dismiss();
    EXPECT_EQ(posts.size(), 1);
    next(ASKING);
    EXPECT_FALSE(alerts.isOpen());
}

TEST_F(E2eeOperations, WhatAnotherAlertKeptFromBeingShownComesWhenThatIsClosed) {
    launchActive();
    const QByteArray REPORT =
        R"({"state":"active","alarms":[{"id":"1","text":"Knock."}],
        "pending":[{"pendingId":"p","name":"P","ready":true},{"pendingId":"q","name":"Q","ready":true}]})";
    const auto shown = [this] { return alerts.view.title.section(u" · "_s, 0, 0) + u' ' + alerts.view.fromOutside; };
    item.choose(Action::LogoutDialog);
    next(REPORT);
    item.choose(Action::E2Alarm); // nothing opens a second one
    next(REPORT);
    EXPECT_EQ(shown(), u"Sign Out? "_s);
    alerts.dismiss();
    next(REPORT);
    EXPECT_EQ(shown(), u"New device: P "_s);
    replies[u"/e2ee/pair"_s] = R"({"ok":false,"code":"wrong-code","error":"No match."})";
    alerts.answer(0, u"111111"_s); // to be asked for again 0.3 s later; the next report is quicker
    EXPECT_EQ(shown(), u"New device: Q "_s);
    next(REPORT);
    EXPECT_EQ(shown(), u"New device: Q "_s);
    for (const QString &waiting : {u"New device: P No match."_s, u"Security Alert Knock."_s}) {
        alerts.dismiss();
        next(REPORT);
        ASSERT_TRUE(alerts.isOpen());
        EXPECT_EQ(shown(), waiting);
    }
    alerts.dismiss();
    next(REPORT);
    EXPECT_FALSE(alerts.isOpen());
    next(R"({"state":"active","pending":[{"name":"x"}]})"); // without an identity it could not be answered
    item.choose(Action::E2Pending);
    EXPECT_FALSE(alerts.isOpen());
}

TEST_F(E2eeOperations, AnAlarmIsDismissedAtTheAgentByItsIdentity) {
    launchActive();
    next(R"({"state":"active","alarms":[{"id":"7","text":"Keys <b>changed</b>"}]})");
    EXPECT_EQ(alerts.view.fromOutside, u"Keys <b>changed</b>"_s);
    EXPECT_TRUE(alerts.view.warning);
    alerts.dismiss();
    EXPECT_EQ(posts.last().body, R"({"id":"7"})");
    next(R"({"state":"active","alarms":[{"text":"no id"}]})");
    alerts.answer(0);
    EXPECT_EQ(posts.size(), 1);
}

TEST_F(E2eeOperations, AResetIsRejoinedOrLeftStanding) {
    launchActive();
    const QByteArray RESET = R"({"state":"active","alarms":[{"id":"r","kind":"reset","text":"ignored"}]})";
    next(RESET);
    EXPECT_EQ(alerts.view.title, u"Encryption Was Reset"_s);
    EXPECT_FALSE((alerts.view.text + alerts.view.fromOutside).contains(u"ignored"_s));
    EXPECT_EQ(alerts.view.main, alerts.view.escape); // Return does not accept it
    alerts.dismiss();
    EXPECT_TRUE(posts.isEmpty());
    EXPECT_EQ(notices.last(), u"Don't approve any new device, and change your password immediately."_s);

    item.choose(Action::E2Alarm);
    alerts.answer(0);
    EXPECT_EQ(notices.last(), u"Couldn't rejoin: Korvel isn't responding. Try again later."_s);
    replies[u"/e2ee/reset/accept"_s] = R"({"ok":true})";
    next(R"({"state":"pending","pair":{"show":"654321"},"alarms":[{"id":"r","kind":"reset"}]})");
    pairPanel.hide();
    item.choose(Action::E2Alarm);
    alerts.answer(0);
    EXPECT_TRUE(pairPanel.visible);
    EXPECT_EQ(pairPanel.view.code, u"654321"_s);
}

TEST_F(E2eeOperations, SpeechIsAskedForAndTheAnswerTold) {
    launchActive();
    for (const char *reply : {"", R"({"ok":false,"error":5})"}) { // none, and none of use
        replies[u"/e2ee/asr/install"_s] = reply;
        item.choose(Action::E2AsrInstall);
        EXPECT_EQ(notices.last(), u"Couldn't start the installation: Korvel isn't responding. Try again later."_s);
    }
    replies[u"/e2ee/asr/install"_s] = R"({"ok":true})";
    item.choose(Action::E2AsrInstall);
    EXPECT_EQ(notices.last(), u"Downloading speech recognition. The menu will show when it's ready."_s);
    EXPECT_EQ(posts.size(), 3);
    home.writeConfig(R"({"agentToken":"t"})"); // no token for the agent: nothing leaves
    item.choose(Action::E2AsrInstall);
    EXPECT_EQ(posts.size(), 3);
}

} // namespace
} // namespace korvel::test
