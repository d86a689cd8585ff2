#pragma once

#include "simulator/home/home.h"

namespace korvel::sim {

/// A home that this process owns, for journey tests and the tour.
class SimulatedHome : public Home {
public:
    /// Creates `directory` and its parents, and reserves two loopback ports for the agent and the account server until
    /// destruction. An existing home keeps its scenario and logs.
    explicit SimulatedHome(const QString &directory);
    /// Calls shutDown(). The directory stays. If this process ends without it, the home's jobs end within seconds.
    ~SimulatedHome();
    SimulatedHome(const SimulatedHome &) = delete;
    SimulatedHome &operator=(const SimulatedHome &) = delete;

private:
    int agentPort; ///< Bound sockets that never listen, to reserve their ports.
    int serverPort;
    int ownerLock;
};

} // namespace korvel::sim
