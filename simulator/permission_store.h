#pragma once

#include "simulator/home_paths.h"
#include "simulator/permissions.h"

#include <functional>

namespace korvel::sim {

// The file that keeps a home's permissions, for the agent and for whoever plays the user: each look and each change is
// one step under a lock, with what the scenario says anew taken over first.
class PermissionStore {
public:
    explicit PermissionStore(HomePaths paths) : paths(std::move(paths)) {}

    // Lets `event` look at the permissions, and change them. When it returns false, nothing of it is kept. False then,
    // or when the file could not be written.
    bool change(const std::function<bool(Permissions &, const PermissionRules &)> &event) const;

private:
    HomePaths paths;
};

} // namespace korvel::sim
