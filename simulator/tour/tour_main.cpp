// Runs a tray program through its main features on a desktop and checks what the panel shows after each step.

#include "app/model/wording.h"
#include "base/unix_process.h"
#include "simulator/tour/explain_home.h"
#include "simulator/tour/steps.h"
#include "simulator/tour/tour.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

struct Arguments {
    TourOptions options;
    bool stay = false;
};

// Exits with a message if the arguments are wrong.
Arguments readArguments(const QGuiApplication &application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Leads a tray program through its main duties and checks what the panel shows."_s);
    parser.addHelpOption();
    parser.addOptions({{u"tray"_s, u"Program to start."_s, u"program"_s},
                       {u"out"_s, u"Folder for screenshots and the tray's log."_s, u"folder"_s},
                       {u"home"_s, u"Home directory to use and keep; a temporary one without."_s, u"folder"_s},
                       {u"language"_s, u"en or zh."_s, u"language"_s, u"en"_s},
                       {u"stay"_s, u"After the tour, start the tray again and leave it until interrupted."_s}});
    parser.process(application);
    const QString language = parser.value(u"language"_s);
    if (!parser.isSet(u"tray"_s) || !parser.isSet(u"out"_s) || (language != "en"_L1 && language != "zh"_L1))
        parser.showHelp(64);
    ZH = language == "zh"_L1;
    return {{.trayProgram = QFileInfo(parser.value(u"tray"_s)).absoluteFilePath(),
             .homeDirectory = parser.value(u"home"_s),
             .outputDirectory = parser.value(u"out"_s)},
            parser.isSet(u"stay"_s)};
}

// Removes the files of an earlier tour.
void clearOutput(const QString &directory) {
    QDir folder(directory);
    folder.mkpath(u"."_s);
    for (const QString &file : folder.entryList({u"*.png"_s, u"tray.log"_s}, QDir::Files))
        folder.remove(file);
}

/// Runs one step. True on success.
bool take(const Step &step, Tour &tour) {
    try {
        step.take(tour);
        std::printf("ok     %s\n", qUtf8Printable(step.name));
        std::fflush(stdout);
        return true;
    } catch (const StepFailed &failed) {
        std::printf("FAILED %s\n       %s\n", qUtf8Printable(step.name), qUtf8Printable(failed.what));
        std::fflush(stdout);
        tour.screenshot(u"failed"_s);
        return false;
    }
}

QList<Step> allSteps() {
    return launchSteps() + menuSteps() + pairingSteps() + deviceSteps() + alarmSteps() + speechSteps() + outageSteps() +
           syncSteps() + signInSteps() + permissionSteps() + updateSteps() + quitSteps();
}

int run(int argc, char **argv) {
    QGuiApplication application(argc, argv);
    Arguments arguments = readArguments(application);
    clearOutput(arguments.options.outputDirectory);
    const QTemporaryDir temporary;
    if (arguments.options.homeDirectory.isEmpty())
        arguments.options.homeDirectory = temporary.path();

    auto tour = std::make_unique<Tour>(arguments.options);
    const UnixSignals interruption({SIGINT, SIGTERM, SIGHUP}, [&](int number) {
        tour.reset();
        QDir(temporary.path()).removeRecursively();
        std::_Exit(arguments.stay ? 0 : 128 + number);
    });

    int failed = 0;
    for (const Step &step : allSteps())
        failed += take(step, *tour) ? 0 : 1;
    if (failed > 0)
        std::printf("%d steps FAILED; see %s\n", failed, qUtf8Printable(arguments.options.outputDirectory));
    if (!arguments.stay)
        return failed == 0 ? 0 : 1;
    if (!take({u"the tray starts again"_s, [](Tour &t) { t.startTray(); }}, *tour))
        return 1;
    QObject::connect(&tour->tray(), &QProcess::finished, &application, &QCoreApplication::exit);
    std::printf("The tray stays on display %s.\n", qgetenv("DISPLAY").constData());
    explainHome(tour->home());
    return application.exec();
}

} // namespace

} // namespace korvel::sim

int main(int argc, char **argv) { return korvel::sim::run(argc, argv); }
