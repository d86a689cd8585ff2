#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace korvel {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the event loop, also when they came before it ran. One a process.
class QuitSignals {
public:
    explicit QuitSignals(std::function<void()> quit);
    QuitSignals(const QuitSignals &) = delete;
    QuitSignals &operator=(const QuitSignals &) = delete;
    ~QuitSignals();

private:
    int ends[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace korvel
