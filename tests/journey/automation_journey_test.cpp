#include "journey/journey.h"
#include "simulator/home/files.h"

#include <QImage>
#include <QJsonArray>
#include <QSet>

namespace korvel::test {
namespace {

/// The automation modes of the tray program, off screen.
struct AutomationJourney : Journey {
    QByteArray output, errors;

    int run(const QStringList &arguments, const QByteArray &input = {}, const QString &language = u"en"_s) {
        TrayProcess process(home, TrayProcess::Shown::Nowhere, language);
        process.beginAutomation(arguments, input);
        EXPECT_TRUE(process.waitForFinished());
        output = process.readAllStandardOutput();
        errors = process.readAllStandardError();
        return process.exitCode();
    }
};

TEST_F(AutomationJourney, AgentJsonHandsOneLineToTheAgentAndPrintsItsReply) {
    const QJsonObject replies{{u"noise"_s, QJsonArray{u"log"_s}},
                              {u"reply"_s, QJsonObject{{u"ok"_s, true}, {u"n"_s, 1}}}};
    home.setScenario({{u"login"_s, QJsonObject{{u"*"_s, replies}, {u"mute"_s, QJsonObject{{u"silent"_s, true}}}}}});
    EXPECT_EQ(run({u"--agent-json"_s}, "{\"op\":\"send-code\"}\nignored\n"), 0);
    EXPECT_EQ(output, "{\"n\":1,\"ok\":true}\n");
    EXPECT_EQ(home.agentCalls().last().value(u"lang"), u"en"_s);
    for (const char *input : {"[1]\n", "{\"op\":\"mute\"}"}) {
        EXPECT_EQ(run({u"--agent-json"_s}, input), 1);
        EXPECT_EQ(output, "null\n");
    }
}

TEST_F(AutomationJourney, LoginSignsInOnceAndPrintsTheOutcome) {
    ASSERT_TRUE(home.startAccountServer() && home.installJobFile());
    const QString account = u"sam@example.com"_s, server = home.accountServer();
    const auto printed = [&](const QStringList &arguments, const QByteArray &password,
                             const QString &language = u"en"_s) {
        const int status = run(QStringList{u"--login"_s, account} + arguments, password, language);
        EXPECT_FALSE(errors.contains("sesame"));
        return QByteArray::number(status) + ' ' + output;
    };
    EXPECT_EQ(printed({server}, "close sesame\n"), "1 Incorrect account or password.\n");
    EXPECT_EQ(printed({server}, "close sesame\n", u"zh_CN"_s), "1 账号或密码不正确\n"_ba);
    EXPECT_EQ(printed({u"no server"_s}, "open sesame"), "1 The server address isn't valid.\n");
    EXPECT_EQ(printed({u"https://"_s + server + u'/'}, "open sesame\r\nmore\n"),
              "0 ● Signed in as sam@example.com\n"_ba);
    EXPECT_TRUE(eventually([&] { return home.agentPid() != 0; }));
    // Without an address it uses the configured server, which also releases the first credential.
    EXPECT_EQ(printed({}, "open sesame"), "0 ● Signed in as sam@example.com\n"_ba);
    const auto credentials = home.accounts().liveCredentials();
    ASSERT_EQ(credentials.size(), 1);
    EXPECT_EQ(sim::readObject(home.configPath()).value(u"agentToken"), credentials.first().token);
}

TEST_F(AutomationJourney, EachWindowIsDrawnInTheLanguageOfTheEnvironment) {
    const QString out = folder.filePath(u"out.png"_s), report = uR"({"state":"pending","pair":{"show":"482 913"}})"_s,
                  request = uR"({"pendingId":"1","name":"Anna's phone","platform":"ios"})"_s;
    QSet<QByteArray> pictures;
    for (const QStringList &window : {QStringList{u"--login-render"_s, u"login"_s, out},
                                      {u"--login-render"_s, u"register"_s, out},
                                      {u"--e2ee-render"_s, u"pair"_s, out, report},
                                      {u"--e2ee-render"_s, u"approve"_s, out, request}})
        for (const QString &language : {u"en"_s, u"zh_CN"_s}) {
            EXPECT_EQ(run(window, {}, language), 0) << errors.constData();
            const QImage image(out);
            EXPECT_GE(image.width(), 2 * 400); // two pixels a point
            pictures.insert(QByteArray(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes()));
            QFile::remove(out);
        }
    EXPECT_EQ(pictures.size(), 8);
    for (const QStringList &refused : {QStringList{u"--login-render"_s, u"other"_s, out},
                                       {u"--login-render"_s, u"login"_s, u"/no/such/folder/x.png"_s},
                                       {u"--e2ee-render"_s, u"pair"_s, out, u"[]"_s}}) {
        EXPECT_EQ(run(refused), 1);
        EXPECT_EQ(errors.count('\n'), 1) << errors.constData();
    }
    EXPECT_FALSE(QFile::exists(out));
}

} // namespace
} // namespace korvel::test
