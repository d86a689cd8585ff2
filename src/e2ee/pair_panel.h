#pragma once

#include "ports/windows.h"

#include <functional>

namespace korvel {

struct PairView;

/// Interface of the pairing window for its feature.
class PairPanel {
public:
    struct Events {
        std::function<void()> buttonClicked;
        std::function<void()> renewClicked;
    };
    virtual ~PairPanel() = default;
    virtual void connect(Events events) = 0;
    virtual bool isVisible() const = 0;
    /// Shows the window in front with keyboard focus, centred if it was not on the screen.
    virtual void present(const PairView &view, OpenedBy by) = 0;
    virtual void apply(const PairView &view) = 0;
    virtual void hide() = 0;
};

} // namespace korvel
