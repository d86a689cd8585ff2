#include "journey/journey.h"

#include <sys/resource.h>

namespace korvel::test {
namespace {

/// The most memory that this process has held so far, in MiB.
double peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

TEST_F(Journey, ABrokenAnswerCountsAsNoAnswerAndBlocksNothing) {
    ASSERT_NO_FATAL_FAILURE(startConnected());
    const double before = peakMemory();
    for (const QString &mode :
         {u"truncate"_s, u"huge"_s, u"wrong-types"_s, u"deep"_s, u"not-utf8"_s, u"drip"_s, u"array"_s, u"html"_s,
          u"garbage"_s, u"not-http"_s, u"silent"_s, u"close"_s, u"reset"_s}) {
        breakAgent({{u"mode"_s, mode}});
        ASSERT_TRUE(eventually([&] { return !item.icon.on; })) << mode.toStdString();
        int turns = 0; // the main thread goes on meanwhile
        const Timer beat = scheduler.every(50ms, [&turns] { ++turns; });
        ASSERT_TRUE(eventually([&] { return turns >= 5; }, std::chrono::seconds(2))) << mode.toStdString();
        home.setScenario({});
        ASSERT_TRUE(showsSoon(CONNECTED)) << mode.toStdString();
    }
    // A response may grow to 512 KiB before it is refused, and a buffer doubles as it grows.
    EXPECT_LT(peakMemory() - before, 64);
}

TEST_F(Journey, AnAnswerJustInTimeCountsAndALateOneDoesNot) {
    breakAgent({{u"delayMs"_s, 1200}});
    ASSERT_NO_FATAL_FAILURE(startConnected());
    breakAgent({{u"delayMs"_s, 2600}});
    ASSERT_TRUE(eventually([&] { return !item.icon.on; }));
}

} // namespace
} // namespace korvel::test
