#pragma once

#include "simulator/home/home_paths.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <functional>
#include <sys/types.h>

namespace korvel::sim {

/// The call of one of the simulator's programs.
struct ProgramCall {
    HomePaths paths;       ///< Those of $HOME.
    QString name;          ///< The base name it was started under.
    QString program;       ///< Absolute path of the program; symbolic links are not resolved.
    QStringList arguments; ///< Without the name.
};

/// The result of a program.
struct ProgramResult {
    int status = 0;
    QString output = {};
    QString error = {};
};

/// Runs a program, with its output passed through. Returns its exit status; 127 if it cannot be started.
int runProgram(const QString &program, const QStringList &arguments);

/// Starts a program of the simulated root that outlives this process, with its output appended to `log`. It inherits no
/// pipes of the caller. Returns its process id; 0 on failure.
pid_t startLasting(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment,
                   const QString &log);
bool isRunning(pid_t process);

void pauseFor(int milliseconds);

/// Blocks until `done` returns true; false after 10 seconds.
bool waitUntil(const std::function<bool()> &done);

} // namespace korvel::sim
