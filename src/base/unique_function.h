#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace korvel {

template <class Signature>
class UniqueFunction;

/// A move-only callable: it may own a Done or another move-only value.
template <class R, class... Args>
class UniqueFunction<R(Args...)> {
public:
    UniqueFunction() = default;
    UniqueFunction(std::nullptr_t) {}

    template <class F>
    requires(!std::is_same_v<std::decay_t<F>, UniqueFunction> && std::is_invocable_r_v<R, F &, Args...>)
        UniqueFunction(F f)
        : callee(std::make_unique<Held<F>>(std::move(f))) {}

    UniqueFunction(UniqueFunction &&) noexcept = default;
    UniqueFunction &operator=(UniqueFunction &&) noexcept = default;

    explicit operator bool() const { return callee != nullptr; }
    R operator()(Args... args) { return callee->call(std::forward<Args>(args)...); }

private:
    struct Callee {
        virtual ~Callee() = default;
        virtual R call(Args... args) = 0;
    };
    template <class F>
    struct Held final : Callee {
        explicit Held(F f) : held(std::move(f)) {}
        R call(Args... args) override { return held(std::forward<Args>(args)...); }
        F held;
    };
    std::unique_ptr<Callee> callee;
};

} // namespace korvel
