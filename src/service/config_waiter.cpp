#include "service/config_waiter.h"

#include <utility>

namespace korvel {

namespace {
constexpr int MAX_REREADS = 5;
constexpr milliseconds REREAD_INTERVAL = 100ms;
} // namespace

ConfigWaiter::ConfigWaiter(const AgentConfig &c, Scheduler &s) : config(c), scheduler(s) {}

void ConfigWaiter::whenWhole(std::function<void()> then) {
    waiting.push_back(std::move(then));
    if (waiting.size() == 1)
        readWhenWhole(MAX_REREADS);
}

void ConfigWaiter::readWhenWhole(int rereads) {
    if (rereads > 0 && config.isHalfWritten()) {
        nextRead = scheduler.after(REREAD_INTERVAL, [this, rereads] { readWhenWhole(rereads - 1); });
        return;
    }
    for (const auto &then : std::exchange(waiting, {}))
        then();
}

} // namespace korvel
