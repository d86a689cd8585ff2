#include "journey/journey.h"

#include <QJsonArray>
#include <QProcess>
#include <thread>

using namespace Qt::StringLiterals;

namespace korvel::test {
namespace {

struct ProgramsJourney : ::testing::Test {
    QtPrograms programs{u"/nowhere"_s};

    ProgramResult shell(const QString &script, ProgramRun run = {.executable = {}}) {
        run.executable = u"/bin/sh"_s;
        run.arguments = {u"-c"_s, script};
        return programs.run(run);
    }
};

TEST_F(ProgramsJourney, GivesTheStatusAndTheErrorOutputAlone) {
    const ProgramResult result = shell(u"echo out; echo err >&2; exit 3"_s);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output, "err\n");
    const ProgramResult missing = programs.run({.executable = u"/no/such/program"_s});
    EXPECT_FALSE(missing.launched);
    EXPECT_EQ(missing.status, -1);
    EXPECT_FALSE(missing.launchError.isEmpty());
}

TEST_F(ProgramsJourney, AMacToolRunsOnlyFromUnderTheStandInRoot) {
    EXPECT_FALSE(programs.run({.executable = u"/usr/bin/pkill"_s}).launched);
}

TEST_F(ProgramsJourney, AChattyProgramNeitherBlocksNorFillsTheMemory) {
    const ProgramResult result = shell(u"head -c 30000000 /dev/zero | tr '\\0' 'x' >&2; echo >&2; echo end >&2"_s);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.endsWith("end\n"));
    EXPECT_LE(result.output.size(), 512 << 10);
}

TEST_F(ProgramsJourney, AProgramThatNeverEndsIsEndedAndWhatItPrintedCounts) {
    ProgramRun run{.executable = {}, .collect = ProgramRun::Collect::StandardOutput};
    run.timeout = 200ms;
    // Its status is a failure also where it takes the request to end as success.
    const ProgramResult result = shell(u"trap 'kill $!; exit 0' TERM; echo '{\"a\":1}'; sleep 100 & wait"_s, run);
    EXPECT_EQ(result.output, "{\"a\":1}\n");
    EXPECT_EQ(result.end, ProgramResult::End::TimedOut);
    EXPECT_EQ(result.status, -1);
}

TEST_F(ProgramsJourney, AProgramThatIgnoresTheRequestToEndIsKilled) {
    ProgramRun run{.executable = {}, .keepInputOpen = true};
    run.timeout = 100ms;
    EXPECT_EQ(shell(u"trap '' TERM; read never"_s, run).end, ProgramResult::End::TimedOut);
}

TEST_F(ProgramsJourney, ARunIsStoppedFromAnotherThreadOnceItsOutputSaysSo) {
    ProgramRun run{.executable = {}, .collect = ProgramRun::Collect::StandardOutput, .stop = StopToken()};
    QByteArray seen;
    std::thread stopper;
    run.onOutput = [&](const QByteArray &piece) {
        seen += piece;
        if (seen == "one\n" && !stopper.joinable())
            stopper = std::thread([stop = run.stop]() mutable { stop->requestStop(); });
    };
    const ProgramResult result = shell(u"echo one; exec sleep 100"_s, run);
    stopper.join();
    EXPECT_EQ(result.end, ProgramResult::End::Stopped);
    EXPECT_EQ(seen, "one\n");
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(shell(u"exit 0"_s, run).launched); // a token that has stopped keeps programs from starting
}

TEST_F(ProgramsJourney, AProgramThatDoesNotReadItsInputDoesNoHarm) {
    ProgramRun run{.executable = {}, .input = QByteArray(5 << 20, 'x')};
    EXPECT_EQ(shell(u"exit 0"_s, run).status, 0);
}

TEST_F(ProgramsJourney, OwnSurroundingsHoldNothingThatAShellObeysAndOutliveTheTraysSession) {
    qputenv("BASH_ENV", "/tmp/x");
    qputenv("BASH_FUNC_rm%%", "() { :; }");
    ProgramRun run{.executable = {}, .surroundings = ProgramRun::Surroundings::Own};
    run.extraEnvironment = {{u"EXTRA"_s, u"1"_s}};
    run.collect = ProgramRun::Collect::StandardOutput;
    const QByteArray output = shell(u"env | cut -d= -f1 | sort; kill -0 -$$ && echo leads"_s, run).output;
    qunsetenv("BASH_ENV");
    qunsetenv("BASH_FUNC_rm%%");
    QByteArrayList names = output.split('\n');
    for (const char *harmless : {"HOME", "USER", "LOGNAME", "PWD", "OLDPWD", "SHLVL", "_"}) // some are the shell's own
        names.removeAll(harmless);
    EXPECT_EQ(names, (QByteArrayList{"EXTRA", "PATH", "leads", ""})); // of a process group
}

/// The tray program itself, in an automation mode.
struct AutomationJourney : Journey {
    QByteArray output;
    QByteArray errors;

    int run(const QStringList &arguments, const QByteArray &input, bool permitted = true) {
        QProcess process;
        QProcessEnvironment env = home.environment();
        env.remove(u"DISPLAY"_s);
        env.remove(u"WAYLAND_DISPLAY"_s);
        env.remove(u"QT_QPA_PLATFORM"_s);
        env.remove(u"DBUS_SESSION_BUS_ADDRESS"_s);
        env.insert(u"LANGUAGE"_s, u"en"_s);
        if (permitted)
            env.insert(u"KORVEL_TRAY_AUTOMATION"_s, u"1"_s);
        process.setProcessEnvironment(env);
        process.start(tray, arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(20000));
        output = process.readAllStandardOutput();
        errors = process.readAllStandardError();
        return process.exitCode();
    }
    const QString tray = home.assembleBundle(trayProgram());
};

TEST_F(AutomationJourney, AgentJsonHandsOneLineToTheAgentAndPrintsItsReply) {
    home.setScenario(
        {{u"login"_s, QJsonObject{{u"*"_s, QJsonObject{{u"noise"_s, QJsonArray{u"log"_s}},
                                                       {u"reply"_s, QJsonObject{{u"ok"_s, true}, {u"n"_s, 1}}}}}}}});
    EXPECT_EQ(run({u"--agent-json"_s}, "{\"op\":\"send-code\"}\nignored\n"), 0) << errors.constData();
    EXPECT_EQ(output, "{\"n\":1,\"ok\":true}\n");
    EXPECT_EQ(home.agentCalls().last().value(u"lang"), QJsonValue(u"en"_s));

    EXPECT_EQ(run({u"--agent-json"_s}, "[1]\n"), 1);
    EXPECT_EQ(output, "null\n");
    home.setScenario({{u"login"_s, QJsonObject{{u"*"_s, QJsonObject{{u"silent"_s, true}}}}}});
    EXPECT_EQ(run({u"--agent-json"_s}, "{}"), 1);
    EXPECT_EQ(output, "null\n");
}

TEST_F(AutomationJourney, MenuDumpTouchesNothingButTheFiles) {
    installAndSignIn();
    EXPECT_EQ(run({u"--menu-dump"_s}, "{\"online\":true}"), 0);
    EXPECT_TRUE(output.startsWith("off ● Connected · ann · 0 sessions\n---\n")) << output.constData();
    EXPECT_EQ(errors, "");
    EXPECT_EQ(run({u"--menu-dump"_s}, ""), 0);
    EXPECT_TRUE(home.requests().isEmpty() && home.toolCalls().isEmpty());
}

} // namespace
} // namespace korvel::test
