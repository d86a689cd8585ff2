#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// The program korvel-account-server: serves the home's accounts until SIGTERM or SIGINT, or until the home or its
/// owner is gone. Status 1 when it runs already, or the port is not to be had.
int serveAccounts(const ProgramCall &call);

/// The account server of a home, seen from outside. It runs exactly while its process holds a record lock.
class AccountServerProcess {
public:
    explicit AccountServerProcess(HomePaths home) : paths(std::move(home)) {}

    /// Its port on 127.0.0.1: the reserved one, or else one that is chosen now and kept.
    int port() const;
    /// "localhost:PORT"
    QString address() const { return QStringLiteral("localhost:%1").arg(port()); }
    /// Starts it and waits until it serves. True when it runs.
    bool start(const QProcessEnvironment &environment) const;
    /// True when none runs any more.
    bool stop() const;
    /// Waits until a running server listens, or no longer does, as the scenario says.
    void awaitScenario() const;

private:
    pid_t process() const;

    HomePaths paths;
};

} // namespace korvel::sim
