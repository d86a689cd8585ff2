#include "journey/journey.h"

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

TEST_F(ProgramsJourney, GivesTheStatusAndTheEndOfTheErrorOutput) {
    const ProgramResult result = shell(u"echo out; echo err >&2; exit 3"_s);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.output, "err\n");
    const ProgramResult chatty = shell(u"head -c 30000000 /dev/zero | tr '\\0' 'x' >&2; echo >&2; echo end >&2"_s);
    EXPECT_EQ(chatty.status, 0);
    EXPECT_TRUE(chatty.output.endsWith("end\n"));
    EXPECT_LE(chatty.output.size(), 512 << 10);
    const ProgramResult missing = programs.run({.executable = u"/no/such/program"_s});
    EXPECT_FALSE(missing.launched || missing.launchError.isEmpty());
    EXPECT_EQ(missing.status, -1);
    EXPECT_FALSE(programs.run({.executable = u"/usr/bin/pkill"_s}).launched); // only from under the simulated root
    EXPECT_EQ(shell(u"exit 0"_s, {.executable = {}, .input = QByteArray(5 << 20, 'x')}).status, 0); // input unread
}

TEST_F(ProgramsJourney, AProgramThatNeverEndsIsEndedAndAStoppedOneIsNotStarted) {
    ProgramRun run{.executable = {}, .collect = ProgramRun::Collect::StandardOutput};
    run.timeout = 200ms;
    // The status is a failure even if the program exits with success when asked to end.
    const ProgramResult result = shell(u"trap 'kill $!; exit 0' TERM; echo '{\"a\":1}'; sleep 100 & wait"_s, run);
    EXPECT_EQ(result.output, "{\"a\":1}\n");
    EXPECT_EQ(result.end, ProgramResult::End::TimedOut);
    EXPECT_EQ(result.status, -1);
    run.keepInputOpen = true;
    EXPECT_EQ(shell(u"trap '' TERM; read never"_s, run).end, ProgramResult::End::TimedOut); // only SIGKILL ends it
    run.stop = StopToken();
    run.stop->requestStop();
    EXPECT_FALSE(shell(u"exit 0"_s, run).launched);
}

TEST_F(ProgramsJourney, OwnSurroundingsHaveNoVariableThatAShellEvaluatesAndASessionOfTheirOwn) {
    qputenv("BASH_ENV", "/tmp/x");
    qputenv("BASH_FUNC_rm%%", "() { :; }");
    ProgramRun run{.executable = {}, .surroundings = ProgramRun::Surroundings::Own};
    run.extraEnvironment = {{u"EXTRA"_s, u"1"_s}};
    run.collect = ProgramRun::Collect::StandardOutput;
    const QByteArray output = shell(u"env | cut -d= -f1 | sort; kill -0 -$$ && echo leads a group"_s, run).output;
    qunsetenv("BASH_ENV");
    qunsetenv("BASH_FUNC_rm%%");
    QByteArrayList names = output.split('\n');
    for (const char *harmless : {"HOME", "USER", "LOGNAME", "PWD", "OLDPWD", "SHLVL", "_"}) // some are the shell's own
        names.removeAll(harmless);
    EXPECT_EQ(names, (QByteArrayList{"EXTRA", "PATH", "leads a group", ""}));
}

} // namespace
} // namespace korvel::test
