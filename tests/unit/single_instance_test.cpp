#include "app/single_instance.h"

#include <gtest/gtest.h>
#include <map>

namespace korvel::test {
namespace {

/// Copies that follow the polite request after some time, or never.
struct FakeCopies final : RunningCopies {
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
        endOtherCopies(
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
