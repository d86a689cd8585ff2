#include "journey/e2ee_once.h"

#include "e2ee/requests.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace korvel::test {

void E2eeJourney::startIn(const QString &state) {
    installAndSignIn();
    ASSERT_TRUE(home.encryption().setState(state));
    launch();
    ASSERT_TRUE(eventually([&] { return item.icon.on; }));
}

void E2eeJourney::giveAnswer(const QString &path) {
    AgentConfig config(paths);
    AgentApi api(http, fixed, config);
    const QMap<QString, AgentRequest> answers{{u"/e2ee/pair"_s, pairDeviceRequest(u"p"_s, u"123456"_s)},
                                              {u"/e2ee/reject"_s, rejectDeviceRequest(u"p"_s)},
                                              {u"/e2ee/pair/new"_s, renewCodeRequest()},
                                              {u"/e2ee/alarm/dismiss"_s, dismissAlarmRequest(u"a"_s)},
                                              {u"/e2ee/reset/accept"_s, acceptResetRequest()},
                                              {u"/e2ee/asr/install"_s, installSpeechRequest()}};
    bool polled = false; // a connection that is open and idle is where a client repeats by itself
    api.send({.path = u"/health"_s, .timeout = 5s}, Done<QJsonObject>([&](Result<QJsonObject>) { polled = true; }));
    ASSERT_TRUE(eventually([&] { return polled; }));
    bool answered = false;
    e2Post(api, answers.value(path), [&](const std::optional<QJsonObject> &) { answered = true; });
    ASSERT_TRUE(eventually([&] { return answered; }));
}

void E2eeJourney::answerEachOnce(int times, quint32 seed) {
    startIn(u"active"_s);
    QRandomGenerator random(seed);
    const QStringList endpoints{u"/e2ee/pair"_s,          u"/e2ee/reject"_s,       u"/e2ee/pair/new"_s,
                                u"/e2ee/alarm/dismiss"_s, u"/e2ee/reset/accept"_s, u"/e2ee/asr/install"_s};
    const QStringList ends{u"close"_s, u"reset"_s, u"truncate"_s, u"not-http"_s};
    for (int i = 0; i < times * endpoints.size(); ++i) {
        const QString path = endpoints.at(i % endpoints.size());
        const QString end = ends.at(static_cast<qsizetype>(random.bounded(static_cast<quint32>(ends.size()))));
        home.setScenario({{u"faults"_s, QJsonObject{{path, QJsonObject{{u"mode"_s, end}}}}}});
        const int before = requestsTo(path);
        giveAnswer(path);
        EXPECT_EQ(requestsTo(path) - before, 1) << (path + u' ' + end).toStdString();
    }
}

} // namespace korvel::test
