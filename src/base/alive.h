#pragma once

#include <memory>
#include <utility>

namespace korvel {

/// Guards callbacks of an object that may be gone when they run. Keep it as the last member, so that it dies first.
class Alive {
public:
    /// Gives a callable that runs `f` while this token lives and does nothing after.
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
