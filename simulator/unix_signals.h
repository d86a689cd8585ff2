#pragma once

#include <QSocketNotifier>

#include <functional>
#include <initializer_list>

namespace korvel::sim {

// Delivers Unix signals through the event loop. One object in a process.
class UnixSignals {
public:
    // Calls `handle` with the number of each of these signals from now on.
    UnixSignals(std::initializer_list<int> signalNumbers, std::function<void(int)> handle);

private:
    QSocketNotifier notifier;
};

} // namespace korvel::sim
