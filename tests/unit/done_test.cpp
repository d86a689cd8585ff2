#include "platform/done.h"

#include "platform/alive.h"
#include "platform/qt_scheduler.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace korvel::test {
namespace {

TEST(Done, DroppedWithoutACallItReportsThatOnce) {
    int calls = 0;
    ErrorKind kind = ErrorKind::TimedOut;
    {
        Done<int> first([&](Result<int> r) {
            ++calls;
            kind = r.error().kind;
        });
        Done<int> second = std::move(first);
    }
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(kind, ErrorKind::Dropped);
}

TEST(Done, DroppedOnAnotherThreadItReportsOnTheMainThread) {
    QEventLoop loop;
    QThread *reportedOn = nullptr;
    {
        std::thread other([done = Done<int>([&](Result<int>) {
                               reportedOn = QThread::currentThread();
                               loop.quit();
                           })]() mutable { Done<int> taken = std::move(done); });
        other.join();
    }
    EXPECT_EQ(reportedOn, nullptr);
    loop.exec();
    EXPECT_EQ(reportedOn, QCoreApplication::instance()->thread());
}

TEST(QtScheduler, WorkRunsElsewhereAndItsContinuationHere) {
    QtScheduler scheduler;
    QEventLoop loop;
    QThread *workedOn = nullptr;
    QThread *continuedOn = nullptr;
    scheduler.background(
        [&workedOn] {
            workedOn = QThread::currentThread();
            return 7;
        },
        [&](int seven) {
            EXPECT_EQ(seven, 7);
            continuedOn = QThread::currentThread();
            loop.quit();
        });
    loop.exec();
    EXPECT_NE(workedOn, continuedOn);
    EXPECT_EQ(continuedOn, QCoreApplication::instance()->thread());
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

} // namespace
} // namespace korvel::test
