#include "home_fixture.h"

#include <QJsonDocument>

namespace korvel::sim {

using namespace Qt::StringLiterals;

namespace {

const QString SAM_PHONE = u"13800000000"_s;
const QString NEW_PHONE = u"13911112222"_s;

class SignInTest : public HomeTest {
protected:
    SignInTest() { home.signOut(); }

    QJsonObject ask(const QJsonObject &request) {
        const QByteArray input = QJsonDocument(request).toJson();
        return QJsonDocument::fromJson(run(home.agentProgram(), {u"login"_s, u"--stdin-json"_s}, input).output)
            .object();
    }
    QJsonObject logIn(const QString &name, const QString &password) {
        return ask({{u"op"_s, u"login"_s}, {u"username"_s, name}, {u"password"_s, password}});
    }
    QJsonObject sendCode(const QString &phone, const QString &purpose) {
        return ask({{u"op"_s, u"send-code"_s}, {u"phone"_s, phone}, {u"purpose"_s, purpose}});
    }
    // The operation with the last code that was sent to the phone.
    QJsonObject askWithCode(const QString &operation, const QString &phone, const QJsonObject &more = {}) {
        QJsonObject request = more;
        request.insert("op"_L1, operation);
        request.insert("phone"_L1, phone);
        request.insert("code"_L1, home.accounts().lastCode(phone));
        return ask(request);
    }
    static QString fieldOf(const QJsonObject &reply) {
        return reply.value("ok"_L1) == QJsonValue(false) && !reply.value("error"_L1).toString().isEmpty()
                   ? reply.value("field"_L1).toString()
                   : QString();
    }
    QJsonObject report() { return QJsonDocument::fromJson(health().body).object(); }
};

} // namespace

TEST_F(SignInTest, PasswordBindsTheMacWithAFreshCredential) {
    EXPECT_EQ(fieldOf(logIn(u"sam@example.com"_s, u"wrong"_s)), u"password"_s);
    EXPECT_EQ(fieldOf(logIn({}, u"wrong"_s)), u"username"_s);
    EXPECT_FALSE(config().contains("agentToken"_L1));

    for (const QString &name : {u"sam@example.com"_s, SAM_PHONE}) {
        const QJsonObject reply = logIn(name, u"open sesame"_s);
        EXPECT_EQ(reply, (QJsonObject{{u"ok"_s, true}, {u"user"_s, u"sam@example.com"_s}}));
        ASSERT_EQ(home.accounts().liveCredentials().size(), 1) << "signing in again releases the one before";
        const Credential live = home.accounts().liveCredentials().first();
        EXPECT_EQ(config().value("agentToken"_L1), QJsonValue(live.token));
        EXPECT_EQ(config().value("agentId"_L1), QJsonValue(live.agentId));
        EXPECT_EQ(config().value("host"_L1), QJsonValue(live.host));
    }
    EXPECT_EQ(config().value("server"_L1), QJsonValue(home.accountServer()));
    EXPECT_EQ(home.account(), u"sam@example.com"_s);
    const QJsonObject logged = home.agentCalls().first().value("input"_L1).toObject();
    EXPECT_EQ(logged.value("password"_L1), QJsonValue(u"***"_s));
}

TEST_F(SignInTest, SigningInRunsTheAgentAndAReleasedCredentialIsDead) {
    home.setScenario({{u"connectMs"_s, 0}});
    home.launchctl({u"disable"_s, target});
    logIn(u"sam@example.com"_s, u"open sesame"_s);
    ASSERT_TRUE(eventually([&] { return get(home.port(), "/", "").end == End::Answered; }));
    const qint64 agent = home.agentPid();
    EXPECT_TRUE(report().value("online"_L1).toBool());

    EXPECT_TRUE(home.accounts().release(config().value("agentId"_L1).toString()));
    EXPECT_TRUE(report().value("authDead"_L1).toBool());
    EXPECT_FALSE(report().value("online"_L1).toBool());
    logIn(u"sam@example.com"_s, u"open sesame"_s);
    EXPECT_FALSE(report().value("authDead"_L1).toBool());
    EXPECT_EQ(home.agentPid(), agent) << "one that runs goes on";
    home.signIn(u"kim"_s);
    EXPECT_FALSE(report().value("authDead"_L1).toBool()) << "the server never saw it";
}

TEST_F(SignInTest, CodesSignInOnceAndOnlyForTheirPurpose) {
    EXPECT_EQ(fieldOf(sendCode(u"123"_s, u"login"_s)), u"phone"_s);
    EXPECT_EQ(fieldOf(sendCode(NEW_PHONE, u"login"_s)), u"phone"_s) << "no account";
    EXPECT_EQ(sendCode(SAM_PHONE, u"login"_s), (QJsonObject{{u"ok"_s, true}, {u"next"_s, 60}}));
    const QJsonObject tooSoon = sendCode(SAM_PHONE, u"login"_s);
    EXPECT_EQ(tooSoon.value("ok"_L1), QJsonValue(false));
    EXPECT_TRUE(tooSoon.value("retryAfter"_L1).toInt() > 50 && tooSoon.value("retryAfter"_L1).toInt() <= 60);

    EXPECT_EQ(fieldOf(askWithCode(u"reset"_s, SAM_PHONE, {{u"password"_s, u"new sesame"_s}})), u"code"_s);
    EXPECT_EQ(fieldOf(ask({{u"op"_s, u"login-code"_s}, {u"phone"_s, SAM_PHONE}, {u"code"_s, u"12"_s}})), u"code"_s);
    EXPECT_TRUE(askWithCode(u"login-code"_s, SAM_PHONE).value("ok"_L1).toBool());
    EXPECT_EQ(fieldOf(askWithCode(u"login-code"_s, SAM_PHONE)), u"code"_s) << "used";
}

TEST_F(SignInTest, RegisteringMakesAnAccountThatCanSignIn) {
    EXPECT_EQ(fieldOf(sendCode(SAM_PHONE, u"register"_s)), u"phone"_s) << "in use";
    EXPECT_TRUE(sendCode(NEW_PHONE, u"register"_s).value("ok"_L1).toBool());
    const QJsonObject good{{u"password"_s, u"long enough"_s}, {u"agree"_s, true}};
    const QJsonObject hasty{{u"password"_s, u"long enough"_s}, {u"agree"_s, false}};
    EXPECT_EQ(fieldOf(askWithCode(u"register"_s, NEW_PHONE, {{u"password"_s, u"short"_s}})), u"password"_s);
    EXPECT_EQ(fieldOf(askWithCode(u"register"_s, NEW_PHONE, hasty)), u"agree"_s);
    EXPECT_EQ(askWithCode(u"register"_s, NEW_PHONE, good).value("user"_L1), QJsonValue(NEW_PHONE));
    EXPECT_EQ(home.account(), NEW_PHONE);
    EXPECT_TRUE(logIn(NEW_PHONE, u"long enough"_s).value("ok"_L1).toBool());
}

TEST_F(SignInTest, ResettingChangesThePasswordAndSignsInUnlessTheScenarioSaysOtherwise) {
    home.setScenario({{u"login"_s, QJsonObject{{u"reset"_s, QJsonObject{{u"signsIn"_s, false}}},
                                               {u"send-code"_s, QJsonObject{{u"next"_s, 0}}},
                                               {u"login"_s, QJsonObject{{u"user"_s, u"s**@example.com"_s}}}}}});
    sendCode(SAM_PHONE, u"reset"_s);
    const QJsonObject reply = askWithCode(u"reset"_s, SAM_PHONE, {{u"password"_s, u"new sesame"_s}});
    EXPECT_EQ(reply.value("ok"_L1), QJsonValue(false));
    EXPECT_EQ(reply.value("reset"_L1), QJsonValue(true));
    EXPECT_FALSE(config().contains("agentToken"_L1));
    EXPECT_EQ(fieldOf(logIn(SAM_PHONE, u"open sesame"_s)), u"password"_s);
    EXPECT_EQ(logIn(SAM_PHONE, u"new sesame"_s).value("user"_L1), QJsonValue(u"s**@example.com"_s));

    home.changeScenario({{u"login"_s, QJsonObject{{u"reset"_s, QJsonValue::Null}}}});
    EXPECT_TRUE(sendCode(SAM_PHONE, u"reset"_s).value("ok"_L1).toBool()) << "no wait from one code to the next";
    EXPECT_TRUE(askWithCode(u"reset"_s, SAM_PHONE, {{u"password"_s, u"open again"_s}}).value("ok"_L1).toBool());
}

} // namespace korvel::sim
