// The least-squares adjustment of generated networks of 1,000 and 10,000
// points: the whole solve with full statistics (standard errors, ellipses,
// redundancy numbers, snooping), as Process > Least-Squares runs it.
#include "adjust/network.h"
#include "adjust/solve.h"
#include "adjust/statistics.h"
#include "network_generator.h"

#include <benchmark/benchmark.h>

namespace {

using namespace tramline;

void solveWithStatistics(benchmark::State &state) {
    const adjust::LsqData data = bench::generatedNetwork(static_cast<int>(state.range(0)));
    int iterations = 0;
    double s0 = 0;
    for (auto _ : state) {
        adjust::Network network;
        adjust::Solution solution;
        if (!adjust::buildNetwork(data, network) || !adjust::solveNetwork(network, solution)) {
            state.SkipWithError("the generated network did not solve");
            break;
        }
        const adjust::NetworkStatistics statistics = adjust::networkStatistics(network, solution);
        benchmark::DoNotOptimize(statistics.redundancySum);
        iterations = solution.iterations;
        s0 = solution.s0;
    }
    state.counters["points"] = static_cast<double>(data.control.size() + data.adjust.size());
    state.counters["observations"] = static_cast<double>(data.observations.size());
    state.counters["iterations"] = iterations;
    state.counters["s0"] = s0;
}

BENCHMARK(solveWithStatistics)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
