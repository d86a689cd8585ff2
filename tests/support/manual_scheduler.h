#pragma once

#include "base/scheduler.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <utility>

namespace korvel::test {

/// A Scheduler whose time passes only in advance(). Due work runs in time order, ties first in, first out. Background
/// work runs as soon as the main queue gets to it.
class ManualScheduler final : public Scheduler {
public:
    bool holdsBackground = false; ///< Background work that comes meanwhile waits for releaseBackground().
    bool hasThreads = true;       ///< If false, background work is left out.

    Instant now() const override { return clock; }
    Timer after(milliseconds delay, UniqueFunction<void()> f) override { return add(delay, 0ms, std::move(f)); }
    Timer every(milliseconds period, UniqueFunction<void()> f) override { return add(period, period, std::move(f)); }
    void beforeWaiting(UniqueFunction<void()> f) override { f(); }
    void runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) override {
        (holdsBackground ? held : background).push_back({std::move(work), std::move(then)});
    }
    void releaseBackground() {
        holdsBackground = false;
        std::move(held.begin(), held.end(), std::back_inserter(background));
        held.clear();
        runDue();
    }
    void advance(milliseconds by) {
        const Instant end = clock + by;
        runBackground();
        while (!due.empty() && due.begin()->first <= end) {
            auto node = due.extract(due.begin());
            clock = node.key();
            const Entry entry = node.mapped();
            if (entry.alive.expired())
                continue;
            if (entry.period > 0ms)
                due.emplace(clock + entry.period, entry);
            (*entry.f)();
            runBackground();
        }
        clock = end;
    }
    void runDue() { advance(0ms); }

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
    Timer add(milliseconds delay, milliseconds period, UniqueFunction<void()> f) {
        auto handle = std::make_shared<int>();
        due.emplace(clock + delay, Entry{handle, std::make_shared<UniqueFunction<void()>>(std::move(f)), period});
        return Timer(handle);
    }
    void runBackground() {
        while (!background.empty()) {
            Job job = std::move(background.front());
            background.pop_front();
            if (hasThreads)
                job.work();
            job.then();
        }
    }

    Instant clock = Instant(std::chrono::hours(1000));
    std::multimap<Instant, Entry> due;
    std::deque<Job> background;
    std::deque<Job> held;
};

} // namespace korvel::test
