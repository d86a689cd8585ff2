#pragma once

#include "base/alive.h"
#include "base/scheduler.h"
#include "platform/qt/worker_threads.h"

#include <QMetaObject>
#include <deque>
#include <vector>

namespace korvel {

/// Scheduler on the Qt event loop of the main thread. With a `speed` above 1, its time runs faster than real time by
/// that factor, to test long periods. Threads for background work come from `makeThread`.
class QtScheduler final : public Scheduler {
public:
    explicit QtScheduler(int speed = 1, WorkerThreads::Make makeThread = WorkerThreads::makeThread);

    Instant now() const override;
    Timer after(milliseconds delay, UniqueFunction<void()> f) override;
    Timer every(milliseconds period, UniqueFunction<void()> f) override;
    void beforeWaiting(UniqueFunction<void()> f) override;
    void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) override;

    /// Discards background work that has not started; true if none is running.
    bool finishBackground();

private:
    /// A job that waits for a thread.
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
    QMetaObject::Connection endOfTurn; ///< Connection to the event loop, made at first use.
    Alive alive;
};

} // namespace korvel
