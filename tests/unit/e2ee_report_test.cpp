#include "e2ee/report.h"

#include "e2ee/menu_block.h"
#include "support/fakes.h"

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
        const char *json;
        bool plain, signedOut;
    } cases[] = {
        {R"({"state":"waiting"})", true, false},
        {R"({"state":"pending"})", true, false},
        {R"({"state":"approved"})", true, false},
        {R"({"state":"pair-failed"})", true, true},
        {R"({"state":"rejected"})", true, false},
        {R"({"state":"expired"})", true, false},
        {R"({"state":"off"})", false, false},
        {R"({"state":"off","required":true})", true, false},
        {R"({"state":"starting"})", false, false},
        {R"({"state":"starting","required":true})", true, false},
        {R"({"state":"active","required":true})", false, false},
        {R"({"state":"revoked"})", false, false},
        {R"({"state":"suspended"})", false, false},
        {R"({"state":"something-new","required":true})", false, false},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(e2NeedsPairing(report(c.json), true, false), c.plain) << c.json;
        EXPECT_EQ(e2NeedsPairing(report(c.json), true, true), c.signedOut) << c.json;
        EXPECT_FALSE(e2NeedsPairing(report(c.json), false, false)) << c.json;
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
    for (const MenuEntry &e : e2MenuItems(
             {.state = state, .config = home.fixed, .timing = {}, .bound = bound, .plistExists = true, .server = {}}))
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

} // namespace
} // namespace korvel::test
