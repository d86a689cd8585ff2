#pragma once

#include <memory>
#include <utility>

namespace korvel {

/// Prevents callbacks from running after their owner is destroyed. Declare it as the last member, so that it dies
/// first.
class Alive {
public:
    /// Wraps `f` so that it runs only while this token is alive.
    template <class F>
    auto guard(F f) const {
        return [token = std::weak_ptr<const bool>(life), f = std::move(f)](auto &&...args) mutable {
            if (!token.expired())
                f(std::forward<decltype(args)>(args)...);
        };
    }

private:
    std::shared_ptr<const bool> life = std::make_shared<const bool>(true);
};

} // namespace korvel
