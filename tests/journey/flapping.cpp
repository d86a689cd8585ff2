#include "journey/flapping.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace korvel::test {

namespace {

constexpr int POLLS_A_DISTURBANCE = 20;

// AddressSanitizer keeps freed memory aside; there the leak check at the end of the process has the say.
#ifdef __SANITIZE_ADDRESS__
constexpr bool KEEPS_FREED_MEMORY = true;
#else
constexpr bool KEEPS_FREED_MEMORY = false;
#endif

qsizetype entriesOf(const QString &folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
}

} // namespace

Holdings Holdings::now() {
    QFile statm(u"/proc/self/statm"_s);
    EXPECT_TRUE(statm.open(QIODevice::ReadOnly));
    const double pages = statm.readAll().split(' ').value(1).toDouble();
    return {.megabytes = pages * static_cast<double>(::sysconf(_SC_PAGESIZE)) / (1 << 20),
            .descriptors = entriesOf(u"/proc/self/fd"_s),
            .threads = entriesOf(u"/proc/self/task"_s)};
}

void FlappingJourney::disturb(quint32 dice) {
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

void FlappingJourney::pollTimes(int times) {
    const int until = counted.count + times;
    ASSERT_TRUE(eventually([&] { return counted.count >= until; }, std::chrono::seconds(120)));
}

void FlappingJourney::flap(int polls, quint32 seed) {
    QRandomGenerator random(seed);
    installAndSignIn();
    tray = std::make_unique<TrayApp>(fixed, paths, ports(counted));
    tray->launch(trayProgram());
    Holdings warm;
    constexpr int WARM_UP = 10 * POLLS_A_DISTURBANCE;
    for (int sent = 0; sent < WARM_UP + polls; sent += POLLS_A_DISTURBANCE) {
        if (sent == WARM_UP)
            warm = Holdings::now();
        disturb(random.generate());
        const bool wasOn = item.icon.on;
        pollTimes(POLLS_A_DISTURBANCE);
        turnedOn += !wasOn && item.icon.on;
    }
    home.setScenario({{u"connectMs"_s, 0}});
    ASSERT_TRUE(eventually([&] { return item.statusLine() == u"● Connected · ann · 0 sessions"; }));
    ASSERT_TRUE(eventually([&] { return scheduler.finishBackground(); }));
    const Holdings after = Holdings::now();
    EXPECT_GT(turnedOn, 0) << "the agent never failed: the trial tried nothing";
    if (!KEEPS_FREED_MEMORY) {
        EXPECT_LT(after.megabytes - warm.megabytes, 4);
    }
    EXPECT_LE(after.descriptors - warm.descriptors, 4);             // a connection more or less
    EXPECT_LE(after.threads, std::max<qsizetype>(warm.threads, 8)); // idle ones of the pool end by themselves
}

} // namespace korvel::test
