#pragma once

#include <functional>

namespace korvel {

/// Polls the agent's health outside of the regular interval.
class Poller {
public:
    virtual ~Poller() = default;
    /// Polls once; `then` runs after the response, or its absence, has been applied.
    virtual void poll(std::function<void()> then = {}) = 0;
    /// Responses to polls sent before this moment are not applied.
    virtual void ignorePollsInFlight() = 0;
};

} // namespace korvel
