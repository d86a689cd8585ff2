#pragma once

#include "simulator/home.h"

#include <QLatin1StringView>

namespace korvel::sim {

// One command of korvel-simulator. `run` gets the arguments after the command's name, as many as `fewest` and `most`
// allow, and returns the exit status.
struct CommandEntry {
    QLatin1StringView name;
    int fewest;
    int most;
    int (*run)(Home &home, const QStringList &arguments);
};

// The exit status of a call that is not understood.
constexpr int USAGE = 2;

// The exit status of a command that did, or failed to do, what it says.
inline int statusOf(bool success) { return success ? 0 : 1; }

} // namespace korvel::sim
