#pragma once

#include "simulator/program_call.h"

#include <QProcessEnvironment>

namespace korvel::sim {

// The program korvel-account-server: serves the home's accounts until SIGTERM or SIGINT, or until the home or who holds
// it is gone. Status 1 when it runs already, or the port is not to be had.
int serveAccounts(const ProgramCall &call);

// The account server of a home, seen from outside. It runs exactly while its process holds a record lock.
class AccountServerProcess {
public:
    explicit AccountServerProcess(HomePaths paths) : paths(std::move(paths)) {}

    // Its port on 127.0.0.1: the reserved one, or else one that is chosen now and kept.
    int port() const;
    // "localhost:PORT"
    QString address() const;
    // Starts it and waits until it serves. True when it runs, also when it did before.
    bool start(const QProcessEnvironment &environment) const;
    // Ends it. True when none runs any more.
    bool stop() const;
    // Waits until a running server listens, or no longer does, as the scenario says.
    void awaitScenario() const;

private:
    HomePaths paths;
};

} // namespace korvel::sim
