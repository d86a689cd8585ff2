#pragma once

#include "simulator/home/home_locks.h"
#include "simulator/home/program_call.h"
#include "simulator/launchd/launch_job.h"

#include <QProcess>
#include <QTimer>

namespace korvel::sim {

/// Simulates launchd for one loaded job: starts its program, restarts it when it is kept alive, ends it when asked to.
class JobSupervisor {
public:
    JobSupervisor(const HomePaths &paths, const QJsonObject &jobFile);

    /// Does what loading the job does.
    void begin();
    /// Starts the program unless it runs; with `kill`, ends it first and then starts it without delay.
    void start(bool kill);
    /// Ends the program, then leaves the event loop.
    void finish();

private:
    void launch();
    void onEnded();
    void endProgram();
    void writeState();

    enum class After { KeepAlive, StartAgain, Leave }; ///< The end of the program.

    HomePaths paths;
    QJsonObject job;
    LaunchJob place;
    After after = After::KeepAlive;
    int starts = 0;
    QProcess program;
    QTimer restart;
    QTimer force;
    HomeWatch watch;
};

/// The program behind a loaded job, `launchd LABEL JOBFILE`. Ends with status 1 when the job is loaded already.
int superviseJob(const ProgramCall &call);

} // namespace korvel::sim
