// A real GPS job: positions with the grid coordinates the field software
// gave them (Polish 2000 zone 6). Four points fitted must predict the rest.
#include "geodesy/localization.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
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
    std::ifstream in(file, std::ios::binary);
    std::stringstream whole;
    whole << in.rdbuf();
    const std::string text = whole.str();
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
