#pragma once

#include "ui/views/notice_view.h"

#include <functional>

namespace korvel {

/// Short messages that float near the top of the screen. A new notice replaces the current one.
class Notices {
public:
    virtual ~Notices() = default;
    virtual void showHUD(const Notice &notice) = 0;
    virtual void hideHUD() = 0;
};

/// Polls the agent's health outside the regular interval.
class Poller {
public:
    virtual ~Poller() = default;
    /// Polls once. `then` runs after the result, or a failure, is applied.
    virtual void poll(std::function<void()> then = {}) = 0;
    /// Discards the results of polls in flight.
    virtual void ignorePollsInFlight() = 0;
};

/// Displays the state.
class Renderer {
public:
    virtual ~Renderer() = default;
    /// Marks the state as changed. Icon and menu are updated before the event loop next blocks.
    virtual void stateChanged() = 0;
};

} // namespace korvel
