#pragma once

#include "simulator/home_paths.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace korvel::sim {

// How one of the simulator's programs was started.
struct ProgramCall {
    HomePaths paths;       // of $HOME
    QString name;          // the base name it was started under
    QString program;       // its own absolute path, symbolic links not resolved
    QStringList arguments; // without the name
};

// What a program that runs to its end leaves: its exit status and what it prints.
struct ProgramResult {
    int status = 0;
    QString output = {};
    QString error = {};
};

// Runs a program to its end, its output passed through to ours; 127 when it cannot be started.
int runProgram(const QString &program, const QStringList &arguments);

// Waits in this thread.
void pauseFor(int milliseconds);

// Looks every few milliseconds until `done` says true; false when it does not within 10 seconds.
bool waitUntil(const std::function<bool()> &done);

} // namespace korvel::sim
