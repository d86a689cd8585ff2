#include "journey/journey.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <csignal>
#include <unistd.h>

namespace korvel::test {
namespace {

const auto SEED = static_cast<quint32>(qEnvironmentVariableIntValue("KORVEL_SOAK_SEED"));

constexpr int POLLS = 2000, WARM_UP = 200, POLLS_A_DISTURBANCE = 20;

// AddressSanitizer keeps freed memory aside; there the leak check at the end of the process has the say.
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

/// An HttpClient that counts what goes through it.
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

    void disturb(quint32 dice) {
        static const QStringList FAULTS{u"close"_s, u"reset"_s, u"garbage"_s, u"truncate"_s,
                                        u"html"_s,  u"deep"_s,  u"exit"_s};
        QJsonObject scenario{{u"launchd"_s, QJsonObject{{u"throttleMs"_s, 50}}}, {u"connectMs"_s, 0}};
        if (const quint32 which = dice % 10; which < static_cast<quint32>(FAULTS.size()))
            scenario.insert(u"faults"_s,
                            QJsonObject{{u"/health"_s, QJsonObject{{u"mode"_s, FAULTS.at(which)}, {u"times"_s, 5}}}});
        else if (which == 7)
            home.killAgent(SIGKILL);
        home.setScenario(scenario);
    }
};

TEST_F(FlappingSoak, TwoThousandPollsLeaveNoTrace) {
    QRandomGenerator random(SEED);
    installAndSignIn();
    tray = std::make_unique<TrayApp>(fixed, paths, ports(counted));
    tray->launch(trayProgram());
    double megabytes = 0;
    qsizetype descriptors = 0, threads = 0, turnedOn = 0;
    for (int sent = 0; sent < WARM_UP + POLLS; sent += POLLS_A_DISTURBANCE) {
        if (sent == WARM_UP) {
            megabytes = residentMegabytes();
            descriptors = entriesOf(u"/proc/self/fd"_s);
            threads = entriesOf(u"/proc/self/task"_s);
        }
        disturb(random.generate());
        const bool wasOn = item.icon.on;
        const int until = counted.count + POLLS_A_DISTURBANCE;
        ASSERT_TRUE(eventually([&] { return counted.count >= until; }, std::chrono::seconds(120)));
        turnedOn += !wasOn && item.icon.on;
    }
    home.setScenario({{u"connectMs"_s, 0}});
    ASSERT_TRUE(showsSoon(CONNECTED));
    ASSERT_TRUE(eventually([&] { return scheduler.finishBackground(); }));
    EXPECT_GT(turnedOn, 0) << "the agent never failed: the trial tried nothing";
    EXPECT_LT(residentMegabytes() - megabytes, MAX_GROWTH_MIB);
    EXPECT_LE(entriesOf(u"/proc/self/fd"_s) - descriptors, 4);                   // a connection more or less
    EXPECT_LE(entriesOf(u"/proc/self/task"_s), std::max<qsizetype>(threads, 8)); // idle ones of the pool end
}

} // namespace
} // namespace korvel::test
