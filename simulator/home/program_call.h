#pragma once

#include "simulator/home/home_paths.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <functional>
#include <sys/types.h>

namespace korvel::sim {

/// How one of the simulator's programs was started.
struct ProgramCall {
    HomePaths paths;       ///< Of $HOME.
    QString name;          ///< The base name it was started under.
    QString program;       ///< Its own absolute path, symbolic links not resolved.
    QStringList arguments; ///< Without the name.
};

/// What a program that runs to its end leaves: its exit status and what it prints.
struct ProgramResult {
    int status = 0;
    QString output = {};
    QString error = {};
};

/// Runs a program to its end, its output passed through to ours; 127 when it cannot be started.
int runProgram(const QString &program, const QStringList &arguments);

/// Starts a program of the simulated root that outlives this one, its output appended to `log`; 0 when it cannot be
/// started. Holds none of the caller's pipes open.
pid_t startLasting(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment,
                   const QString &log);
bool isRunning(pid_t process);

/// Blocks this thread.
void pauseFor(int milliseconds);

/// Blocks until `done` returns true; false when it does not within 10 seconds.
bool waitUntil(const std::function<bool()> &done);

} // namespace korvel::sim
