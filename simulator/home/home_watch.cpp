#include "simulator/home/home_watch.h"

#include "simulator/home/record_lock.h"

#include <QFile>
#include <chrono>

namespace korvel::sim {

using namespace std::chrono_literals;

HomeWatch::HomeWatch(const HomePaths &paths, QString file, std::function<void()> onGone) {
    const bool owned = recordLockHolder(paths.ownerLock()) != 0;
    QObject::connect(&timer, &QTimer::timeout, &timer, [=] {
        if (!QFile::exists(file) || (owned && recordLockHolder(paths.ownerLock()) == 0))
            onGone();
    });
    timer.start(1s);
}

} // namespace korvel::sim
