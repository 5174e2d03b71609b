#include "../support/test_support.h"
#include "geodesy/alignment_file.h"
#include "geodesy/localization_files.h"
#include "geodesy/localization_plot.h"
#include "geodesy/localization_report.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

using namespace tramline::geodesy;

namespace {

AlignmentPoint point(const char *name, double lat, double lon, double x, double y) {
    AlignmentPoint p;
    p.description = name;
    p.latitude = lat;
    p.longitude = lon;
    p.ellipsoidHeight = 65.125;
    p.localX = x;
    p.localY = y;
    p.localZ = 34.5;
    p.hrms = 0.012;
    p.vrms = 0.02;
    return p;
}

} // namespace

TEST(AlignmentFile, LineKeepsTheValuesInTheirOrder) {
    AlignmentPoint p = point("101, west gate", -33.5, 151.25, 5000.5, 6000.25);
    p.useVertical = false;
    EXPECT_EQ(alignmentLine(p, "State Plane 83: Alabama East", "GEOID99"),
              "-33.50000000000000,151.25000000000000,65.12500000000000,5000.50000000000000,"
              "6000.25000000000000,34.50000000000000,0.01200000000000,0.02000000000000,Y,N,"
              "101, west gate,State Plane 83: Alabama East,GEOID=GEOID99\n");

    // Read back: the description's comma survives, the system and geoid
    // come from the last fields.
    std::istringstream in(alignmentLine(p, "EPSG: 2177", "") + "\n" +
                          alignmentLine(point("102", 54.1, 18.2, 1, 2), "EPSG: 2177", ""));
    AlignmentFile file;
    ASSERT_TRUE(readAlignment(in, file));
    ASSERT_EQ(file.points.size(), 2u);
    EXPECT_EQ(file.points[0].description, "101, west gate");
    EXPECT_DOUBLE_EQ(file.points[0].latitude, -33.5);
    EXPECT_DOUBLE_EQ(file.points[0].localY, 6000.25);
    EXPECT_DOUBLE_EQ(file.points[0].vrms, 0.02);
    EXPECT_TRUE(file.points[0].useHorizontal);
    EXPECT_FALSE(file.points[0].useVertical);
    EXPECT_EQ(file.systemText, "EPSG: 2177");
    EXPECT_EQ(file.geoidName, "");
}

TEST(AlignmentFile, BadLinesAreRefusedWithTheirNumber) {
    const std::string good = alignmentLine(point("1", 54, 18, 0, 0), "UTM: 33", "");
    const struct {
        const char *name;
        std::string text;
        std::size_t line;
    } cases[] = {
        {"garbage", good + "hello world\n", 2},
        {"too few fields", "1,2,3,4,5,6,7,8,Y,Y\n", 1},
        {"not a number", "1,2,x,4,5,6,7,8,Y,Y,d,s,GEOID=\n", 1},
        {"not finite", "1,2,nan,4,5,6,7,8,Y,Y,d,s,GEOID=\n", 1},
        {"off the earth", "91,2,3,4,5,6,7,8,Y,Y,d,s,GEOID=\n", 1},
        {"bad flag", "1,2,3,4,5,6,7,8,maybe,Y,d,s,GEOID=\n", 1},
        {"5000 characters", good + std::string(5000, '7') + "\n", 2},
        // Found by the fuzzer: a NUL in the system text cut the written line.
        {"control character", std::string("1,2,3,4,5,6,7,8,Y,Y,d,E\0x,GEOID=\n", 33), 1},
    };
    for (const auto &c : cases) {
        std::istringstream in(c.text);
        AlignmentFile file;
        file.systemText = "untouched";
        const Status status = readAlignment(in, file);
        EXPECT_EQ(status.code, tramline::StatusCode::Format) << c.name;
        EXPECT_EQ(status.lineNumber, c.line) << c.name;
        EXPECT_EQ(file.systemText, "untouched") << c.name << ": nothing is returned";
    }
    std::string hundred;
    for (int i = 0; i < 100; ++i)
        hundred += good;
    std::istringstream in(hundred);
    AlignmentFile file;
    EXPECT_EQ(readAlignment(in, file).message, "Error: Invalid alignment points.");
}

TEST(AlignmentFile, SavingSkipsTheDictionaryAndReportsAFolderItCannotWrite) {
    AlignmentFile file;
    file.points = {point("1", 54, 18, 10, 20)};
    bool written = true;
    const tramline::test::ScratchFolder scratch;
    const auto dictionary = scratch.path / "Dictionary.dat";
    ASSERT_TRUE(saveAlignmentFile(dictionary, file, written));
    EXPECT_FALSE(written);
    EXPECT_FALSE(std::filesystem::exists(dictionary));

    const auto missing = (scratch.path / "no-such-folder") / "a.dat";
    const Status status = saveAlignmentFile(missing, file, written);
    EXPECT_EQ(status.message, "\nError: unable to save file " + missing.string());

    const auto path = scratch.path / "kept.dat";
    ASSERT_TRUE(saveAlignmentFile(path, file, written));
    EXPECT_TRUE(written);
    AlignmentFile back;
    ASSERT_TRUE(loadAlignmentFile(path, back));
    EXPECT_DOUBLE_EQ(back.points.at(0).localX, 10.0);
}

TEST(LocalizationSettings, KeysRoundTripAndBadValuesKeepTheDefault) {
    LocalizationSettings s;
    s.family = "EPSG";
    s.zone = "2177";
    s.rigid = s.tilted = s.geodeticAzimuth = s.rotateOnly = s.defineDatum = true;
    s.geoidModel = 12;
    s.projectScale = 0.999876543;
    s.places = 4;
    s.units = LocalizationUnits::InternationalFeet;
    s.multiple = MultipleMeasurements::Average;
    LocalizationSettings back;
    applySettingsText(settingsText(s), back);
    EXPECT_EQ(settingsText(back), settingsText(s));
    EXPECT_EQ(back.units, LocalizationUnits::InternationalFeet);
    EXPECT_DOUBLE_EQ(back.projectScale, 0.999876543);

    LocalizationSettings defaults;
    applySettingsText("places=9\nis_metric=7\nproject_scale=-1\nis_geoid99=x\n", defaults);
    EXPECT_EQ(defaults.places, 3);
    EXPECT_EQ(defaults.units, LocalizationUnits::Metres);
    EXPECT_EQ(defaults.projectScale, 1.0);

    LocalizationReportSettings report;
    applyReportSettingsText("is_proj_param=0\nis_formula=0\n", report);
    EXPECT_FALSE(report.projectionParameters);
    EXPECT_TRUE(report.transformationParameters);
    EXPECT_FALSE(report.formulas);
}

TEST(LocalizationSettings, RepeatedPointsMergeAsAsked) {
    std::vector<AlignmentPoint> points = {point("A", 10, 20, 1, 1), point("B", 11, 21, 2, 2),
                                          point("A", 12, 22, 1, 1)};
    EXPECT_EQ(mergeRepeatedPoints(points, MultipleMeasurements::UseFirst)[0].latitude, 10.0);
    EXPECT_EQ(mergeRepeatedPoints(points, MultipleMeasurements::UseLast)[0].latitude, 12.0);
    const auto averaged = mergeRepeatedPoints(points, MultipleMeasurements::Average);
    ASSERT_EQ(averaged.size(), 2u);
    EXPECT_DOUBLE_EQ(averaged[0].longitude, 21.0);
    EXPECT_EQ(averaged[1].description, "B");
}

namespace {

Localization fittedSample(bool tilted, std::size_t count) {
    CoordinateSystem utm33;
    utm33.parameters.centralMeridian = 15.0;
    utm33.parameters.scaleFactor = 0.9996;
    utm33.parameters.falseEasting = 500000.0;
    LocalizationSettings settings;
    settings.family = "UTM";
    settings.zone = "33";
    settings.tilted = tilted;
    const std::vector<AlignmentPoint> all = {
        point("N1", 52.0, 15.0, 1000.0, 2000.0), point("N2", 52.01, 15.0, 1001.0, 3112.0),
        point("N3", 52.0, 15.02, 2370.0, 2001.0), point("N4", 52.01, 15.02, 2371.5, 3110.0)};
    const std::vector<AlignmentPoint> points(all.begin(),
                                             all.begin() + static_cast<std::ptrdiff_t>(count));
    Localization loc;
    EXPECT_TRUE(fitLocalization(utm33, settings, points, {}, loc));
    return loc;
}

} // namespace

TEST(LocalizationReport, SectionsFollowTheReportSettings) {
    const Localization loc = fittedSample(true, 4);
    LocalizationReportSettings all;
    const std::string full = localizationReportText(loc, all);
    for (const char *text :
         {"Ellipsoid Name: WGS 84 a: 6378137.000 1/f: 298.25722356278\n",
          "Helmert 7-Parameter Transformation (WGS84 to Datum)\n",
          "Over Determination by Plane Similarity\n", "Local_X = a0 + a1*Grid_X - b1*Grid_Y\n",
          "Tilted Plane\n", "Vertical Adjustment = (-a*x - b*y - d)/c\n",
          "Project Scale Factor: 1.000000000000\n", "Coordinate Units: Meters\n", "Calculated",
          "Control"})
        EXPECT_NE(full.find(text), std::string::npos) << text;
    EXPECT_NE(full.find(std::string(70, '-')), std::string::npos);

    LocalizationReportSettings bare;
    bare.projectionParameters = false;
    bare.formulas = false;
    const std::string shorter = localizationReportText(loc, bare);
    EXPECT_EQ(shorter.find("Helmert"), std::string::npos);
    EXPECT_EQ(shorter.find("Local_X ="), std::string::npos);
    EXPECT_NE(shorter.find("a0: "), std::string::npos);

    const std::string two = localizationReportText(fittedSample(false, 2), all);
    EXPECT_NE(two.find("Two Point Align Method: State Plane Fit and Rotate\n"), std::string::npos);
    EXPECT_NE(two.find("Level Plane"), std::string::npos);
    const std::string one = localizationReportText(fittedSample(false, 1), all);
    EXPECT_NE(one.find("One Point Alignment Azimuth: State Plane Grid\n"), std::string::npos);
    EXPECT_NE(one.find("Rigid Body Transformation (No Scale Factor)\n"), std::string::npos);
}

TEST(LocalizationPlot, FactorIsARoundMagnificationAndIsStated) {
    Localization loc = fittedSample(false, 4);
    const double factor = residualPlotFactor(loc);
    double largest = 0;
    for (const auto &r : loc.residuals.points)
        largest = std::max(largest, r.horizontal);
    ASSERT_GT(largest, 0.0);
    // The largest arrow lands between 2% and 10% of the 1371-unit extent.
    EXPECT_LE(factor * largest, 0.1 * 1371.5 + 1e-9);
    EXPECT_GT(factor * largest, 0.02 * 1371.5);
    const double mantissa = factor / std::pow(10.0, std::floor(std::log10(factor)));
    EXPECT_TRUE(std::abs(mantissa - 1) < 1e-9 || std::abs(mantissa - 2) < 1e-9 ||
                std::abs(mantissa - 5) < 1e-9)
        << factor;
    loc.points[0].description = "<&>";
    const std::string svg = localizationPlotSvg(loc);
    EXPECT_NE(svg.find("&lt;&amp;&gt;"), std::string::npos);
    EXPECT_EQ(svg.find("<&>"), std::string::npos);
    std::ostringstream stated;
    stated << "magnified " << factor << "<";
    EXPECT_NE(svg.find(stated.str()), std::string::npos);
}
