#include "platform/qt_scheduler.h"

#include <QCoreApplication>
#include <QTimer>

namespace korvel {

namespace {

/// Wide, not the core count: a program run may wait for a person.
constexpr int MOST_THREADS = 64;

std::shared_ptr<QTimer> makeTimer(milliseconds interval, bool once, UniqueFunction<void()> f) {
    // A timer may be cancelled, and so destroyed, by the very call that it makes.
    std::shared_ptr<QTimer> timer(new QTimer, [](QTimer *t) {
        t->stop();
        t->deleteLater();
    });
    timer->setSingleShot(once);
    timer->setInterval(interval);
    // Idle programs must not wake up on their own account: seconds-long intervals may fall together with others.
    timer->setTimerType(interval >= 1s ? Qt::CoarseTimer : Qt::PreciseTimer);
    auto shared = std::make_shared<UniqueFunction<void()>>(std::move(f));
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [shared] {
        const auto keep = shared;
        (*keep)();
    });
    timer->start();
    return timer;
}

} // namespace

QtScheduler::QtScheduler(int sp) : speed(sp), began(Clock::now()) { pool.setMaxThreadCount(MOST_THREADS); }

Instant QtScheduler::now() const { return began + (Clock::now() - began) * speed; }

Timer QtScheduler::after(milliseconds delay, UniqueFunction<void()> f) {
    return Timer(makeTimer(delay / speed, true, std::move(f)));
}

Timer QtScheduler::every(milliseconds period, UniqueFunction<void()> f) {
    return Timer(makeTimer(period / speed, false, std::move(f)));
}

void QtScheduler::runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) {
    struct Job {
        UniqueFunction<void()> work;
        UniqueFunction<void()> then;
    };
    auto job = std::make_shared<Job>(Job{std::move(work), std::move(then)});
    pool.start([job = std::move(job)]() mutable {
        job->work();
        job->work = nullptr;
        // The continuation leaves this thread whole, so that what it owns dies on the main thread.
        if (QCoreApplication *app = QCoreApplication::instance())
            QMetaObject::invokeMethod(
                app, [job = std::move(job)] { job->then(); }, Qt::QueuedConnection);
    });
}

bool QtScheduler::finishBackground() {
    pool.clear();
    return pool.waitForDone(0);
}

} // namespace korvel
