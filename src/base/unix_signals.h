#pragma once

#include <functional>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

namespace korvel {

/// Delivers Unix signals on the event loop, including those raised before it runs. One per process.
class UnixSignals {
public:
    /// Calls `handle` with the signal number. Signals that are ignored, as under nohup, stay ignored.
    UnixSignals(std::initializer_list<int> numbers, std::function<void(int)> handle);
    UnixSignals(const UnixSignals &) = delete;
    UnixSignals &operator=(const UnixSignals &) = delete;
    ~UnixSignals();

private:
    int ends[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace korvel
