#pragma once

#include "simulator/home/home_paths.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <sys/types.h>

namespace korvel::sim {

/// One launchd job of a home. It is loaded while its supervisor process holds a record lock on the job's lock file, so
/// the remains of a killed supervisor, or a process with a reused id, never count as a loaded job.
class LaunchJob {
public:
    /// `label` must be safe (isSafeLabel).
    LaunchJob(const HomePaths &paths, QString label);
    /// The labels of all jobs that this home has state of.
    static QStringList labels(const HomePaths &paths);

    bool isLoaded() const { return supervisor() != 0; }
    /// The process id of the job's program; 0 if it does not run.
    pid_t process() const;

    bool isDisabled() const;
    void setDisabled(bool disabled);

    /// Starts a supervisor for a job file, which starts the program if the file says so. False if the job is already
    /// loaded or the supervisor does not start.
    bool load(const QString &jobFile);
    /// Ends the program and the supervisor. False if the job was not loaded, or has not ended within 10 seconds.
    bool unload();
    /// Starts the program unless it runs. With `kill`, first ends a running one. False if the job is not loaded.
    bool start(bool kill);

    /// For the supervisor.
    QString lockFile() const { return folder + QStringLiteral("/lock"); }
    /// Written by the supervisor: `supervisor` and `process` (ids; 0: does not run), and the number of starts since the
    /// job was loaded.
    QString stateFile() const { return folder + QStringLiteral("/job.json"); }

private:
    pid_t supervisor() const;
    QJsonObject state() const; ///< Written by the current supervisor; empty without one.

    QString label;
    QString folder;
};

} // namespace korvel::sim
