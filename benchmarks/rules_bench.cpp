// Measures the rules that run at every poll, by the number of devices and alarms in the report.

#include "app/model/deployment.h"
#include "app/model/situation.h"
#include "benchmarks/report.h"
#include "e2ee/pair_view.h"
#include "status/health.h"
#include "status/status_view.h"
#include "ui/menu/menu_view.h"

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace korvel::bench {
namespace {

constexpr Instant NOW = Instant(1h);

/// Computed once, because each benchmark is started several times.
const QJsonObject &responseOf(int devices) {
    static QMap<int, QJsonObject> made;
    if (!made.contains(devices))
        made.insert(devices, health(devices));
    return *made.constFind(devices);
}

/// A tray's state after a response with that many devices.
struct Bench {
    explicit Bench(int devices) : response(responseOf(devices)) {
        applyHealth(state, response, {.now = NOW, .bound = true, .username = u"ann"_s});
    }
    Situation situation() const {
        return {.state = state,
                .isCn = config.IS_CN,
                .version = config.VERSION,
                .timing = timingOf(state.health, NOW),
                .bound = true,
                .plistExists = true,
                .server = {}};
    }
    const FixedConfig config = makeFixedConfig(builtDeployment(), {});
    const QJsonObject &response;
    TrayState state;
};

void ApplyHealth(benchmark::State &run) {
    Bench bench(static_cast<int>(run.range()));
    for ([[maybe_unused]] const auto &turn : run)
        applyHealth(bench.state, bench.response, {.now = NOW, .bound = true, .username = u"ann"_s});
    run.SetComplexityN(run.range());
}

void StatusLine(benchmark::State &run) {
    const Bench bench(static_cast<int>(run.range()));
    for ([[maybe_unused]] const auto &turn : run)
        benchmark::DoNotOptimize(statusLine(bench.situation()));
    run.SetComplexityN(run.range());
}

void WholeMenu(benchmark::State &run) {
    const Bench bench(static_cast<int>(run.range()));
    for ([[maybe_unused]] const auto &turn : run)
        benchmark::DoNotOptimize(menuView(bench.situation()));
    run.SetComplexityN(run.range());
}

void ResponseToMenu(benchmark::State &run) {
    Bench bench(static_cast<int>(run.range()));
    for ([[maybe_unused]] const auto &turn : run) {
        applyHealth(bench.state, bench.response, {.now = NOW, .bound = true, .username = u"ann"_s});
        benchmark::DoNotOptimize(statusLine(bench.situation()));
        benchmark::DoNotOptimize(menuView(bench.situation()));
    }
    run.SetComplexityN(run.range());
}

void PairingView(benchmark::State &run) {
    const QJsonObject report{{u"state"_s, u"pending"_s}, {u"pair"_s, QJsonObject{{u"show"_s, u"482 913"_s}}}};
    PairState pairing;
    for ([[maybe_unused]] const auto &turn : run)
        benchmark::DoNotOptimize(pairView(report, pairing, {.bound = true}));
}

void lengths(benchmark::internal::Benchmark *b) {
    for (const int devices : {1, 10, 100, 1000, 10000})
        b->Arg(devices);
    b->Unit(benchmark::kMicrosecond)->Complexity(benchmark::oN);
}

BENCHMARK(ApplyHealth)->Apply(lengths);
BENCHMARK(StatusLine)->Apply(lengths);
BENCHMARK(WholeMenu)->Apply(lengths);
BENCHMARK(ResponseToMenu)->Apply(lengths);
BENCHMARK(PairingView)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace korvel::bench

BENCHMARK_MAIN();
