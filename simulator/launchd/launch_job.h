#pragma once

#include "simulator/home/home_paths.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <sys/types.h>

namespace korvel::sim {

/// One launchd job of a home, seen from outside. The job is loaded exactly while its supervisor process holds a record
/// lock on the job's lock file, so that what a killed supervisor left behind, or another process with the same id, is
/// never taken for a loaded job.
class LaunchJob {
public:
    /// `label` must be a safe one (see isSafeLabel).
    LaunchJob(const HomePaths &paths, QString label);
    /// The labels that this home has state of.
    static QStringList labels(const HomePaths &paths);

    bool isLoaded() const { return supervisor() != 0; }
    /// The process id of the job's program while it is loaded and runs; otherwise 0.
    pid_t process() const;

    bool isDisabled() const;
    void setDisabled(bool disabled);

    /// Starts a supervisor for a job file, and the program when the file says so. False when the job is loaded already
    /// or the supervisor does not come up.
    bool load(const QString &jobFile);
    /// Ends the program and the supervisor. False when it was not loaded or has not gone within 10 seconds.
    bool unload();
    /// Starts the program when it does not run; with `kill`, ends it first when it does. False when not loaded.
    bool start(bool kill);

    /// For the supervisor.
    QString lockFile() const { return folder + QStringLiteral("/lock"); }
    /// What the supervisor says: `supervisor` and `process` (ids; 0: does not run), and how often the program was
    /// started since the job was loaded.
    QString stateFile() const { return folder + QStringLiteral("/job.json"); }

private:
    pid_t supervisor() const;
    QJsonObject state() const; ///< What the present supervisor wrote; empty when there is none.

    QString label;
    QString folder;
};

} // namespace korvel::sim
