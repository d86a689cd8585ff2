#pragma once

namespace korvel {

/// What the user sees of the state.
class Renderer {
public:
    virtual ~Renderer() = default;
    /// Marks the state as changed: icon and menu follow before the main thread waits again.
    virtual void stateChanged() = 0;
};

} // namespace korvel
