#pragma once

#include "base/unique_function.h"

#include <chrono>
#include <memory>
#include <optional>
#include <type_traits>

namespace korvel {

using Clock = std::chrono::steady_clock;
/// A point in monotonic time: changes of the wall clock do not affect it.
using Instant = Clock::time_point;
using std::chrono::milliseconds;
using namespace std::chrono_literals;

/// Earlier than any event.
constexpr Instant DISTANT_PAST = Instant(std::chrono::hours(-24 * 365 * 100));

/// A pending call of a Scheduler. Destroying or reassigning the Timer cancels it.
class Timer {
public:
    Timer() = default;
    explicit Timer(std::shared_ptr<void> handle) : held(std::move(handle)) {}
    void cancel() { held.reset(); }

private:
    std::shared_ptr<void> held;
};

/// Time, the main thread's queue and background work. All operations are called on the main thread.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    virtual Instant now() const = 0;
    /// Runs `f` once, on the main thread, after `delay`. Destroying the Timer cancels it.
    [[nodiscard]] virtual Timer after(milliseconds delay, UniqueFunction<void()> f) = 0;
    /// Runs `f` on the main thread every `period`, first after one period. Destroying the Timer stops it.
    [[nodiscard]] virtual Timer every(milliseconds period, UniqueFunction<void()> f) = 0;
    /// Runs `f` once, on the main thread, before the event loop next blocks.
    virtual void beforeWaiting(UniqueFunction<void()> f) = 0;
    /// Runs `work` on another thread, then `then` on the main thread. `work` must not refer to objects that may be
    /// destroyed meanwhile. If no thread can be created within some seconds, `work` is skipped and `then` still runs.
    virtual void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) = 0;

    /// As runInBackground(); `then` receives the result of `work`. If `work` could not run, it receives a
    /// default-constructed value, which must mean failure.
    template <class Work, class Then>
    void background(Work work, Then then) {
        using Value = std::invoke_result_t<Work &>;
        auto value = std::make_shared<std::optional<Value>>();
        runInBackground([value, work = std::move(work)]() mutable { value->emplace(work()); },
                        [value, then = std::move(then)]() mutable { then(std::move(*value).value_or(Value())); });
    }
};

} // namespace korvel
