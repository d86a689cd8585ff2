#pragma once

#include "simulator/home/home_locks.h"
#include "simulator/home/program_call.h"
#include "simulator/launchd/launch_job.h"

#include <QProcess>
#include <QTimer>

namespace korvel::sim {

/// Simulates launchd for one loaded job: starts, restarts and ends its program.
class JobSupervisor {
public:
    JobSupervisor(const HomePaths &paths, const QJsonObject &jobFile);

    /// Starts the program if the job file says so, as loading the job does.
    void begin();
    /// Starts the program unless it runs. With `kill`, first ends a running one, and starts it again without delay.
    void start(bool kill);
    /// Ends the program, then leaves the event loop.
    void finish();

private:
    void launch();
    void onEnded();
    void endProgram();
    void writeState();

    enum class After { KeepAlive, StartAgain, Leave }; ///< What follows the end of the program.

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

/// The program of a loaded job, `launchd LABEL JOBFILE`. Returns 1 if the job is already loaded.
int superviseJob(const ProgramCall &call);

} // namespace korvel::sim
