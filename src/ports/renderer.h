#pragma once

namespace korvel {

/// Displays the state.
class Renderer {
public:
    virtual ~Renderer() = default;
    /// Marks the state as changed. Icon and menu are updated before the event loop next blocks.
    virtual void stateChanged() = 0;
};

} // namespace korvel
