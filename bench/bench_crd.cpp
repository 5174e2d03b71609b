// Speed of the coordinate store on files of 100,000 points: writing one by
// one (numeric, alphanumeric), the bulk write, random reads by name and a
// full walk. Goals: the bulk write of 100,000 alphanumeric points and the
// full walk under a second each, reads by name above 100,000 a second.
#include "crd/coordinate_file.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <unistd.h>

using namespace tramline::crd;

namespace {

constexpr int kPoints = 100000;

std::filesystem::path scratch(const char *name) {
    return std::filesystem::temp_directory_path() /
           ("tramline-bench-" + std::to_string(::getpid()) + "-" + name + ".crd");
}

std::vector<CrdPoint> randomAlphanumericPoints(int count, unsigned seed) {
    static const char kChars[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::mt19937 random(seed);
    std::vector<CrdPoint> points(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        std::string name;
        for (int j = 0; j < 7; ++j)
            name += kChars[random() % 36];
        points[static_cast<std::size_t>(i)].set(5000.0 + i, 10000.0 + i, 100.0, name, "TOPO");
    }
    return points;
}

// An alphanumeric file of 100,000 random names, made once.
const std::filesystem::path &alphanumericFile() {
    static const std::filesystem::path path = [] {
        const auto p = scratch("alpha");
        CoordinateFile file;
        file.open(p, Create::Always, kFormatAlphanumeric);
        file.writePoints(randomAlphanumericPoints(kPoints, 1));
        return p;
    }();
    return path;
}

void BM_NumericWriteOneByOne(benchmark::State &state) {
    const auto path = scratch("numeric");
    for (auto _ : state) {
        CoordinateFile file;
        file.open(path, Create::Always, kFormatNumeric);
        CrdPoint p;
        // Point numbers stop at 99,999: the last write replaces point 1.
        for (int i = 0; i < kPoints; ++i) {
            p.set(5000.0 + i, 10000.0 + i, 100.0, std::to_string(i % 99999 + 1), "TOPO");
            file.writePoint(p, Verbosity::Quiet);
        }
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
    std::filesystem::remove(path);
}
BENCHMARK(BM_NumericWriteOneByOne)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_AlphanumericWriteOneByOne(benchmark::State &state) {
    const auto path = scratch("one-by-one");
    const auto points = randomAlphanumericPoints(static_cast<int>(state.range(0)), 2);
    for (auto _ : state) {
        CoordinateFile file;
        file.open(path, Create::Always, kFormatAlphanumeric);
        for (const auto &p : points)
            file.writePoint(p, Verbosity::Quiet);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    std::filesystem::remove(path);
}
// Each insert moves the tail of the file: the time grows with the square
// of the count, which is why importers use the bulk write.
BENCHMARK(BM_AlphanumericWriteOneByOne)
    ->Arg(10000)
    ->Arg(kPoints)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

void BM_AlphanumericBulkWrite(benchmark::State &state) {
    const auto path = scratch("bulk");
    const auto points = randomAlphanumericPoints(kPoints, 2);
    for (auto _ : state) {
        CoordinateFile file;
        file.open(path, Create::Always, kFormatAlphanumeric);
        file.writePoints(points, Verbosity::Quiet);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
    std::filesystem::remove(path);
}
BENCHMARK(BM_AlphanumericBulkWrite)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_ReadByName(benchmark::State &state) {
    const auto points = randomAlphanumericPoints(kPoints, 1);
    CoordinateFile file;
    file.open(alphanumericFile());
    std::mt19937 random(5);
    CrdPoint p;
    long found = 0;
    for (auto _ : state) {
        found += file.readPoint(points[random() % points.size()].name, p, PointSearch::Exact,
                                Verbosity::Quiet)
                     ? 1
                     : 0;
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["found"] = static_cast<double>(found) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_ReadByName)->Iterations(kPoints);

void BM_Walk(benchmark::State &state) {
    CoordinateFile file;
    file.openForReading(alphanumericFile());
    CrdPoint p;
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (file.setCurrentIndex(-1); file.readNext(p);)
            ++count;
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_Walk)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_NumericWalk(benchmark::State &state) {
    const auto path = scratch("numeric-walk");
    {
        CoordinateFile file;
        file.open(path, Create::Always, kFormatNumeric);
        CrdPoint p;
        for (int i = 1; i <= 99999; ++i) {
            p.set(i, i, i, std::to_string(i));
            file.writePoint(p, Verbosity::Quiet);
        }
    }
    CoordinateFile file;
    file.openForReading(path);
    CrdPoint p;
    long count = 0;
    for (auto _ : state) {
        count = 0;
        for (file.setCurrentIndex(-1); file.readNext(p);)
            ++count;
    }
    state.SetItemsProcessed(state.iterations() * count);
    std::filesystem::remove(path);
}
BENCHMARK(BM_NumericWalk)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::error_code ec;
    std::filesystem::remove(alphanumericFile(), ec);
    return 0;
}
