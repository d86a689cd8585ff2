#pragma once

#include "base/unique_function.h"

#include <chrono>
#include <memory>
#include <optional>
#include <type_traits>

namespace korvel {

using Clock = std::chrono::steady_clock;
/// A point in time that a change of the wall clock does not move.
using Instant = Clock::time_point;
using std::chrono::milliseconds;
using namespace std::chrono_literals;

/// Earlier than anything that happens.
constexpr Instant DISTANT_PAST = Instant(std::chrono::hours(-24 * 365 * 100));

/// A pending call of a Scheduler; it is cancelled when its Timer is destroyed or assigned.
class Timer {
public:
    Timer() = default;
    explicit Timer(std::shared_ptr<void> handle) : held(std::move(handle)) {}
    void cancel() { held.reset(); }

private:
    std::shared_ptr<void> held;
};

/// Time, the main thread's queue and background work. Every operation is called on the main thread.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    virtual Instant now() const = 0;
    /// Runs `f` once, on the main thread, `delay` from now, unless the Timer goes first.
    [[nodiscard]] virtual Timer after(milliseconds delay, UniqueFunction<void()> f) = 0;
    /// Runs `f` on the main thread every `period`, the first time one period from now, until the Timer goes.
    [[nodiscard]] virtual Timer every(milliseconds period, UniqueFunction<void()> f) = 0;
    /// Runs `f` once, on the main thread, before it waits for the next event.
    virtual void beforeWaiting(UniqueFunction<void()> f) = 0;
    /// Runs `work` off the main thread, then `then` on it. `work` must refer to nothing that may be gone by then. When
    /// the system has no thread for it, not for some seconds either, `then` runs without it.
    virtual void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) = 0;

    /// As runInBackground; `then` gets what `work` returned, or a default value, which has to mean failure, when `work`
    /// could not run.
    template <class Work, class Then>
    void background(Work work, Then then) {
        using Value = std::invoke_result_t<Work &>;
        auto value = std::make_shared<std::optional<Value>>();
        runInBackground([value, work = std::move(work)]() mutable { value->emplace(work()); },
                        [value, then = std::move(then)]() mutable { then(std::move(*value).value_or(Value())); });
    }
};

} // namespace korvel
