#include "app/single_instance.h"
#include "base/alive.h"
#include "base/done.h"
#include "platform/qt/qt_scheduler.h"

#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>
#include <system_error>
#include <thread>
#include <tuple>
#include <utility>

namespace korvel::test {
namespace {

TEST(Done, ReportsOnTheMainThreadThatItWasDropped) {
    int calls = 0;
    std::thread other([done = Done<int>([&](const Result<int> &r) {
                           ++calls;
                           EXPECT_EQ(r.error().kind, ErrorKind::Dropped);
                           EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                       })]() mutable { const Done<int> taken = std::move(done); });
    other.join();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 1; }));
}

TEST(QtScheduler, WorkWaitsForAThreadAndIsLeftOutWhenThereIsNoneForSeconds) {
    int refusals = 0;
    QtScheduler scheduler(20, [&](std::function<void()> f) {
        if (refusals-- > 0)
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        return WorkerThreads::makeThread(std::move(f));
    });
    const auto run = [&](int refused) {
        int result = -1;
        refusals = refused;
        scheduler.background([] { return 7; }, [&](int end) { result = end; });
        EXPECT_EQ(result, -1); // never before the caller has gone on
        EXPECT_TRUE(QTest::qWaitFor([&] { return result >= 0; }));
        return result;
    };
    EXPECT_EQ(run(3), 7);
    const Instant begin = scheduler.now();
    EXPECT_EQ(run(1000000), 0);
    EXPECT_GE(scheduler.now() - begin, 5s);
    EXPECT_EQ(run(0), 7);
}

TEST(QtScheduler, SixtyFourJobsRunAtATimeAndTheOthersWait) {
    QtScheduler scheduler;
    std::atomic<int> running = 0;
    std::atomic<bool> met = false;
    int ended = 0;
    const Instant deadline = Clock::now() + 10s;
    const auto meetOthers = [&] {
        EXPECT_LE(++running, 64);
        for (; !met && Clock::now() < deadline; std::this_thread::yield())
            if (running == 64)
                met = true;
        --running;
        return true;
    };
    for (int i = 0; i < 200; ++i)
        scheduler.background(meetOthers, [&](bool) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            ++ended;
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended == 200; }, 20000));
    EXPECT_TRUE(met);
}

TEST(QtScheduler, ATimerMayBeCancelledByItsOwnCall) {
    QtScheduler scheduler;
    int periodic = 0, single = 0;
    Timer timer = scheduler.every(milliseconds(1), [&] {
        ++periodic;
        timer.cancel();
    });
    const Timer once = scheduler.after(milliseconds(1), [&] { ++single; });
    bool over = false;
    const Timer end = scheduler.after(milliseconds(20), [&] { over = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return over; }));
    EXPECT_EQ(std::pair(periodic, single), std::pair(1, 1));
}

/// One other instance.
struct FakeInstances final : RunningInstances {
    QList<qint64> others() override { return {7}; }
    void terminate(qint64) override {}
    bool isTerminated(qint64) override { return now >= exit; }
    void forceTerminate(qint64) override { forced = true; }

    Instant now, exit;
    bool forced = false;
};

TEST(SingleInstance, AnotherOneIsForcedToExitAfterThreeSeconds) {
    for (const auto &[exitsAfter, time, forced] :
         {std::tuple<milliseconds, milliseconds, bool>(0ms, 0ms, false), {250ms, 300ms, false}, {1h, 3000ms, true}}) {
        FakeInstances instances;
        instances.exit += exitsAfter;
        endOtherInstances(
            instances, [&](milliseconds by) { instances.now += by; }, [&] { return instances.now; });
        EXPECT_EQ(instances.now, Instant(time));
        EXPECT_EQ(instances.forced, forced);
    }
}

} // namespace
} // namespace korvel::test
