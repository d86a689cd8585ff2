#pragma once

#include "base/scheduler.h"

#include <deque>
#include <map>
#include <vector>

namespace korvel::test {

/// A Scheduler whose time passes only in advance(). Due work runs in time order, ties first in, first out. Background
/// work runs as soon as the main queue gets to it.
class ManualScheduler final : public Scheduler {
public:
    Instant now() const override { return clock; }
    Timer after(milliseconds delay, UniqueFunction<void()> f) override;
    Timer every(milliseconds period, UniqueFunction<void()> f) override;
    void beforeWaiting(UniqueFunction<void()> f) override;
    void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) override;

    void advance(milliseconds by);
    void runDue() { advance(0ms); }
    /// While true, all background work waits.
    void holdBackground(bool hold);
    /// While true, the background work that waits now goes on waiting, and later work runs.
    void hangBackground(bool hang);
    /// While false, there is no thread for background work, which is left out.
    void haveThreads(bool have) { threads = have; }
    size_t backgroundWaiting() const { return background.size(); }

private:
    struct Entry {
        std::weak_ptr<void> alive;
        std::shared_ptr<UniqueFunction<void()>> f;
        milliseconds period{0};
    };
    struct Job {
        UniqueFunction<void()> work;
        UniqueFunction<void()> then;
    };
    Timer add(milliseconds delay, milliseconds period, UniqueFunction<void()> f);
    void runBackground();
    void endTurn();

    Instant clock = Instant(std::chrono::hours(1000));
    std::multimap<Instant, Entry> due;
    std::deque<Job> background;
    std::deque<Job> hanging;
    bool held = false;
    bool inTurn = false;
    std::vector<UniqueFunction<void()>> atEndOfTurn;
    bool threads = true;
};

} // namespace korvel::test
