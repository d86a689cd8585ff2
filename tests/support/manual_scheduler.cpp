#include "support/manual_scheduler.h"

#include <utility>

namespace korvel::test {

Timer ManualScheduler::after(milliseconds delay, UniqueFunction<void()> f) { return add(delay, 0ms, std::move(f)); }

Timer ManualScheduler::every(milliseconds period, UniqueFunction<void()> f) {
    return add(period, period, std::move(f));
}

Timer ManualScheduler::add(milliseconds delay, milliseconds period, UniqueFunction<void()> f) {
    auto handle = std::make_shared<int>();
    due.emplace(clock + delay, Entry{handle, std::make_shared<UniqueFunction<void()>>(std::move(f)), period});
    return Timer(handle);
}

/// Outside of advance(), every call of a test is its own turn.
void ManualScheduler::beforeWaiting(UniqueFunction<void()> f) {
    if (!inTurn)
        return f();
    atEndOfTurn.push_back(std::move(f));
}

void ManualScheduler::endTurn() {
    for (auto &f : std::exchange(atEndOfTurn, {}))
        f();
}

void ManualScheduler::runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) {
    background.push_back({std::move(work), std::move(then)});
}

void ManualScheduler::holdBackground(bool hold) {
    held = hold;
    if (!hold)
        runDue();
}

void ManualScheduler::hangBackground(bool hang) {
    std::swap(background, hanging);
    if (!hang)
        runDue();
}

void ManualScheduler::runBackground() {
    while (!held && !background.empty()) {
        Job job = std::move(background.front());
        background.pop_front();
        if (threads)
            job.work();
        job.then();
        endTurn();
    }
}

void ManualScheduler::advance(milliseconds by) {
    const Instant end = clock + by;
    const bool before = std::exchange(inTurn, true);
    runBackground();
    while (!due.empty() && due.begin()->first <= end) {
        auto node = due.extract(due.begin());
        clock = node.key();
        Entry entry = node.mapped();
        if (entry.alive.expired())
            continue;
        if (entry.period > 0ms)
            due.emplace(clock + entry.period, entry);
        (*entry.f)();
        endTurn();
        runBackground();
    }
    clock = end;
    inTurn = before;
}

} // namespace korvel::test
