// Starts the tray and the floor in turns against the same agent and prints the cost of each.

#include "benchmarks/item_watcher.h"
#include "benchmarks/process_cost.h"
#include "simulator/home/simulated_home.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLibraryInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace korvel::bench;
using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// The memory of a program at one moment, in MiB; one value for each run.
struct Memory {
    QList<double> pss, privateDirty;
    int sharers = 0; ///< The maximum over the runs.

    void sample(qint64 pid) {
        const Held held = heldBy(pid);
        pss.append(static_cast<double>(held.pss) / 1024);
        privateDirty.append(static_cast<double>(held.privateDirty) / 1024);
        sharers = std::max(sharers, held.sharers);
    }
};

struct Program {
    const char *name;
    QString path;
    QStringList arguments = {};
    QProcessEnvironment environment = {};
    QList<double> startMs = {}, cpuMs = {}, wakeUps = {};
    Memory early = {}, late = {}; ///< Before the first check for updates and after it.
};

void pass(milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

double median(QList<double> values) {
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

/// A run of a program from its start on.
class Run {
public:
    Run(Program &program, ItemWatcher &watcher) {
        process.setProcessEnvironment(program.environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QEventLoop loop;
        bool came = false;
        watcher.registered = [&] {
            came = true;
            loop.quit();
        };
        QTimer::singleShot(5s, &loop, &QEventLoop::quit);
        QElapsedTimer clock;
        clock.start();
        process.start(program.path, program.arguments);
        loop.exec();
        if (came)
            program.startMs.append(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        else
            std::fprintf(stderr, "%s showed no icon\n", program.name);
        watcher.registered = nullptr;
    }
    ~Run() {
        process.terminate();
        if (!process.waitForFinished(10000))
            process.kill();
        process.waitForFinished(1000);
    }
    qint64 pid() const { return process.processId(); }

private:
    QProcess process;
};

/// The tray's first check for updates comes 20 s after its start.
constexpr milliseconds BEFORE_CHECK = 19s, PAST_CHECK = 11s;
/// The threads of the launch and of that check end after 30 s without work.
constexpr milliseconds UNTIL_IDLE = 30s;

void measureMemory(Program &program, const Run &run) {
    pass(BEFORE_CHECK);
    program.early.sample(run.pid());
}

void measureIdle(Program &program, ItemWatcher &watcher, milliseconds idle) {
    const Run run(program, watcher);
    measureMemory(program, run);
    pass(PAST_CHECK);
    program.late.sample(run.pid());
    pass(UNTIL_IDLE);
    const Used before = usedBy(run.pid());
    pass(idle);
    const Used after = usedBy(run.pid());
    const double minutes = static_cast<double>(idle.count()) / 60000;
    program.cpuMs.append((after.cpuMs - before.cpuMs) / minutes);
    program.wakeUps.append(static_cast<double>(after.wakeUps - before.wakeUps) / minutes);
}

void print(const char *figure, const QList<double> &tray, const QList<double> &floor, double limit) {
    const double a = median(tray), b = median(floor);
    std::printf("%-34s %9.1f %9.1f %7.2f   %s\n", figure, a, b, b > 0 ? a / b : 0,
                limit > 0 && !floor.isEmpty()
                    ? qPrintable(u"at most %1: %2"_s.arg(limit).arg(a <= limit * b ? u"kept"_s : u"MISSED"_s))
                    : "");
}

/// The share of Qt's pages is not comparable while other programs hold them too.
void printMemory(const char *after, const Memory &tray, const Memory &floor) {
    const int sharers = std::max(tray.sharers, floor.sharers);
    print(qPrintable(u"PSS after %1, MiB"_s.arg(QLatin1StringView(after))), tray.pss, floor.pss,
          sharers > 0 ? 0 : 1.35);
    print(qPrintable(u"private after %1, MiB"_s.arg(QLatin1StringView(after))), tray.privateDirty, floor.privateDirty,
          0);
    if (sharers > 0)
        std::printf("PSS is not judged: %d other programs hold Qt's widgets\n", sharers);
}

/// Measures both programs with a desktop's theme plug-in, whose cost no Qt program can avoid.
void measureWithTheme(Program tray, Program floor, ItemWatcher &watcher, int starts) {
    if (!QFileInfo::exists(QLibraryInfo::path(QLibraryInfo::PluginsPath) + u"/platformthemes/libqgtk3.so"_s)) {
        std::printf("with a desktop theme: not measured, its plugin is not installed\n");
        return;
    }
    for (Program *program : {&floor, &tray}) {
        program->startMs.clear();
        program->early = {};
        program->environment.insert(u"QT_QPA_PLATFORMTHEME"_s, u"gtk3"_s);
    }
    for (int i = 0; i < starts; ++i)
        for (Program *program : {&floor, &tray})
            const Run run(*program, watcher);
    for (Program *program : {&floor, &tray})
        measureMemory(*program, Run(*program, watcher));
    print("with a theme: start to icon, ms", tray.startMs, floor.startMs, 0);
    print("with a theme: PSS after 19 s, MiB", tray.early.pss, floor.early.pss, 0);
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{u"tray"_s, u"The tray's program."_s, u"program"_s},
                       {u"floor"_s, u"The floor's program."_s, u"program"_s},
                       {u"starts"_s, u"Starts of each."_s, u"number"_s, u"15"_s},
                       {u"runs"_s, u"Idle runs of each."_s, u"number"_s, u"3"_s},
                       {u"idle"_s, u"Seconds of an idle run, after a minute."_s, u"number"_s, u"60"_s}});
    parser.process(app);

    const QTemporaryDir folder;
    korvel::sim::SimulatedHome home(folder.path());
    const QString tray = home.assembleBundle(QFileInfo(parser.value(u"tray"_s)).absoluteFilePath());
    if (tray.isEmpty() || !home.signIn(u"ann"_s) || !home.installJobFile() ||
        home.launchctl({u"bootstrap"_s, home.domain(), home.jobFilePath()}) != 0) {
        std::fprintf(stderr, "the simulated home could not be prepared\n");
        return 1;
    }
    ItemWatcher watcher;
    if (!watcher.start()) {
        std::fprintf(stderr, "no session bus of its own\n");
        return 1;
    }
    pass(2s);
    QFile config(home.configPath());
    const QByteArray text = config.open(QIODevice::ReadOnly) ? config.readAll() : QByteArray();
    const QString token = QJsonDocument::fromJson(text).object().value(u"localToken"_s).toString();
    Program trayProgram{.name = "tray", .path = tray, .environment = home.environment()};
    Program floorProgram{.name = "floor",
                         .path = parser.value(u"floor"_s),
                         .arguments = {QString::number(home.port()), token},
                         .environment = home.environment()};
    for (int i = 0; i < parser.value(u"starts"_s).toInt(); ++i)
        for (Program *program : {&floorProgram, &trayProgram})
            const Run run(*program, watcher);
    const milliseconds idle = std::chrono::seconds(parser.value(u"idle"_s).toInt());
    for (int i = 0; i < parser.value(u"runs"_s).toInt(); ++i)
        for (Program *program : {&floorProgram, &trayProgram})
            measureIdle(*program, watcher, idle);

    std::printf("%-34s %9s %9s %7s\n", "", "tray", "floor", "ratio");
    print("start to icon, ms", trayProgram.startMs, floorProgram.startMs, 1.15);
    printMemory("19 s", trayProgram.early, floorProgram.early);
    printMemory("a check for updates", trayProgram.late, floorProgram.late);
    print("CPU per idle minute, ms", trayProgram.cpuMs, floorProgram.cpuMs, 1.8);
    print("wake-ups per idle minute", trayProgram.wakeUps, floorProgram.wakeUps, 1.1);
    measureWithTheme(trayProgram, floorProgram, watcher, parser.value(u"starts"_s).toInt());
    return 0;
}
