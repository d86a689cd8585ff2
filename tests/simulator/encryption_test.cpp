#include "simulator/encryption_events.h"
#include "simulator/encryption_json.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

EncryptionRules rulesForTests() {
    EncryptionRules rules;
    rules.start = PairState::Pending;
    rules.wrongCodes = 3;
    rules.codeMs = 100;
    rules.renewMs = 50;
    rules.turnOnMs = 20;
    rules.asrMs = 1000;
    return rules;
}

const EncryptionRules RULES = rulesForTests();

Encryption signedIn(PairState state = PairState::Pending) {
    Encryption encryption;
    beginSignIn(encryption, u"someone"_s, RULES, 0);
    enter(encryption, state, RULES, 0);
    return encryption;
}

bool typesWrong(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    return phoneTypes(encryption, u"no code"_s, rules, now);
}

bool typesRight(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    return phoneTypes(encryption, encryption.code, rules, now);
}

bool renews(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    return renewCode(encryption, rules, now) == Verdict::Done;
}

bool leaves(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    return leaveEncryption(encryption, rules, now) == Verdict::Done;
}

bool acceptsReset(Encryption &encryption, const EncryptionRules &rules, qint64 now) {
    raiseAlarm(encryption, u"reset"_s, {});
    return acceptReset(encryption, rules, now) == Verdict::Done && encryption.alarms.isEmpty();
}

struct Transition {
    const char *name;
    PairState from;
    bool (*event)(Encryption &, const EncryptionRules &, qint64 now);
    bool happens;
    PairState to;
};

} // namespace

TEST(EncryptionTest, GoesFromStateToState) {
    constexpr Transition TABLE[] = {
        {"phone arrives", PairState::Waiting, phoneSignsIn, true, PairState::Pending},
        {"phone arrives at a Mac that is paired", PairState::Active, phoneSignsIn, true, PairState::Active},
        {"phone leaves", PairState::Pending, phoneSignsOut, true, PairState::Waiting},
        {"phone leaves a Mac that is paired", PairState::Active, phoneSignsOut, true, PairState::Active},
        {"right code", PairState::Pending, typesRight, true, PairState::Pending},
        {"wrong code", PairState::Pending, typesWrong, true, PairState::Pending},
        {"code where none is asked", PairState::Active, typesRight, false, PairState::Active},
        {"code that has expired", PairState::Expired, typesRight, false, PairState::Expired},
        {"denied", PairState::Pending, phoneDenies, true, PairState::Rejected},
        {"denied too late", PairState::Active, phoneDenies, false, PairState::Active},
        {"renewed", PairState::Pending, renews, true, PairState::Pending},
        {"renewed after expiry", PairState::Expired, renews, true, PairState::Pending},
        {"renewed where none is asked", PairState::Waiting, renews, false, PairState::Waiting},
        {"reset accepted", PairState::Active, acceptsReset, true, PairState::Pending},
        {"signed out", PairState::Active, leaves, true, PairState::Off},
    };
    for (const Transition &row : TABLE) {
        Encryption encryption = signedIn(row.from);
        const QString before = encryption.code;
        EXPECT_EQ(row.event(encryption, RULES, 10), row.happens) << row.name;
        EXPECT_EQ(nameOf(encryption.state), nameOf(row.to)) << row.name;
        EXPECT_EQ(encryption.code.isEmpty(), row.to != PairState::Pending) << row.name;
        EXPECT_EQ(encryption.paired, row.event == typesRight && row.happens) << row.name;
        EXPECT_EQ(encryption.wrong, row.event == typesWrong) << row.name;
        EXPECT_TRUE(encryption.code.isEmpty() || row.event == typesRight || encryption.code != before) << row.name;
    }
}

TEST(EncryptionTest, WrongCodesEndInFailureAndStayCountedWhenTheCodeIsRenewed) {
    Encryption encryption = signedIn();
    EXPECT_TRUE(typesWrong(encryption, RULES, 1));
    EXPECT_TRUE(renews(encryption, RULES, 2));
    EXPECT_FALSE(encryption.wrong);
    enter(encryption, PairState::Expired, RULES, 3);
    advance(encryption, RULES, 60);
    EXPECT_TRUE(typesWrong(encryption, RULES, 61));
    EXPECT_EQ(encryption.state, PairState::Pending);
    EXPECT_TRUE(typesWrong(encryption, RULES, 62));
    EXPECT_EQ(encryption.state, PairState::PairFailed);
    advance(encryption, RULES, 100'000);
    EXPECT_EQ(encryption.state, PairState::PairFailed) << "only a new sign-in leads out of it";
}

TEST(EncryptionTest, WhatIsDueHappensAtItsTime) {
    Encryption encryption = signedIn();
    const QString first = encryption.code;
    advance(encryption, RULES, 99);
    EXPECT_EQ(encryption.code, first);
    advance(encryption, RULES, 100);
    EXPECT_EQ(encryption.state, PairState::Expired);
    advance(encryption, RULES, 250);
    EXPECT_EQ(encryption.state, PairState::Expired) << "looked at late: renewed at 150, expired again at 250";
    advance(encryption, RULES, 300);
    EXPECT_EQ(encryption.state, PairState::Pending);
    EXPECT_NE(encryption.code, first);
    EXPECT_TRUE(typesRight(encryption, RULES, 395));
    advance(encryption, RULES, 414);
    EXPECT_TRUE(encryption.paired) << "a code that was taken does not expire";
    advance(encryption, RULES, 415);
    EXPECT_EQ(encryption.state, PairState::Active);
}

TEST(EncryptionTest, NewSignInStartsOverButTheAccountStaysAsItIs) {
    Encryption encryption = signedIn();
    encryption.required = true;
    deviceAsks(encryption, u"Tablet"_s, u"ios"_s);
    EncryptionRules rules = RULES;
    rules.start = PairState::Waiting;
    beginSignIn(encryption, {}, rules, 0);
    EXPECT_EQ(encryption.state, PairState::Off);
    beginSignIn(encryption, u"someone else"_s, rules, 0);
    EXPECT_EQ(encryption.state, PairState::Pending) << "the phone is there already";
    EXPECT_TRUE(encryption.required);
    EXPECT_TRUE(encryption.devices.isEmpty());
}

TEST(EncryptionTest, DownloadRisesToReadyAndASecondRequestDoesNotRestartIt) {
    Encryption encryption = signedIn(PairState::Active);
    installSpeech(encryption, 0);
    advance(encryption, RULES, 420);
    installSpeech(encryption, 430);
    EXPECT_EQ(encryptionReport(encryption, true).value("asr"_L1),
              (QJsonObject{{u"ready"_s, false}, {u"installing"_s, u"download"_s}, {u"pct"_s, 42}}));
    advance(encryption, RULES, 1000);
    EXPECT_EQ(encryptionReport(encryption, true).value("asr"_L1), (QJsonObject{{u"ready"_s, true}}));
}

TEST(EncryptionTest, CodesHaveSixDigitsNeverRepeatAtOnceAndFollowTheSeed) {
    Encryption one = signedIn();
    Encryption other = one;
    bool startedWithZero = false;
    for (int count = 0; count < 2000; ++count) {
        const QString before = one.code;
        showNewCode(one, RULES, 0);
        showNewCode(other, RULES, 0);
        ASSERT_EQ(one.code, other.code);
        ASSERT_NE(one.code, before);
        ASSERT_EQ(one.code.size(), 6);
        startedWithZero = startedWithZero || one.code.startsWith(u'0');
    }
    EXPECT_TRUE(startedWithZero);
}

TEST(EncryptionTest, StoredStateComesBackWhole) {
    Encryption encryption = signedIn();
    typesWrong(encryption, RULES, 7);
    typesRight(encryption, RULES, 8);
    encryption.relay = false;
    encryption.trouble = u"The disk is full — 磁盘已满"_s;
    deviceAsks(encryption, u"Anna's \"phone\""_s, u"ios"_s);
    deviceAsksAgain(encryption, encryption.devices.first().pendingId);
    encryption.devices.first().ready = false;
    raiseAlarm(encryption, u"alert"_s, u"text"_s);
    encryption.speech = {SpeechInstall::State::Downloading, 12, 1'700'000'000'123};
    const QByteArray text = QJsonDocument(toJson(encryption)).toJson();
    EXPECT_EQ(encryptionFrom(QJsonDocument::fromJson(text).object()), encryption);
}

} // namespace korvel::sim
