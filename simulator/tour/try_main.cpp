// Starts a tray program with a simulated home in the user's own desktop session, until one of them ends.

#include "base/unix_process.h"
#include "simulator/agent/agent_config.h"
#include "simulator/home/simulated_home.h"
#include "simulator/tour/explain_home.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace korvel::sim {

namespace {

constexpr int END_WITHIN_MS = 5000;

// Prepares a new home: a user is signed in at its account server, without faults. Keeps a used one.
bool prepare(Home &home, const QString &account) {
    const bool used = QFileInfo::exists(home.jobFilePath());
    return used ||
           (home.setScenario({{u"health"_s, QJsonObject{{u"sessions"_s, 1}}}}) && home.signIn(account) &&
            AgentConfig(home.configPath()).change({{u"server"_s, home.accountServer()}}) && home.installJobFile());
}

int run(int argc, char **argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Starts a tray program with a simulated home in your desktop session."_s);
    parser.addHelpOption();
    parser.addOptions({{u"tray"_s, u"Program to start."_s, u"program"_s},
                       {u"home"_s, u"Home directory to use; it is kept."_s, u"folder"_s},
                       {u"account"_s, u"Who is signed in, in a new home."_s, u"name"_s, u"ann"_s}});
    parser.process(application);
    if (!parser.isSet(u"tray"_s) || !parser.isSet(u"home"_s))
        parser.showHelp(64);

    SimulatedHome home(parser.value(u"home"_s));
    const QString program = home.assembleBundle(QFileInfo(parser.value(u"tray"_s)).absoluteFilePath());
    if (program.isEmpty() || !prepare(home, parser.value(u"account"_s)) || !home.startAccountServer()) {
        std::fprintf(stderr, "The home directory %s could not be prepared.\n", qUtf8Printable(home.path()));
        return 1;
    }
    QProcess tray;
    tray.setProcessEnvironment(home.environment());
    tray.setProcessChannelMode(QProcess::ForwardedChannels);
    QObject::connect(&tray, &QProcess::finished, &application, &QCoreApplication::exit);
    QObject::connect(&tray, &QProcess::errorOccurred, &application, [&](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            QCoreApplication::exit(1);
    });
    const UnixSignals interruption({SIGINT, SIGTERM, SIGHUP}, [&](int) { tray.terminate(); });
    explainHome(home);
    tray.start(program, QStringList());
    const int status = application.exec();
    if (!tray.waitForFinished(END_WITHIN_MS))
        tray.kill();
    return status;
}

} // namespace

} // namespace korvel::sim

int main(int argc, char **argv) { return korvel::sim::run(argc, argv); }
