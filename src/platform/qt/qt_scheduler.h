#pragma once

#include "base/alive.h"
#include "base/scheduler.h"
#include "platform/qt/worker_threads.h"

#include <QMetaObject>
#include <deque>
#include <vector>

namespace korvel {

/// Scheduler on the Qt event loop of the main thread. With a `speed` above 1 its time runs that many times faster than
/// the clock on the wall, for trials of long stretches. The threads for background work come
/// from `makeThread`.
class QtScheduler final : public Scheduler {
public:
    explicit QtScheduler(int speed = 1, WorkerThreads::Make makeThread = WorkerThreads::makeThread);

    Instant now() const override;
    Timer after(milliseconds delay, UniqueFunction<void()> f) override;
    Timer every(milliseconds period, UniqueFunction<void()> f) override;
    void beforeWaiting(UniqueFunction<void()> f) override;
    void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) override;

    /// Drops background work that has not begun; true when none is under way any more.
    bool finishBackground();

private:
    /// A job for which there is no thread.
    struct Waiting {
        WorkerThreads::Job job;
        Instant until;
    };
    void startWaiting();

    const int speed;
    const Instant began;
    WorkerThreads workers;
    std::deque<Waiting> waiting;
    Timer retry;
    std::vector<UniqueFunction<void()>> atEndOfTurn;
    QMetaObject::Connection endOfTurn; ///< To the event loop, from the first use on.
    Alive alive;
};

} // namespace korvel
