#pragma once

#include "simulator/home/home_paths.h"

#include <QTimer>
#include <functional>

namespace korvel::sim {

/// Reports within seconds to a process that belongs to a home that it should end.
class HomeWatch {
public:
    /// Calls `onGone` once `file` is no longer there, or, if a process holds the home now, once none does.
    HomeWatch(const HomePaths &paths, QString file, std::function<void()> onGone);

private:
    QTimer timer;
};

} // namespace korvel::sim
