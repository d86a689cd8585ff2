#pragma once

#include "simulator/home/home.h"

namespace korvel::sim {

/// A home that this process holds: journey tests and the tour make one, start the tray with environment(), and change
/// the scenario while it runs.
class SimulatedHome : public Home {
public:
    /// Creates `directory` and its parents where missing, and reserves two loopback ports until destruction, for the
    /// agent and the account server. A home that is there already is taken over with its scenario and logs.
    explicit SimulatedHome(const QString &directory);
    /// Calls shutDown(). The directory and its files stay. Should this process end without it, the jobs of the home end
    /// by themselves within seconds.
    ~SimulatedHome();
    SimulatedHome(const SimulatedHome &) = delete;
    SimulatedHome &operator=(const SimulatedHome &) = delete;

private:
    int agentPort; ///< Sockets bound to the ports that never listen.
    int serverPort;
    int ownerLock;
};

} // namespace korvel::sim
