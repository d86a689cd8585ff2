#pragma once

#include "platform/scheduler.h"

#include <QThreadPool>

namespace korvel {

/// Scheduler on the Qt event loop of the main thread. With a `speed` above 1 its time runs that many times faster than
/// the clock on the wall, for trials of long stretches.
class QtScheduler final : public Scheduler {
public:
    explicit QtScheduler(int speed = 1);

    Instant now() const override;
    Timer after(milliseconds delay, UniqueFunction<void()> f) override;
    Timer every(milliseconds period, UniqueFunction<void()> f) override;
    void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) override;

    /// Drops background work that has not begun; true when none is under way any more.
    bool finishBackground();

private:
    const int speed;
    const Instant began;
    QThreadPool pool;
};

} // namespace korvel
