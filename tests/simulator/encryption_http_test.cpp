#include "home_fixture.h"

#include "simulator/files.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <csignal>
#include <future>
#include <vector>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

class EncryptionHttpTest : public HomeTest {
protected:
    // Starts the agent with these settings of its encryption.
    void start(QJsonObject settings) {
        home.setScenario({{u"connectMs"_s, 0},
                          {u"launchd"_s, QJsonObject{{u"throttleMs"_s, 10}}},
                          {u"e2ee"_s, std::move(settings)}});
        ASSERT_TRUE(startAgent());
    }
    static QJsonObject parsed(const Exchange &exchange) { return QJsonDocument::fromJson(exchange.body).object(); }
    QJsonObject report() { return parsed(health()).value("e2ee"_L1).toObject(); }
    QString reportedState() { return report().value("state"_L1).toString(); }
    QJsonObject firstDevice() { return report().value("pending"_L1)[0].toObject(); }

    QByteArray request(const QByteArray &path, const QJsonObject &body) {
        return post(home.port(), path, token(), QJsonDocument(body).toJson(QJsonDocument::Compact)).body;
    }
    QJsonObject ask(const QByteArray &path, const QJsonObject &body = {}) {
        return QJsonDocument::fromJson(request(path, body)).object();
    }
    bool isDone(const QByteArray &path, const QJsonObject &body = {}) {
        return ask(path, body) == QJsonObject{{u"ok"_s, true}};
    }
    // The code of a refusal; "ok" for none.
    QString verdict(const QString &pendingId, const QString &code) {
        const QJsonObject reply = ask("/e2ee/pair", {{u"pendingId"_s, pendingId}, {u"code"_s, code}});
        return reply.value("ok"_L1).toBool() ? u"ok"_s : reply.value("code"_L1).toString();
    }
    // Plays a fault or a forced reply for one path.
    void play(QLatin1StringView section, const QString &path, const QJsonObject &entry) {
        const QJsonObject byPath{{path, entry}};
        home.changeScenario(section == "faults"_L1 ? QJsonObject{{u"faults"_s, byPath}}
                                                   : QJsonObject{{u"e2ee"_s, QJsonObject{{u"replies"_s, byPath}}}});
    }
    QStringList bodiesTo(const QString &path) const {
        QStringList bodies;
        for (const QJsonObject &each : home.requests())
            if (each.value("path"_L1) == QJsonValue(path))
                bodies.append(each.value("body"_L1).toString());
        return bodies;
    }
};

QString wrongCode(const QString &right) { return right == "000000"_L1 ? u"000001"_s : u"000000"_s; }

} // namespace

TEST_F(EncryptionHttpTest, MacIsPairedByThePhone) {
    start({{u"start"_s, u"waiting"_s}, {u"turnOnMs"_s, 100}});
    EXPECT_EQ(reportedState(), "waiting"_L1);
    EXPECT_TRUE(home.phone().signIn());
    const QString first = home.encryption().pairCode();
    EXPECT_EQ(report(), (QJsonObject{{u"state"_s, u"pending"_s}, {u"pair"_s, QJsonObject{{u"show"_s, first}}}}));
    EXPECT_TRUE(isDone("/e2ee/pair/new"));
    EXPECT_TRUE(home.phone().type(first)) << "the code of before is a wrong one now";
    EXPECT_EQ(report().value("pair"_L1)["wrong"_L1], QJsonValue(true));
    EXPECT_TRUE(home.phone().typeRight());
    EXPECT_EQ(home.encryption().pairCode(), QString());
    EXPECT_TRUE(eventually([&] { return report() == QJsonObject{{u"state"_s, u"active"_s}, {u"relay"_s, u"ok"_s}}; }));
    EXPECT_EQ(ask("/e2ee/pair/new").value("code"_L1), QJsonValue(u"not-pairing"_s));
}

TEST_F(EncryptionHttpTest, CodeOutlivesTheAgentAndANewSignInStartsOver) {
    start({{u"start"_s, u"pending"_s}});
    const QJsonObject before = report();
    ASSERT_EQ(home.launchctl({u"kickstart"_s, u"-k"_s, target}), 0);
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
    EXPECT_EQ(report(), before);
    EXPECT_TRUE(home.phone().deny());
    home.setScenario({});
    EXPECT_EQ(reportedState(), "rejected"_L1) << "a scenario that says nothing about it leaves it alone";
    home.setScenario({{u"e2ee"_s, QJsonObject{{u"start"_s, u"suspended"_s}}}});
    EXPECT_EQ(reportedState(), "suspended"_L1);
    home.setScenario({{u"e2ee"_s, QJsonObject{{u"start"_s, u"pending"_s}}}});
    EXPECT_TRUE(home.signOut());
    EXPECT_EQ(reportedState(), "off"_L1);
    EXPECT_TRUE(home.signIn(u"kim"_s));
    EXPECT_EQ(reportedState(), "pending"_L1);
    EXPECT_NE(report(), before);
}

TEST_F(EncryptionHttpTest, DeviceIsAnsweredOnce) {
    start({});
    AccountControl account = home.encryption();
    const AskedDevice phone = account.askDevice(u"Anna's phone"_s, u"ios"_s);
    const AskedDevice laptop = account.askDevice(u"Laptop"_s, u"linux"_s);
    EXPECT_EQ(firstDevice(), (QJsonObject{{u"pendingId"_s, phone.pendingId},
                                          {u"attempt"_s, 1},
                                          {u"name"_s, u"Anna's phone"_s},
                                          {u"platform"_s, u"ios"_s},
                                          {u"ready"_s, true},
                                          {u"busy"_s, false}}));
    EXPECT_EQ(verdict(phone.pendingId, u"12345"_s), "bad-code"_L1);
    EXPECT_EQ(verdict(phone.pendingId, wrongCode(phone.code)), "wrong-code"_L1);
    EXPECT_TRUE(account.reissueDevice(phone.pendingId));
    EXPECT_EQ(firstDevice().value("attempt"_L1), QJsonValue(2));
    EXPECT_EQ(verdict(phone.pendingId, phone.code), "wrong-code"_L1) << "it shows another code now";
    EXPECT_EQ(verdict(phone.pendingId, account.deviceCode(phone.pendingId)), "ok"_L1);
    EXPECT_EQ(verdict(phone.pendingId, phone.code), "answered"_L1);
    EXPECT_TRUE(isDone("/e2ee/reject", {{u"pendingId"_s, laptop.pendingId}}));
    EXPECT_FALSE(report().contains("pending"_L1));
}

TEST_F(EncryptionHttpTest, ForcedRepliesComeInsteadOfTheRightOnes) {
    start({});
    const AskedDevice device = home.encryption().askDevice(u"Tablet"_s, u"android"_s);
    for (const QString &code : {u"wrong-code"_s, u"bad-code"_s, u"answered"_s, u"mismatch"_s, u"moon-phase"_s}) {
        play("e2ee"_L1, u"/e2ee/pair"_s, {{u"code"_s, code}});
        const QJsonObject reply = ask("/e2ee/pair", {{u"pendingId"_s, device.pendingId}, {u"code"_s, device.code}});
        EXPECT_EQ(reply.value("code"_L1), QJsonValue(code));
        EXPECT_FALSE(reply.value("error"_L1).toString().isEmpty());
    }
    play("e2ee"_L1, u"/e2ee/pair/new"_s, {{u"error"_s, u"Not now"_s}});
    EXPECT_EQ(ask("/e2ee/pair/new"), (QJsonObject{{u"ok"_s, false}, {u"error"_s, u"Not now"_s}}));
    play("e2ee"_L1, u"/e2ee/pair"_s, {{u"code"_s, {}}, {u"reply"_s, QJsonObject{{u"ok"_s, 1}}}, {u"times"_s, 1}});
    EXPECT_EQ(request("/e2ee/pair", {}), "{\"ok\":1}");
    home.changeScenario({{u"e2ee"_s, QJsonObject{{u"lang"_s, u"zh"_s}, {u"replies"_s, {}}}}});
    EXPECT_TRUE(request("/e2ee/pair", {{u"code"_s, u"1"_s}}).contains("配对码必须是 6 位数字"));
}

TEST_F(EncryptionHttpTest, SlowVerdictMarksTheDeviceBusyUntilItComesOrTheAgentDies) {
    start({});
    const AskedDevice device = home.encryption().askDevice(u"Tablet"_s, u"android"_s);
    const auto isBusy = [this] { return firstDevice().value("busy"_L1).toBool(); };
    play("e2ee"_L1, u"/e2ee/pair"_s, {{u"delayMs"_s, 1'000'000}});
    auto lost = std::async(std::launch::async, [&] { return verdict(device.pendingId, device.code); });
    EXPECT_TRUE(eventually(isBusy));
    EXPECT_EQ(verdict(device.pendingId, device.code), "busy"_L1);
    EXPECT_TRUE(home.killAgent(SIGKILL));
    EXPECT_EQ(lost.get(), QString());
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
    EXPECT_FALSE(isBusy());
    play("e2ee"_L1, u"/e2ee/pair"_s, {{u"delayMs"_s, 50}});
    EXPECT_EQ(verdict(device.pendingId, device.code), "ok"_L1);
    EXPECT_FALSE(report().contains("pending"_L1));
}

TEST_F(EncryptionHttpTest, FaultsStrikeBeforeOrAfterTheActAndEveryRequestIsLogged) {
    start({});
    const QString path = u"/e2ee/alarm/dismiss"_s;
    const QJsonObject body{{u"id"_s, home.encryption().raiseAlarm(u"Someone knocked"_s)}};
    play("faults"_L1, path, {{u"mode"_s, u"close"_s}});
    EXPECT_TRUE(request(path.toLatin1(), body).isEmpty());
    EXPECT_TRUE(report().contains("alarms"_L1));
    play("faults"_L1, path, {{u"mode"_s, u"exit"_s}, {u"acts"_s, true}});
    EXPECT_TRUE(request(path.toLatin1(), body).isEmpty());
    EXPECT_TRUE(eventually([&] { return health().end == End::Answered; }));
    EXPECT_FALSE(report().contains("alarms"_L1));
    const QString sent = QString::fromUtf8(QJsonDocument(body).toJson(QJsonDocument::Compact));
    EXPECT_EQ(bodiesTo(path), (QStringList{sent, sent}));
}

TEST_F(EncryptionHttpTest, RequestsWithoutTokenOrObjectChangeNothing) {
    start({});
    EXPECT_TRUE(post(home.port(), "/e2ee/logout", "guess", "{}").head.contains(" 401 "));
    for (const char *body : {"", "[]", "{", "null"})
        EXPECT_EQ(parsed(post(home.port(), "/e2ee/logout", token(), body)).value("code"_L1),
                  QJsonValue(u"bad-request"_s));
    EXPECT_TRUE(get(home.port(), "/e2ee/logout", token()).head.contains(" 404 "));
    EXPECT_EQ(reportedState(), "active"_L1);
    EXPECT_TRUE(isDone("/e2ee/logout"));
    EXPECT_EQ(reportedState(), "off"_L1);
}

TEST_F(EncryptionHttpTest, ResetIsAcceptedAndSpeechIsInstalledAgainAfterAFailure) {
    start({{u"asrMs"_s, 1'000'000}});
    EXPECT_TRUE(isDone("/e2ee/asr/install"));
    EXPECT_EQ(report().value("asr"_L1)["installing"_L1], QJsonValue(u"download"_s));
    EXPECT_TRUE(home.encryption().failSpeech());
    EXPECT_EQ(report().value("asr"_L1)["installing"_L1], QJsonValue(u"failed"_s));
    home.changeScenario({{u"e2ee"_s, QJsonObject{{u"asrMs"_s, 0}}}});
    EXPECT_TRUE(isDone("/e2ee/asr/install"));
    EXPECT_EQ(report().value("asr"_L1)["ready"_L1], QJsonValue(true));

    const QString alert = home.encryption().raiseAlarm(u"Someone knocked"_s);
    home.encryption().raiseResetAlarm();
    EXPECT_TRUE(isDone("/e2ee/reset/accept"));
    EXPECT_EQ(reportedState(), "pending"_L1);
    EXPECT_EQ(report().value("alarms"_L1)[0]["id"_L1], QJsonValue(alert)) << "the other alarm stays";
    EXPECT_EQ(ask("/e2ee/reset/accept").value("code"_L1), QJsonValue(u"no-reset"_s));
}

TEST_F(EncryptionHttpTest, ChangesFromManySidesAreAllKept) {
    constexpr int SIDES = 4;
    constexpr int EACH = 25;
    std::vector<std::future<void>> sides;
    for (int side = 0; side < SIDES; ++side)
        sides.push_back(std::async(std::launch::async, [this] {
            for (int count = 0; count < EACH; ++count)
                Home(home.path()).encryption().raiseAlarm(u"knock"_s);
        }));
    for (auto &side : sides)
        side.get();
    ASSERT_TRUE(startAgent());
    QSet<QString> ids;
    for (const QJsonValue &alarm : report().value("alarms"_L1).toArray())
        ids.insert(alarm["id"_L1].toString());
    EXPECT_EQ(ids.size(), SIDES * EACH);
}

TEST_F(EncryptionHttpTest, ControlProgramPlaysThePhoneAndTheAccount) {
    const auto control = [this](const QStringList &arguments) {
        return run(standInRoot() + "/usr/local/bin/korvel-simulator"_L1, arguments);
    };
    EXPECT_EQ(control({u"e2ee"_s, u"waiting"_s}).status, 0);
    EXPECT_EQ(control({u"phone"_s, u"type-right"_s}).status, 1);
    EXPECT_EQ(control({u"phone"_s, u"sign-in"_s}).status, 0);
    EXPECT_EQ(control({u"pair-code"_s}).output.trimmed(), home.encryption().pairCode().toUtf8());
    EXPECT_EQ(control({u"phone"_s, u"type"_s, home.encryption().pairCode().insert(3, u' ')}).status, 0);
    const QList<QByteArray> asked = control({u"device"_s, u"ask"_s, u"Tablet"_s, u"ios"_s}).output.trimmed().split(' ');
    ASSERT_EQ(asked.size(), 2);
    EXPECT_EQ(home.encryption().deviceCode(QString::fromUtf8(asked[0])), QString::fromUtf8(asked[1]));
    EXPECT_EQ(control({u"revoke"_s}).status, 0);
    EXPECT_EQ(control({u"e2ee"_s}).output, "revoked\n");
    EXPECT_EQ(control({u"relay"_s, u"sideways"_s}).status, 2);
    EXPECT_EQ(control({u"e2ee"_s, u"sideways"_s}).status, 1);
}

} // namespace korvel::sim
