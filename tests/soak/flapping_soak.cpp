#include "journey/journey.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <csignal>
#include <unistd.h>

namespace korvel::test {
namespace {

constexpr int POLLS = 2000, WARM_UP = 200, POLLS_A_DISTURBANCE = 20;

// AddressSanitizer keeps freed memory; its leak check at the end of the process takes the place of this limit.
#ifdef __SANITIZE_ADDRESS__
constexpr double MAX_GROWTH_MIB = 1e9;
#else
constexpr double MAX_GROWTH_MIB = 4;
#endif

double residentMegabytes() {
    QFile statm(u"/proc/self/statm"_s);
    EXPECT_TRUE(statm.open(QIODevice::ReadOnly));
    const double pages = statm.readAll().split(' ').value(1).toDouble();
    return pages * static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1 << 20);
}

qsizetype entriesOf(const QString &folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
}

/// Counts requests.
struct CountingHttp final : HttpClient {
    explicit CountingHttp(HttpClient &c) : client(c) {}
    void send(HttpRequest request, Done<HttpReply> done) override {
        ++count;
        client.send(std::move(request), std::move(done));
    }
    HttpClient &client;
    int count = 0;
};

/// A tray whose agent comes and goes, with polls some hundred times as frequent as a user's.
struct FlappingSoak : Journey {
    FlappingSoak() : Journey(300) {}
    CountingHttp counted{http};
    QRandomGenerator random{static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"))};

    void disturb() {
        static const QStringList CHOICES{u"close"_s, u"reset"_s, u"garbage"_s, u"truncate"_s, u"html"_s,
                                         u"deep"_s,  u"exit"_s,  u"kill"_s,    u""_s,         u""_s};
        const QString choice = CHOICES.at(random.bounded(CHOICES.size()));
        const QJsonObject fault{{u"mode"_s, choice == u"kill" ? QString() : choice}, {u"times"_s, 5}};
        if (choice == u"kill")
            home.killAgent(SIGKILL);
        home.setScenario({{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 50}}}, {u"connectMs"_s, 0}});
        home.changeScenario(agentFault(u"/health"_s, fault));
    }
};

TEST_F(FlappingSoak, TwoThousandPollsLeaveNoTrace) {
    installAndSignIn();
    launch(counted);
    double megabytes = 0;
    qsizetype descriptors = 0, threads = 0, turnedOn = 0;
    for (int sent = 0; sent < WARM_UP + POLLS; sent += POLLS_A_DISTURBANCE) {
        if (sent == WARM_UP) {
            megabytes = residentMegabytes();
            descriptors = entriesOf(u"/proc/self/fd"_s);
            threads = entriesOf(u"/proc/self/task"_s);
        }
        disturb();
        const bool wasOn = item.icon.on;
        const int until = counted.count + POLLS_A_DISTURBANCE;
        ASSERT_TRUE(eventually([&] { return counted.count >= until; }, std::chrono::seconds(120)));
        turnedOn += !wasOn && item.icon.on;
    }
    home.setScenario({{u"connectMs"_s, 0}});
    ASSERT_TRUE(showsSoon(CONNECTED));
    ASSERT_TRUE(eventually([&] { return scheduler.finishBackground(); }));
    EXPECT_GT(turnedOn, 0) << "the agent never failed";
    EXPECT_LT(residentMegabytes() - megabytes, MAX_GROWTH_MIB);
    EXPECT_LE(entriesOf(u"/proc/self/fd"_s) - descriptors, 4);                   // a connection more or less
    EXPECT_LE(entriesOf(u"/proc/self/task"_s), std::max<qsizetype>(threads, 8)); // idle threads of the pool end
}

} // namespace
} // namespace korvel::test
