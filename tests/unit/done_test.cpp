#include "app/single_instance.h"
#include "base/alive.h"
#include "base/done.h"
#include "platform/qt/qt_scheduler.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace korvel::test {
namespace {

TEST(Done, DroppedWithoutACallItReportsThatOnceOnTheMainThread) {
    QEventLoop loop;
    QThread *reportedOn = nullptr;
    int calls = 0;
    std::thread other([done = Done<int>([&](const Result<int> &r) {
                           ++calls;
                           EXPECT_EQ(r.error().kind, ErrorKind::Dropped);
                           reportedOn = QThread::currentThread();
                           loop.quit();
                       })]() mutable { const Done<int> taken = std::move(done); });
    other.join();
    EXPECT_EQ(calls, 0);
    loop.exec();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(reportedOn, QCoreApplication::instance()->thread());
}

TEST(QtScheduler, WorkWaitsForAThreadAndIsLeftOutWhenThereIsNoneForSeconds) {
    int refusals = 3;
    QtScheduler scheduler(20, [&](std::function<void()> f) {
        if (refusals-- > 0)
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        return WorkerThreads::makeThread(std::move(f));
    });
    QEventLoop loop;
    std::vector<int> ends;
    const auto run = [&](int value) {
        scheduler.background([value] { return value; },
                             [&](int end) {
                                 ends.push_back(end);
                                 loop.quit();
                             });
        EXPECT_TRUE(ends.empty()); // never before the caller has gone on
        loop.exec();
        return std::exchange(ends, {});
    };
    EXPECT_EQ(run(7), std::vector{7});
    refusals = 1000000;
    const Instant begin = scheduler.now();
    EXPECT_EQ(run(7), std::vector{0});
    EXPECT_GE(scheduler.now() - begin, 5s);
    refusals = 0;
    EXPECT_EQ(run(8), std::vector{8});
}

TEST(QtScheduler, SixtyFourProgramsMayWaitForAPersonAtATime) {
    QtScheduler scheduler;
    QEventLoop loop;
    std::atomic<int> running = 0;
    int met = 0, ended = 0;
    const Instant end = Clock::now() + 10s;
    const auto meetOthers = [&] {
        ++running;
        while (running < 64 && Clock::now() < end)
            std::this_thread::yield();
        return running == 64;
    };
    for (int i = 0; i < 64; ++i)
        scheduler.background(meetOthers, [&](bool all) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            met += all;
            if (++ended == 64)
                loop.quit();
        });
    loop.exec();
    EXPECT_EQ(met, 64);
}

TEST(WorkerThreads, JobsBeyondTheLastThreadWaitForOneThatIsFree) {
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> done = 0;
    WorkerThreads workers(2, WorkerThreads::makeThread);
    for (int i = 0; i < 500; ++i) {
        WorkerThreads::Job job{[&] {
                                   most = std::max<int>(most, ++running);
                                   --running;
                               },
                               [&] { ++done; }};
        ASSERT_TRUE(workers.start(job));
    }
    while (done < 500)
        std::this_thread::yield();
    EXPECT_LE(most, 2);
}

TEST(QtScheduler, ATimerMayBeCancelledByItsOwnCall) {
    QtScheduler scheduler;
    QEventLoop loop;
    int calls = 0;
    Timer timer;
    timer = scheduler.every(milliseconds(1), [&] {
        ++calls;
        timer.cancel();
        loop.quit();
    });
    loop.exec();
    int once = 0;
    const Timer single = scheduler.after(milliseconds(1), [&] { ++once; });
    const Timer end = scheduler.after(milliseconds(20), [&] { loop.quit(); });
    loop.exec();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(once, 1);
}

/// Copies that follow the polite request after some time, or never.
struct FakeCopies final : RunningInstances {
    QList<qint64> others() override { return goneAt.empty() ? QList<qint64>() : QList<qint64>(ids); }
    void terminate(qint64 copy) override { asked.append(copy); }
    bool isTerminated(qint64 copy) override { return now >= goneAt.at(copy); }
    void forceTerminate(qint64 copy) override { forced.append(copy); }

    void add(qint64 id, milliseconds after) {
        ids.append(id);
        goneAt[id] = now + after;
    }
    Instant now = Instant(1h);
    QList<qint64> ids;
    std::map<qint64, Instant> goneAt;
    QList<qint64> asked;
    QList<qint64> forced;

    milliseconds run() {
        const Instant start = now;
        endOtherInstances(
            *this, [this](milliseconds by) { now += by; }, [this] { return now; });
        return std::chrono::duration_cast<milliseconds>(now - start);
    }
};

TEST(SingleInstance, CopiesAreWaitedForNoLongerThanNeededAndForcedAfterThreeSeconds) {
    FakeCopies copies;
    EXPECT_EQ(copies.run(), 0ms);
    copies.add(7, 250ms);
    copies.add(8, 50ms);
    EXPECT_EQ(copies.run(), 300ms);
    EXPECT_TRUE(copies.forced.isEmpty());
    copies.add(9, 1h);
    EXPECT_EQ(copies.run(), 3000ms);
    EXPECT_EQ(copies.forced, QList<qint64>{9});
}

} // namespace
} // namespace korvel::test
