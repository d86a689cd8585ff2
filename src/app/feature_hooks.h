#pragma once

#include <functional>

namespace korvel {

/// Entrances of the features that TrayApp does not hold itself. Each does nothing until its feature is there.
struct FeatureHooks {
    std::function<void(bool manual)> checkUpdate = [](bool) {};
    std::function<void()> installUpdate = [] {};
};

} // namespace korvel
