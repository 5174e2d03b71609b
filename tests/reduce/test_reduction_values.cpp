// Stadia, earth curvature and refraction of one measurement against figures
// worked out independently: the stadia closed forms, and the curved-earth
// geometry built point by point on a circle of the earth's radius.
#include "reduce/measurement.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tramline::reduce;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kToRadians = kPi / 180.0;

// The earth the reduction works on: radius in either unit, and the
// refraction of 1.9e-07 degrees per foot of horizontal distance expressed
// as the usual coefficient k (refraction angle = k x half central angle).
struct Earth {
    double radius;
    double k;
};
Earth earth(bool metres) {
    const double radius = metres ? 12756274.0 / 2.0 : 41812000.0 / 2.0;
    const double feetPerUnit = metres ? 3.280833333333 : 1.0;
    return {radius, 1.9e-07 * feetPerUnit * kToRadians * 2.0 * radius};
}

// Instrument at the top of a circle of radius R; the straight line to the
// target leaves at the zenith read plus the refraction angle. The target's
// height over the instrument's level circle, and the chord on that circle
// under it.
struct Figures {
    double horizontal, vertical;
};
Figures curvedEarth(double slope, double zenithDegrees, bool metres) {
    const Earth e = earth(metres);
    const double z = zenithDegrees * kToRadians;
    const double halfCentral = slope * std::sin(z) / (2.0 * e.radius);
    const double chordZenith = z + e.k * halfCentral;
    const double x = slope * std::sin(chordZenith);
    const double y = e.radius + slope * std::cos(chordZenith);
    const double central = std::atan2(x, y);
    return {2.0 * e.radius * std::sin(central / 2.0), std::hypot(x, y) - e.radius};
}

TEST(ReductionValues, StadiaAndPlainSights) {
    struct Row {
        double slope, zenith, scale;
        bool stadia;
        double horizontal, vertical; // by hand
    };
    const double s30 = std::sqrt(3.0) / 2.0;
    const Row rows[] = {
        // Plain: D sin Z and D cos Z; the scale touches the horizontal only.
        {100.0, 90.0, 1.0, false, 100.0, 0.0},
        {100.0, 60.0, 1.0, false, 100.0 * s30, 50.0},
        {100.0, 120.0, 1.0, false, 100.0 * s30, -50.0},
        {250.0, 45.0, 0.9996, false, 250.0 * std::sqrt(0.5) * 0.9996, 250.0 * std::sqrt(0.5)},
        // Stadia: D sin^2 Z and D sin Z cos Z.
        {100.0, 90.0, 1.0, true, 100.0, 0.0},
        {100.0, 60.0, 1.0, true, 75.0, 100.0 * s30 * 0.5},
        {100.0, 120.0, 1.0, true, 75.0, -100.0 * s30 * 0.5},
        {320.0, 45.0, 1.0, true, 160.0, 160.0},
        {320.0, 135.0, 1.0, true, 160.0, -160.0},
        {200.0, 95.0, 1.0, true, 200.0 * std::pow(std::sin(95.0 * kToRadians), 2),
         200.0 * std::sin(95.0 * kToRadians) * std::cos(95.0 * kToRadians)},
    };
    for (const bool metres : {false, true}) {
        for (const auto &r : rows) {
            MeasurementOptions o;
            o.scaleFactor = r.scale;
            o.stadia = r.stadia;
            o.metres = metres;
            const ReducedMeasurement m = reduceMeasurement(r.slope, r.zenith * kToRadians, o);
            EXPECT_NEAR(m.horizontal, r.horizontal, 1e-9)
                << r.slope << " at " << r.zenith << (r.stadia ? " stadia" : "");
            EXPECT_NEAR(m.vertical, r.vertical, 1e-9)
                << r.slope << " at " << r.zenith << (r.stadia ? " stadia" : "");
        }
    }
}

// A level sight rises over the curved earth by (1 - k) D^2 / 2R: the
// figures a surveyor remembers, about 0.068 m at a kilometre.
TEST(ReductionValues, LevelSightRisesOverTheCurvedEarth) {
    struct Row {
        double slope;
        bool metres;
        double rise; // metres or feet, to the figures given
        double tolerance;
    };
    const Row rows[] = {
        {1000.0, true, 0.068, 0.001},
        {3000.0, true, 0.608, 0.001},
        {1000.0, false, 0.0206, 0.0001}, // feet: about 0.021 ft at 1000 ft
        {5280.0, false, 0.574, 0.0005},  // a mile: a little over half a foot
    };
    for (const auto &r : rows) {
        MeasurementOptions o;
        o.curvature = true;
        o.metres = r.metres;
        const ReducedMeasurement m = reduceMeasurement(r.slope, 90.0 * kToRadians, o);
        const Earth e = earth(r.metres);
        EXPECT_NEAR(m.vertical, r.rise, r.tolerance) << r.slope;
        EXPECT_NEAR(m.vertical, (1.0 - e.k) * r.slope * r.slope / (2.0 * e.radius), 1e-6)
            << r.slope;
        EXPECT_NEAR(m.horizontal, r.slope, 1e-3) << r.slope;
    }
    EXPECT_NEAR(earth(true).k, 0.14, 0.005);
    EXPECT_NEAR(earth(false).k, 0.14, 0.005);
}

// Any zenith and distance: the height difference is D cos Z plus the
// curvature-and-refraction rise of its horizontal part, and both results
// match the curved-earth geometry.
TEST(ReductionValues, CurvatureAndRefractionAtEveryZenith) {
    const double zeniths[] = {60.0, 80.0, 88.5, 90.0, 91.25, 100.0, 120.0};
    const double distances[] = {150.0, 1000.0, 3000.0, 8000.0};
    for (const bool metres : {true, false}) {
        const Earth e = earth(metres);
        for (const double zenith : zeniths) {
            for (const double slope : distances) {
                MeasurementOptions o;
                o.curvature = true;
                o.metres = metres;
                const ReducedMeasurement m = reduceMeasurement(slope, zenith * kToRadians, o);
                const Figures f = curvedEarth(slope, zenith, metres);
                const double z = zenith * kToRadians;
                const double levelPart = slope * std::sin(z);
                const double closedForm =
                    slope * std::cos(z) + (1.0 - e.k) * levelPart * levelPart / (2.0 * e.radius);
                // Third-order terms: D (D / 2R)^2, under 2 mm at 8 km.
                const double tolerance = 1e-6 + 2.0 * slope * std::pow(slope / e.radius, 2);
                EXPECT_NEAR(m.vertical, closedForm, tolerance)
                    << slope << (metres ? " m" : " ft") << " at " << zenith;
                EXPECT_NEAR(m.vertical, f.vertical, tolerance)
                    << slope << (metres ? " m" : " ft") << " at " << zenith;
                EXPECT_NEAR(m.horizontal, f.horizontal, tolerance)
                    << slope << (metres ? " m" : " ft") << " at " << zenith;
            }
        }
    }
}

// The same sight in feet and in metres is one sight: the corrections agree
// once converted (to the small difference of the two earth diameters).
TEST(ReductionValues, FeetAndMetresAgree) {
    const double feetPerMetre = 3.280833333333;
    for (const double zenith : {85.0, 90.0, 97.0}) {
        MeasurementOptions o;
        o.curvature = true;
        o.metres = true;
        const ReducedMeasurement m = reduceMeasurement(2000.0, zenith * kToRadians, o);
        o.metres = false;
        const ReducedMeasurement f =
            reduceMeasurement(2000.0 * feetPerMetre, zenith * kToRadians, o);
        EXPECT_NEAR(f.vertical / feetPerMetre, m.vertical, 0.0005) << zenith;
        EXPECT_NEAR(f.horizontal / feetPerMetre, m.horizontal, 0.0005) << zenith;
    }
}

} // namespace
