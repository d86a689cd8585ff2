#pragma once

#include <functional>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

namespace korvel {

/// Turns signals into calls on the event loop, also when they came before it ran. One a process.
class UnixSignals {
public:
    /// Calls `handle` with the number of each of these signals; those that are ignored, as under nohup, stay so.
    UnixSignals(std::initializer_list<int> numbers, std::function<void(int)> handle);
    UnixSignals(const UnixSignals &) = delete;
    UnixSignals &operator=(const UnixSignals &) = delete;
    ~UnixSignals();

private:
    int ends[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace korvel
