#include "platform/qt/qt_scheduler.h"

#include "base/log.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimer>
#include <utility>

namespace korvel {

namespace {

/// Not the core count: a program run may wait for user input.
constexpr size_t MAX_THREADS = 64;
/// How long, and how often, to retry when the system cannot create a thread.
constexpr milliseconds THREAD_TIMEOUT = 5s;
constexpr milliseconds THREAD_RETRY_INTERVAL = 250ms;

std::shared_ptr<QTimer> makeTimer(milliseconds interval, bool once, UniqueFunction<void()> f) {
    // A timer may be destroyed in its own callback.
    std::shared_ptr<QTimer> timer(new QTimer, [](QTimer *t) {
        t->stop();
        t->deleteLater();
    });
    timer->setSingleShot(once);
    timer->setInterval(interval);
    // Coarse timers may coincide with others, which saves wake-ups.
    timer->setTimerType(!once && interval >= 1s ? Qt::CoarseTimer : Qt::PreciseTimer);
    auto shared = std::make_shared<UniqueFunction<void()>>(std::move(f));
    QObject::connect(timer.get(), &QTimer::timeout, timer.get(), [shared] {
        const auto keep = shared;
        (*keep)();
    });
    timer->start();
    return timer;
}

} // namespace

QtScheduler::QtScheduler(int sp, WorkerThreads::Make makeThread)
    : speed(sp), began(Clock::now()), workers(MAX_THREADS, std::move(makeThread)) {}

Instant QtScheduler::now() const { return began + (Clock::now() - began) * speed; }

Timer QtScheduler::after(milliseconds delay, UniqueFunction<void()> f) {
    return Timer(makeTimer(delay / speed, true, std::move(f)));
}

Timer QtScheduler::every(milliseconds period, UniqueFunction<void()> f) {
    return Timer(makeTimer(period / speed, false, std::move(f)));
}

void QtScheduler::beforeWaiting(UniqueFunction<void()> f) {
    atEndOfTurn.push_back(std::move(f));
    if (endOfTurn)
        return;
    QAbstractEventDispatcher *loop = QAbstractEventDispatcher::instance();
    endOfTurn = QObject::connect(loop, &QAbstractEventDispatcher::aboutToBlock, loop, alive.guard([this] {
        for (auto &f : std::exchange(atEndOfTurn, {}))
            f();
    }));
}

void QtScheduler::runInBackground(UniqueFunction<void()> work, UniqueFunction<void()> then) {
    // The continuation moves to the main thread, so that its captures are destroyed there.
    auto onMainThread = [join = alive.guard([this] { workers.join(); }), then = std::move(then)]() mutable {
        join();
        then();
    };
    auto done = [onMainThread = std::make_shared<decltype(onMainThread)>(std::move(onMainThread))]() mutable {
        if (QCoreApplication *app = QCoreApplication::instance())
            QMetaObject::invokeMethod(
                app, [onMainThread = std::move(onMainThread)] { (*onMainThread)(); }, Qt::QueuedConnection);
    };
    WorkerThreads::Job job{std::move(work), std::move(done)};
    if (waiting.empty() && workers.start(job))
        return;
    waiting.push_back({std::move(job), now() + THREAD_TIMEOUT});
    if (waiting.size() == 1)
        retry = every(THREAD_RETRY_INTERVAL, [this] { startWaiting(); });
}

void QtScheduler::startWaiting() {
    while (!waiting.empty()) {
        if (!workers.start(waiting.front().job)) {
            if (now() < waiting.front().until)
                return;
            log(QStringLiteral("[tray] no thread for background work, which is left out"));
            waiting.front().job.work = nullptr;
            waiting.front().job.done();
        }
        waiting.pop_front();
    }
    retry.cancel();
}

bool QtScheduler::finishBackground() {
    waiting.clear();
    return workers.finish();
}

} // namespace korvel
