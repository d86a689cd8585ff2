#pragma once

#include <functional>
#include <initializer_list>
#include <memory>

class QSocketNotifier;

namespace korvel {

/// Opens the null device for each closed standard stream. Otherwise the next socket gets that descriptor, and log lines
/// go to its peer. Call first in a process.
void openStandardStreams();

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
