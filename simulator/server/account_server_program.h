#pragma once

#include "simulator/home/program_call.h"

namespace korvel::sim {

/// The program korvel-account-server: serves the home's accounts until SIGTERM or SIGINT, or until the home or its
/// owner is gone. Returns 1 if it already runs or the port is not available.
int serveAccounts(const ProgramCall &call);

/// The account server's process of a home. It runs while a process holds the record lock.
class AccountServerProcess {
public:
    explicit AccountServerProcess(HomePaths home) : paths(std::move(home)) {}

    /// Its port on 127.0.0.1: the reserved one, else one that this call chooses and stores.
    int port() const;
    /// "localhost:PORT"
    QString address() const { return QStringLiteral("localhost:%1").arg(port()); }
    /// Starts it and waits until it serves. True if it runs.
    bool start(const QProcessEnvironment &environment) const;
    /// True once it has stopped.
    bool stop() const;
    /// Waits until a running server listens or refuses, as the scenario says.
    void awaitScenario() const;

private:
    pid_t process() const;

    HomePaths paths;
};

} // namespace korvel::sim
