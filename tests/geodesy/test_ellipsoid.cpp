#include "geodesy/ellipsoid.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tramline::geodesy;

TEST(Ellipsoid, TableKeepsStoredFlattenings) {
    struct Row {
        int index;
        const char *name;
        double a, f;
    };
    const Row rows[] = {
        {0, "Airy 1830", 6377563.396, 0.00334085064038},
        {1, "Modified Airy", 6377340.189, 0.00334085064038},
        {5, "Bessel Modified", 6377492.018, 0.0033427731821748},
        {14, "Everest(ED - W.Malaysia & Singapore)", 6377304.063, 0.00332444929666},
        {19, "GRS 1980", 6378137.0, 0.00335281068118},
        {21, "Hough 1960", 6378270.0, 0.003367003367},
        {22, "International 1924/Hayford", 6378388.0, 0.003367003367},
        {27, "WGS 84", 6378137.0, 0.00335281066475},
    };
    for (const auto &r : rows) {
        const Ellipsoid e = ellipsoidAt(r.index);
        EXPECT_EQ(e.name, r.name);
        EXPECT_EQ(e.a, r.a);
        EXPECT_EQ(e.f, r.f) << "flattening must be the stored value, bit for bit";
    }
    // Published semi-minor axes and eccentricity.
    EXPECT_NEAR(ellipsoidAt(0).b, 6356256.909, 1e-3);
    EXPECT_NEAR(ellipsoidAt(kWgs84).b, 6356752.3142, 1e-4);
    EXPECT_NEAR(ellipsoidAt(kWgs84).e, 0.0818191908426, 1e-12);
    // The shared values are shared exactly.
    EXPECT_EQ(ellipsoidAt(12).f, ellipsoidAt(13).f);
    EXPECT_EQ(ellipsoidAt(13).f, ellipsoidAt(14).f);
}

TEST(Ellipsoid, OutsideTheTableIsTheSystemsOwn) {
    for (int index : {-1, 28, 1000}) {
        const Ellipsoid e = ellipsoidAt(index, 6378000.0, 1.0 / 300.0);
        EXPECT_EQ(e.name, "User Defined");
        EXPECT_EQ(e.a, 6378000.0);
        EXPECT_DOUBLE_EQ(e.inverseFlattening, 300.0);
    }
    const Ellipsoid sphere = ellipsoidAt(-1, 6371000.0, 0.0);
    EXPECT_EQ(sphere.inverseFlattening, 0.0);
    EXPECT_EQ(sphere.e, 0.0);
    EXPECT_EQ(sphere.b, sphere.a);
    EXPECT_DOUBLE_EQ(sphere.primeVerticalRadius(0.7), 6371000.0);
    EXPECT_DOUBLE_EQ(sphere.meridianRadius(0.7), 6371000.0);
}

TEST(Ellipsoid, RadiiOfCurvature) {
    // WGS 84 values at the equator and the pole: N = a, M = a(1 - e^2);
    // at the pole both are a^2 / b.
    const Ellipsoid e = ellipsoidAt(kWgs84);
    EXPECT_NEAR(e.primeVerticalRadius(0), 6378137.0, 1e-6);
    EXPECT_NEAR(e.meridianRadius(0), 6335439.327, 1e-3);
    EXPECT_NEAR(e.primeVerticalRadius(M_PI / 2), 6399593.626, 1e-3);
    EXPECT_NEAR(e.meridianRadius(M_PI / 2), 6399593.626, 1e-3);
}

TEST(Ellipsoid, LookupByNameAndParameters) {
    EXPECT_EQ(findEllipsoidByName("WGS_1984"), kWgs84);
    EXPECT_EQ(findEllipsoidByName("wgs 84"), kWgs84);
    EXPECT_EQ(findEllipsoidByName("International_1924"), 22);
    EXPECT_EQ(findEllipsoidByName("International 1924"), 22);
    EXPECT_EQ(findEllipsoidByName("Australian National Spheroid"), 3);
    EXPECT_EQ(findEllipsoidByName("Clarke_1880_RGS"), 7);
    EXPECT_EQ(findEllipsoidByName("Nonesuch"), -1);
    EXPECT_EQ(findEllipsoidByName(""), -1);
    // GRS 1980 and WGS 84 differ only in the eleventh decimal of f.
    EXPECT_EQ(findEllipsoidByParameters(6378137.0, 1 / 298.257222101), kGrs1980);
    EXPECT_EQ(findEllipsoidByParameters(6378137.0, 1 / 298.257223563), kWgs84);
    EXPECT_EQ(findEllipsoidByParameters(6378137.5, 1 / 298.257223563), -1);
}
