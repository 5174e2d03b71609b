// Speed of the conversions reduction runs by the million: transverse
// Mercator forward and inverse, and geoid separations from an open grid.
// Each iteration converts one million points; the time per iteration is the
// figure to compare with PROJ's cs2cs on the same points (scripts/bench).
#include "geodesy/geoid_grid.h"
#include "geodesy/projection.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

using namespace tramline::geodesy;

namespace {

constexpr int kPoints = 1000000;

struct Point {
    double latitude, longitude;
};

// Points over a UTM zone's width and a wide latitude band, fixed seed.
const std::vector<Point> &points() {
    static const std::vector<Point> p = [] {
        std::mt19937 random(42);
        std::uniform_real_distribution<double> latitude(-60.0, 60.0), longitude(6.0, 12.0);
        std::vector<Point> v(kPoints);
        for (auto &point : v)
            point = {latitude(random), longitude(random)};
        return v;
    }();
    return p;
}

CoordinateSystem utm32() {
    CoordinateSystem cs;
    cs.ellipsoidIndex = kGrs1980;
    cs.parameters.centralMeridian = 9;
    cs.parameters.scaleFactor = 0.9996;
    cs.parameters.falseEasting = 500000;
    return cs;
}

void TmForward(benchmark::State &state) {
    Projection projection;
    projection.open(utm32());
    const auto &p = points();
    for (auto _ : state) {
        double sum = 0;
        for (const auto &point : p) {
            double n = 0, e = 0;
            projection.forward(point.latitude, point.longitude, n, e);
            sum += n + e;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(TmForward)->Unit(benchmark::kMillisecond);

void TmInverse(benchmark::State &state) {
    Projection projection;
    projection.open(utm32());
    std::vector<Point> grid(points().size());
    for (std::size_t i = 0; i < grid.size(); ++i)
        projection.forward(points()[i].latitude, points()[i].longitude, grid[i].latitude,
                           grid[i].longitude);
    for (auto _ : state) {
        double sum = 0;
        for (const auto &g : grid) {
            double lat = 0, lon = 0;
            projection.inverse(g.latitude, g.longitude, lat, lon);
            sum += lat + lon;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(TmInverse)->Unit(benchmark::kMillisecond);

void GeoidSeparation(benchmark::State &state) {
    // A world grid at 15 minutes, the size of EGM96's.
    GeoidGrid grid({-90, 0, 90, 360}, 721, 1441);
    for (int r = 0; r < grid.rows(); ++r)
        for (int c = 0; c < grid.columns(); ++c)
            grid.setNode(r, c, std::sin(r * 0.01) * 50 + std::cos(c * 0.02) * 30);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> latitude(-90.0, 90.0), longitude(-180.0, 180.0);
    std::vector<Point> p(kPoints);
    for (auto &point : p)
        point = {latitude(random), longitude(random)};
    for (auto _ : state) {
        double sum = 0;
        for (const auto &point : p) {
            double n = 0;
            grid.separation(point.latitude, point.longitude, n);
            sum += n;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kPoints);
}
BENCHMARK(GeoidSeparation)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
