// Processing a generated job, from reading its file to the points written:
// 100,000 set-ups with 1,000,000 sideshots without adjustment, the same
// with the angle balance, and a 10,000-side traverse by the compass rule.
// Run alone under /usr/bin/time -v for the peak memory of one job:
//   bench_reduce --benchmark_filter=NoAdjust100k
// and the 11M-shot job with TRAMLINE_BENCH_LARGE=1 and
//   --benchmark_filter=NoAdjust1M
#include "base/format.h"
#include "crd/coordinate_file.h"
#include "raw/reader.h"
#include "reduce/processing.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <utility>

namespace {

namespace fs = std::filesystem;
using namespace tramline;

// A traverse running east-north-east, each set-up backsighting the last,
// with `sideshots` shots around every station.
// With `balanceShot` the last set-up also measures the closing direction.
std::string generateJob(int setups, int sideshots, bool balanceShot) {
    std::string out =
        "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\nSP,PN1,N 1000.0000,E 1000.0000,EL100.0000,--START\n"
        "SP,PN0,N 900.0000,E 1000.0000,EL100.0000,--BACKSIGHT\n";
    out.reserve(static_cast<size_t>(setups) * static_cast<size_t>(sideshots + 4) * 50);
    long shot = 1000000;
    for (int s = 1; s <= setups; ++s) {
        appendFormat(out, "OC,OP%d,N ,E ,EL,--\nBK,OP%d,BP%d,BS,BC0.0000\nLS,HI1.500,HR1.800\n", s,
                     s, s - 1);
        for (int i = 0; i < sideshots; ++i)
            appendFormat(out, "SS,OP%d,FP%ld,AR%d.%02d15,ZE89.%02d30,SD%.3f,--TOPO\n", s, ++shot,
                         (i * 37) % 360, i % 60, i % 60, 5.0 + i % 50);
        appendFormat(out, "TR,OP%d,FP%d,AR180.0%d00,ZE90.0000,SD%.3f,--TRAVERSE\n", s, s + 1, s % 2,
                     100.0 + s % 7);
    }
    if (balanceShot)
        appendFormat(out, "AB,OP%d,FP%d,AR180.0000,ZE90.0000,SD100.000,--CLOSING ANGLE\n", setups,
                     setups + 1);
    return out;
}

// Where the generated traverse ends without error: each set-up turns its
// angle right from the backsight, the first looking back due south.
std::pair<double, double> traverseEnd(int setups) {
    double north = 1000.0, east = 1000.0, back = 180.0;
    for (int s = 1; s <= setups; ++s) {
        const double ahead = std::fmod(back + 180.0 + (s % 2) / 60.0, 360.0);
        const double distance = 100.0 + s % 7;
        north += distance * std::cos(ahead * std::numbers::pi / 180.0);
        east += distance * std::sin(ahead * std::numbers::pi / 180.0);
        back = std::fmod(ahead + 180.0, 360.0);
    }
    return {north, east};
}

void runJob(benchmark::State &state, int setups, int sideshots, reduce::AdjustMethod method) {
    const bool balance = method == reduce::AdjustMethod::AngleBalance;
    const fs::path dir = fs::temp_directory_path() / "tramline-bench-reduce";
    fs::create_directories(dir);
    const fs::path job = dir / "job.rw5";
    {
        std::ofstream out(job, std::ios::binary | std::ios::trunc);
        out << generateJob(setups, sideshots, balance);
    }
    const auto [endNorth, endEast] = traverseEnd(setups);
    long records = 0;
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove(dir / "job.crd");
        SilentInteraction ui;
        crd::CrdContext context;
        crd::CoordinateFile coordinates(context);
        coordinates.open(dir / "job.crd");
        reduce::ProcessOptions options;
        options.method = method;
        options.workingFolder = dir;
        options.startPoint = "1";
        options.endPoint = std::to_string(setups + 1);
        // The closing point: where the error-free traverse ends, a little off.
        // Without its coordinates the adjusting jobs stop at the closure.
        options.closingPoint = {options.endPoint, endNorth + 0.05, endEast - 0.03, 100.0};
        if (balance) {
            options.angleBalance = true;
            options.referenceAzimuth = 60.0;
        }
        state.ResumeTiming();
        // Reading is part of the job: what the records cost in memory and
        // time is paid here, as the command line pays it.
        raw::RawFile file;
        raw::readRawFile(job, file);
        records = static_cast<long>(file.nodes.size());
        const auto result = reduce::processRaw(file, "job.rw5", coordinates, options, ui);
        benchmark::DoNotOptimize(result.pointsStored);
        state.PauseTiming();
        if (result.status != reduce::ProcessResult::Status::Done) {
            // The timer must stay paused after this: resuming it aborts.
            state.SkipWithError(result.error.c_str());
            break;
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * records);
}

void BM_NoAdjust100kSetups1MSideshots(benchmark::State &state) {
    runJob(state, static_cast<int>(state.range(0)), 10, reduce::AdjustMethod::None);
}
BENCHMARK(BM_NoAdjust100kSetups1MSideshots)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// The job ten times over (1M set-ups, 11M shots, 720 MB, about 3.6 GB at
// its peak): registered only when TRAMLINE_BENCH_LARGE is set, as it takes
// a minute and most of a small machine's memory.
[[maybe_unused]] const bool kLargeRegistered = [] {
    if (std::getenv("TRAMLINE_BENCH_LARGE") == nullptr)
        return false;
    benchmark::RegisterBenchmark(
        "BM_NoAdjust1MSetups10MSideshots",
        [](benchmark::State &state) { runJob(state, 1000000, 10, reduce::AdjustMethod::None); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1);
    return true;
}();

void BM_AngleBalance100kSetups1MSideshots(benchmark::State &state) {
    runJob(state, static_cast<int>(state.range(0)), 10, reduce::AdjustMethod::AngleBalance);
}
BENCHMARK(BM_AngleBalance100kSetups1MSideshots)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void BM_Compass10kSides(benchmark::State &state) {
    runJob(state, 10000, 0, reduce::AdjustMethod::Compass);
}
BENCHMARK(BM_Compass10kSides)->Unit(benchmark::kMillisecond)->Iterations(2);

} // namespace

BENCHMARK_MAIN();
