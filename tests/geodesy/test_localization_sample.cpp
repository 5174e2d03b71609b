// A real GPS job: positions with the grid coordinates the field software
// gave them (Polish 2000 zone 6). Four points fitted must predict the rest.
#include "../support/test_support.h"
#include "geodesy/datum_shift.h"
#include "geodesy/localization.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>

using namespace tramline::geodesy;

namespace {

std::string between(const std::string &text, const std::string &tag, std::size_t from = 0) {
    const std::string open = "<" + tag + ">", close = "</" + tag + ">";
    const std::size_t start = text.find(open, from);
    if (start == std::string::npos)
        return {};
    const std::size_t end = text.find(close, start);
    return end == std::string::npos ? std::string{}
                                    : text.substr(start + open.size(), end - start - open.size());
}

// The reduced points holding both a WGS 84 position and grid coordinates.
std::map<std::string, AlignmentPoint> reducedPoints(const std::string &file) {
    const std::string text = tramline::test::slurp(file);
    std::map<std::string, AlignmentPoint> points;
    std::size_t at = text.find("<Reductions>");
    while (at != std::string::npos) {
        at = text.find("<Point>", at);
        if (at == std::string::npos)
            break;
        const std::size_t end = text.find("</Point>", at);
        const std::string point = text.substr(at, end - at);
        at = end;
        const std::string wgs = between(point, "WGS84"), grid = between(point, "Grid");
        const std::string elevation = between(grid, "Elevation");
        if (wgs.empty() || elevation.empty())
            continue;
        AlignmentPoint p;
        p.description = between(point, "Name");
        p.latitude = std::stod(between(wgs, "Latitude"));
        p.longitude = std::stod(between(wgs, "Longitude"));
        p.ellipsoidHeight = std::stod(between(wgs, "Height"));
        p.localY = std::stod(between(grid, "North"));
        p.localX = std::stod(between(grid, "East"));
        p.localZ = std::stod(elevation);
        points[p.description] = p;
    }
    return points;
}

CoordinateSystem poland2000Zone6() {
    CoordinateSystem cs;
    cs.type = ProjectionType::TransverseMercator;
    cs.ellipsoidIndex = kGrs1980;
    cs.parameters.centralMeridian = 18.0;
    cs.parameters.scaleFactor = 0.999923;
    cs.parameters.falseEasting = 6500000.0;
    return cs;
}

} // namespace

TEST(LocalizationSample, FourPointsPredictTheRestOfARealJob) {
    const std::string file =
        std::string(TRAMLINE_SAMPLES_DIR) + "/jobxml/141108-KIERZKOWO_excerpt.jxl";
    if (!std::ifstream(file))
        GTEST_SKIP() << "sample not present: " << file;
    auto all = reducedPoints(file);
    // The keyed-in reference station 35 km away is no part of the site.
    all.erase("PRS45793341940");
    ASSERT_EQ(all.size(), 24u);
    const char *fitted[] = {"101", "120", "263", "292"};
    std::vector<AlignmentPoint> alignment;
    for (const char *name : fitted)
        alignment.push_back(all.at(name));

    LocalizationSettings settings;
    settings.tilted = true;
    Localization localization;
    ASSERT_TRUE(fitLocalization(poland2000Zone6(), settings, alignment, {}, localization));
    // The job's grid is this very projection: the fit is nearly the identity.
    EXPECT_NEAR(localization.horizontal.scale(), 1.0, 2e-6);
    EXPECT_NEAR(localization.horizontal.rotationDegrees(), 0.0, 1e-4);

    GridProjector projector;
    ASSERT_TRUE(projector.open(poland2000Zone6(), settings, {}));
    double worstHorizontal = 0, worstVertical = 0;
    for (const auto &[name, p] : all) {
        double x = 0, y = 0, z = 0;
        ASSERT_TRUE(
            localize(localization, projector, p.latitude, p.longitude, p.ellipsoidHeight, x, y, z));
        worstHorizontal = std::max(worstHorizontal, std::hypot(x - p.localX, y - p.localY));
        worstVertical = std::max(worstVertical, std::abs(z - p.localZ));
    }
    std::printf("KIERZKOWO: %zu points predicted, worst horizontal %.6f m, worst vertical %.6f m\n",
                all.size(), worstHorizontal, worstVertical);
    EXPECT_LT(worstHorizontal, 0.005);
    EXPECT_LT(worstVertical, 0.01);
}

TEST(LocalizationSample, PositionOutsideTheZoneIsRefused) {
    GridProjector projector;
    ASSERT_TRUE(projector.open(poland2000Zone6(), {}, {}));
    FitPoint f;
    EXPECT_TRUE(projector.project(54.77, 17.88, 60.0, f));
    const Status far = projector.project(54.77, 40.0, 60.0, f);
    EXPECT_EQ(far.code, tramline::StatusCode::OutOfRange);
}

// Local coordinates that are a datum's own grid: positions moved by a known
// shift and projected. The seven parameters estimated from points spread
// over the zone give that shift back.
TEST(LocalizationSample, SevenParametersOfALocalDatumAreRecovered) {
    CoordinateSystem datum = poland2000Zone6();
    datum.shift = {-33.4, 98.25, 61.5, 0.8, -1.1, 0.45, 3.5};
    SevenParameterShift shift;
    ASSERT_TRUE(shift.open(datum));
    Projection projection;
    ASSERT_TRUE(projection.open(datum));
    std::vector<AlignmentPoint> points;
    for (const auto &[lat, lon] :
         {std::pair{53.0, 16.6}, std::pair{54.7, 17.2}, std::pair{52.2, 19.3},
          std::pair{54.2, 19.4}, std::pair{53.4, 18.0}}) {
        AlignmentPoint p;
        p.latitude = lat;
        p.longitude = lon;
        p.ellipsoidHeight = 120.0;
        double la = lat, lo = lon, h = p.ellipsoidHeight;
        ASSERT_TRUE(shift.fromWgs84(la, lo, h));
        ASSERT_TRUE(projection.forward(la, lo, p.localY, p.localX));
        p.localZ = h;
        points.push_back(p);
    }
    LocalizationSettings settings;
    settings.defineDatum = true;
    Localization loc;
    ASSERT_TRUE(fitLocalization(poland2000Zone6(), settings, points, {}, loc));
    ASSERT_TRUE(loc.helmertEstimated);
    EXPECT_NEAR(loc.helmert.dx, datum.shift.dx, 0.01);
    EXPECT_NEAR(loc.helmert.dy, datum.shift.dy, 0.01);
    EXPECT_NEAR(loc.helmert.dz, datum.shift.dz, 0.01);
    EXPECT_NEAR(loc.helmert.rx, datum.shift.rx, 1e-3);
    EXPECT_NEAR(loc.helmert.ry, datum.shift.ry, 1e-3);
    EXPECT_NEAR(loc.helmert.rz, datum.shift.rz, 1e-3);
    EXPECT_NEAR(loc.helmert.scalePpm, datum.shift.scalePpm, 1e-3);
}
