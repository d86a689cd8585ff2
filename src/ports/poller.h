#pragma once

#include <functional>

namespace korvel {

/// Polls the agent's health outside the regular interval.
class Poller {
public:
    virtual ~Poller() = default;
    /// Polls once. `then` runs after the result, or a failure, is applied.
    virtual void poll(std::function<void()> then = {}) = 0;
    /// Discards the results of polls in flight.
    virtual void ignorePollsInFlight() = 0;
};

} // namespace korvel
