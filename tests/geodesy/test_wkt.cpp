#include "../support/test_support.h"
#include "base/units.h"
#include "geodesy/wkt.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

using namespace tramline;
using namespace tramline::geodesy;
using tramline::test::replaced;
using tramline::test::slurp;

namespace {

CoordinateSystem britishGrid() {
    CoordinateSystem cs;
    cs.name = "BNG";
    cs.datum = "OSGB36";
    cs.ellipsoidIndex = 0; // Airy 1830
    cs.shift = {-446.448, 125.157, -542.06, 0.15, 0.247, 0.842, invertScalePpm(-20.489)};
    cs.parameters.latitudeOfOrigin = 49;
    cs.parameters.centralMeridian = -2;
    cs.parameters.scaleFactor = 0.9996012717;
    cs.parameters.falseEasting = 400000;
    cs.parameters.falseNorthing = -100000;
    return cs;
}

const std::string kTail =
    ",UNIT[\"Meters\",1],AXIS[\"East\",East],AXIS[\"North\",North]],VERT_CS[\"\","
    "VERT_DATUM[\"Ellipsoid\",2002],UNIT[\"Meters\",1],AXIS[\"Ellips height\",Up]]];\n";
const std::string kGeog =
    "PRIMEM[\"Greenwich\",0],UNIT[\"Radians\",1],AXIS[\"Long\",East],AXIS[\"Lat\",North]],";

} // namespace

// Expected lines written out by hand: pieces, order, number formats.
TEST(Wkt, WritesTheLineByteForByte) {
    struct Case {
        const char *name;
        CoordinateSystem system;
        std::string expected;
    };
    std::vector<Case> cases;

    cases.push_back(
        {"transverse Mercator", britishGrid(),
         "COMPD_CS[\"BNG\",PROJCS[\"\",GEOGCS[\"\",DATUM[\"OSGB36\",SPHEROID[\"Airy "
         "1830\",6377563.396,"
         "299.32496470009],TOWGS84[446.44800,-125.15700,542.06000,0.150000,0.247000,0.842000,"
         "-20.48900000]]," +
             kGeog +
             "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"false_easting\",400000.0000],"
             "PARAMETER[\"false_northing\",-100000.0000],PARAMETER[\"central_meridian\",-0."
             "03490658504],"
             "PARAMETER[\"scale_factor\",0.999601271700],PARAMETER[\"latitude_of_origin\",0."
             "85521133348]" +
             kTail});

    CoordinateSystem lcc;
    lcc.type = ProjectionType::LambertConformalConic2SP;
    lcc.name = "TX SC";
    lcc.datum = "NAD27";
    lcc.ellipsoidIndex = 6; // Clarke 1866
    lcc.parameters.latitudeOfOrigin = 27 + 50 / 60.0;
    lcc.parameters.centralMeridian = -99;
    lcc.parameters.standardParallel1 = 28 + 23 / 60.0;
    lcc.parameters.standardParallel2 = 30 + 17 / 60.0;
    lcc.parameters.falseEasting = 609601.2192;
    cases.push_back({"two-parallel cone, zero shift", lcc,
                     "COMPD_CS[\"TX SC\",PROJCS[\"\",GEOGCS[\"\",DATUM[\"NAD27\",SPHEROID[\"Clarke "
                     "1866\",6378206.400,"
                     "294.97869819987],TOWGS84[0.00000,0.00000,0.00000,0.000000,0.000000,0.000000,"
                     "0.00000000]]," +
                         kGeog +
                         "PROJECTION[\"Lambert_Conformal_Conic_2SP\"],PARAMETER[\"latitude_of_"
                         "origin\",0.48578330847],"
                         "PARAMETER[\"central_meridian\",-1.72787595947],"
                         "PARAMETER[\"standard_parallel_1\",0.49538261936],"
                         "PARAMETER[\"standard_parallel_2\",0.52854387515],PARAMETER[\"false_"
                         "easting\",609601.2192],"
                         "PARAMETER[\"false_northing\",0.0000]" +
                         kTail});

    CoordinateSystem om;
    om.type = ProjectionType::ObliqueMercator;
    om.name = "AK 1";
    om.datum = "NAD83";
    om.ellipsoidIndex = kGrs1980;
    om.shift.dx = 1.5;
    om.shift.rx = -0.5;
    om.shift.scalePpm = 10; // exactly -9.9999000010 ppm written back
    om.parameters.latitudeOfCenter = 57;
    om.parameters.longitudeOfCenter = -133 - 2 / 3.0;
    om.parameters.azimuth = om.parameters.rectifiedGridAngle = 323.1301023611111;
    om.parameters.scaleFactor = 0.9999;
    om.parameters.falseEasting = 5000000;
    om.parameters.falseNorthing = -5000000;
    cases.push_back(
        {"oblique Mercator, +10 ppm", om,
         "COMPD_CS[\"AK "
         "1\",PROJCS[\"\",GEOGCS[\"\",DATUM[\"NAD83\",SPHEROID[\"GRS_1980\",6378137.000,298."
         "25722210121],"
         "TOWGS84[-1.50000,0.00000,0.00000,-0.500000,0.000000,0.000000,-9.99990000]]," +
             kGeog +
             "PROJECTION[\"Oblique_Mercator\"],PARAMETER[\"latitude_of_center\",0.99483767364],"
             "PARAMETER[\"longitude_of_center\",-2.33292343350],PARAMETER[\"azimuth\",5."
             "63968419851],"
             "PARAMETER[\"rectified_grid_angle\",5.63968419851],PARAMETER[\"XY_Plane_Rotation\",5."
             "63968419851],"
             "PARAMETER[\"scale_factor\",0.999900000000],PARAMETER[\"false_easting\",5000000.0000],"
             "PARAMETER[\"false_northing\",-5000000.0000]" +
             kTail});

    CoordinateSystem danish;
    danish.type = ProjectionType::TransverseMercator34;
    danish.name = "DK";
    danish.datum = "ED50";
    danish.ellipsoidIndex = 22;
    danish.parameters.centralMeridian = 12.5;
    danish.parameters.denmarkArea = 2;
    danish.parameters.falseEasting = 200000;
    cases.push_back(
        {"Danish area as an integer", danish,
         "COMPD_CS[\"DK\",PROJCS[\"\",GEOGCS[\"\",DATUM[\"ED50\",SPHEROID[\"International_1924\","
         "6378388.000,297.00000000030],TOWGS84[0.00000,0.00000,0.00000,0.000000,0.000000,0.000000,"
         "0.00000000]]," +
             kGeog +
             "PROJECTION[\"Transverse_Mercator_34\"],PARAMETER[\"latitude_of_origin\",0."
             "00000000000],"
             "PARAMETER[\"central_meridian\",0.21816615650],PARAMETER[\"scale_factor\",1."
             "000000000000],"
             "PARAMETER[\"denmark_area\",2],PARAMETER[\"false_easting\",200000.0000],"
             "PARAMETER[\"false_northing\",0.0000]" +
             kTail});

    CoordinateSystem coefficients;
    coefficients.type = ProjectionType::LambertConformalConic27;
    coefficients.name = "Say \"27\"";
    coefficients.datum = "NAD27";
    coefficients.ellipsoidIndex = kUserDefinedEllipsoid;
    coefficients.userSemiMajorAxis = 6378000;
    coefficients.userInverseFlattening = 300;
    coefficients.parameters.coefficients = {1.5, 2000000, 0.000123};
    cases.push_back(
        {"coefficients, own ellipsoid, quotes in the name", coefficients,
         "COMPD_CS[\"Say '27'\",PROJCS[\"\",GEOGCS[\"\",DATUM[\"NAD27\",SPHEROID[\"User Defined\","
         "6378000.000,300.00000000000],TOWGS84[0.00000,0.00000,0.00000,0.000000,0.000000,0.000000,"
         "0.00000000]]," +
             kGeog +
             "PROJECTION[\"Lambert_Conformal_Conic_27\"],PARAMETER[\"l1\",1.5],PARAMETER[\"l2\","
             "2000000],"
             "PARAMETER[\"l3\",0.000123]" +
             kTail});

    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(writeWkt(c.system), c.expected);
    }
}

TEST(Wkt, CodesThreeAndFiveCrossOver) {
    CoordinateSystem cs;
    cs.type = ProjectionType::DoubleStereographic;
    EXPECT_NE(writeWkt(cs).find("PROJECTION[\"Oblique_Stereographic\"]"), std::string::npos);
    cs.type = ProjectionType::ObliqueStereographic;
    EXPECT_NE(writeWkt(cs).find("PROJECTION[\"Stereographic\"]"), std::string::npos);
    EXPECT_EQ(writeWkt(cs).find("Oblique_Stereographic"), std::string::npos);
}

TEST(Wkt, ScaleDifferenceInversion) {
    struct Case {
        double stored;
        const char *written;
    };
    // Exact arithmetic gives -9.9999000010 for +10 ppm, which prints as
    // -9.99990000 at eight decimals.
    const Case cases[] = {{0.0, "0.00000000"},
                          {10.0, "-9.99990000"},
                          {-10.0, "10.00010000"},
                          {1e6, "-500000.00000000"}};
    for (const auto &c : cases) {
        CoordinateSystem cs;
        cs.shift.scalePpm = c.stored;
        const std::string line = writeWkt(cs);
        const auto end = line.find("]],PRIMEM");
        const auto start = line.rfind(',', end);
        EXPECT_EQ(line.substr(start + 1, end - start - 1), c.written) << c.stored;
        EXPECT_NEAR(invertScalePpm(invertScalePpm(c.stored)), c.stored, 1e-9);
    }
}

TEST(Wkt, ReadsBackWhatItWrites) {
    std::vector<CoordinateSystem> systems;
    for (int code = 0; code < kProjectionTypeCount; ++code) {
        CoordinateSystem cs = britishGrid();
        cs.type = *projectionTypeFromCode(code);
        cs.name = std::string("type ") + std::to_string(code);
        auto &p = cs.parameters;
        p.standardParallel1 = 51.25;
        p.standardParallel2 = 53.5;
        p.latitudeOfCenter = 47.1443937222;
        p.longitudeOfCenter = 19.0485717778;
        p.azimuth = 30.2881397527778;
        p.rectifiedGridAngle = 29.5;
        p.pseudoStandardParallel = 78.5;
        p.denmarkArea = 3;
        p.zoneWidth = 6;
        if (code == 14)
            p.coefficients = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11.25};
        else if (code == 16 || code == 17)
            p.coefficients = {0.5, -1234567.125, 3e-9};
        else if (code == 18)
            p.coefficients = {0.75, -142};
        systems.push_back(cs);
    }
    for (const auto &cs : systems) {
        SCOPED_TRACE(cs.name);
        CoordinateSystem back;
        ASSERT_TRUE(readWkt(writeWkt(cs), back).ok());
        EXPECT_EQ(back.name, cs.name);
        EXPECT_EQ(back.datum, cs.datum);
        EXPECT_EQ(back.type, cs.type);
        EXPECT_EQ(back.ellipsoidIndex, cs.ellipsoidIndex);
        EXPECT_NEAR(back.shift.dx, cs.shift.dx, 1e-5);
        EXPECT_NEAR(back.shift.dz, cs.shift.dz, 1e-5);
        EXPECT_NEAR(back.shift.rz, cs.shift.rz, 1e-6);
        EXPECT_NEAR(back.shift.scalePpm, cs.shift.scalePpm, 1e-8);
        for (const auto &written : writtenParameters(cs.type)) {
            const double tolerance =
                parameterKind(written.parameter) == ParameterKind::Angle ? 1e-9 : 1e-4;
            EXPECT_NEAR(back.parameters.value(written.parameter),
                        cs.parameters.value(written.parameter), tolerance)
                << written.wktName;
        }
        EXPECT_EQ(back.parameters.coefficients, cs.parameters.coefficients);
        // Writing what was read gives the same line again.
        EXPECT_EQ(writeWkt(back), writeWkt(cs));
    }
}

TEST(Wkt, ReadsOtherWritersSpellings) {
    // Degrees in the geographic part, US survey feet for lengths, names in
    // another case, a spheroid known by its parameters only.
    const std::string line =
        "COMPD_CS[\"x\",PROJCS[\"NAD27 / Texas\",GEOGCS[\"NAD27\",DATUM[\"D_North_American_1927\","
        "SPHEROID[\"Clarke_1866_Foo\",6378206.4,294.978698213898]],PRIMEM[\"Greenwich\",0],"
        "UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"lambert_conformal_conic_2sp\"],"
        "parameter[\"False_Easting\",2000000],PARAMETER[\"Central_Meridian\",-99],"
        "PARAMETER[\"Standard_Parallel_1\",28.3833333333333],PARAMETER[\"unknown_thing\",5],"
        "UNIT[\"Foot_US\",0.304800609601219]]]";
    CoordinateSystem cs;
    ASSERT_TRUE(readWkt(line, cs).ok());
    EXPECT_EQ(cs.type, ProjectionType::LambertConformalConic2SP);
    EXPECT_EQ(cs.ellipsoidIndex, 6);
    EXPECT_EQ(cs.datum, "D_North_American_1927");
    EXPECT_NEAR(cs.parameters.falseEasting, 609601.2192, 1e-4);
    EXPECT_NEAR(cs.parameters.centralMeridian, -99, 1e-12);
    EXPECT_NEAR(cs.parameters.standardParallel1, 28.3833333333333, 1e-12);
    EXPECT_TRUE(cs.shift.isZero());
}

// A datum named ",SPHEROID[" made the reader take the name for the
// ellipsoid (found by fuzzing).
TEST(Wkt, NamesHoldingKeywordsReadBack) {
    CoordinateSystem cs = britishGrid();
    cs.name = "PARAMETER[\"x\",1]";
    cs.datum = ",SPHEROID[,TOWGS84[1,2,3,4,5,6,7],PROJECTION[";
    const std::string line = writeWkt(cs);
    CoordinateSystem back;
    ASSERT_TRUE(readWkt(line, back).ok());
    EXPECT_EQ(back.name, "PARAMETER['x',1]");
    EXPECT_EQ(back.datum, cs.datum);
    EXPECT_EQ(back.ellipsoidIndex, 0);
    EXPECT_EQ(writeWkt(back), line);
}

TEST(Wkt, MalformedTextIsRefusedWithAMessage) {
    const std::string good = writeWkt(britishGrid());
    const std::vector<std::string> bad = {
        "",
        "PROJCS[\"x\"]",
        "COMPD_CS",
        "COMPD_CS[\"unterminated",
        good.substr(0, good.find("TOWGS84[") + 20),
        good.substr(0, good.find("SPHEROID[") + 12),
        replaced(good, "Transverse_Mercator", "Polyconic"),
        replaced(good, "400000.0000", "4e5x"),
        replaced(good, "6377563.396", "-1"),
        std::string("COMPD_CS[\"a\",") + std::string(5000, '[') + "\xff\x00garbage",
        // Axes that "%.3f" cannot write back, or that no computation survives.
        replaced(good, "6377563.396", "0.0001"),
        replaced(good, "6377563.396", "1e300"),
        // A scale of the datum shift far beyond any datum's.
        replaced(good, "-20.48900000", "2.89e55"),
        // A latitude of origin no turn of the circle reaches.
        replaced(good, "0.85521133348", "943125.157"),
    };
    for (const auto &text : bad) {
        CoordinateSystem cs = britishGrid();
        cs.name = "untouched";
        const Status status = readWkt(text, cs);
        EXPECT_FALSE(status.ok()) << text.substr(0, 60);
        EXPECT_EQ(status.message.rfind("Error: ", 0), 0u) << status.message;
        EXPECT_EQ(cs.name, "untouched");
    }
}

TEST(Wkt, AppendModeAddsALine) {
    const tramline::test::ScratchFolder folder;
    const auto path = folder.path / "append.prj";
    CoordinateSystem first = britishGrid();
    CoordinateSystem second = britishGrid();
    second.name = "second";
    ASSERT_TRUE(saveWkt(first, path, WktWrite::Replace).ok());
    ASSERT_TRUE(saveWkt(second, path, WktWrite::Append).ok());
    EXPECT_EQ(slurp(path), writeWkt(first) + writeWkt(second));

    std::vector<CoordinateSystem> read;
    ASSERT_TRUE(loadWkt(path, read).ok());
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[1].name, "second");

    // Writing without append replaces the file.
    ASSERT_TRUE(saveWkt(second, path, WktWrite::Replace).ok());
    EXPECT_EQ(slurp(path), writeWkt(second));

    EXPECT_EQ(
        saveWkt(first, path.parent_path() / "no" / "such" / "dir.prj", WktWrite::Replace).code,
        StatusCode::Io);
    EXPECT_EQ(loadWkt(path.parent_path() / "missing.prj", read).code, StatusCode::Io);
}

// PROJ's own reader takes the written text and finds the same projection.
TEST(Wkt, ProjinfoAcceptsTheStandardTypes) {
    if (std::system("command -v projinfo >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "projinfo is not installed";
    CoordinateSystem lcc;
    lcc.type = ProjectionType::LambertConformalConic1SP;
    lcc.ellipsoidIndex = 6;
    lcc.parameters.latitudeOfOrigin = lcc.parameters.standardParallel1 = 18;
    lcc.parameters.centralMeridian = -77;
    lcc.parameters.falseEasting = 250000;
    lcc.parameters.falseNorthing = 150000;
    const std::pair<CoordinateSystem, std::string> cases[] = {
        {britishGrid(), "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000"},
        {lcc, "+proj=lcc +lat_1=18 +lat_0=18 +lon_0=-77 +k_0=1 +x_0=250000 +y_0=150000"},
    };
    const tramline::test::ScratchFolder folder;
    const auto path = folder.path / "projinfo.prj";
    for (const auto &[system, expected] : cases) {
        ASSERT_TRUE(saveWkt(system, path, WktWrite::Replace).ok());
        const std::string command =
            "projinfo -o PROJ -q \"$(cat '" + path.string() + "')\" 2>/dev/null";
        FILE *pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        char buffer[1024] = {};
        std::string output;
        while (std::fgets(buffer, sizeof buffer, pipe))
            output += buffer;
        EXPECT_EQ(pclose(pipe), 0) << output;
        EXPECT_NE(output.find(expected), std::string::npos) << output;
    }
}

// Coefficients by name, as descriptions and the command line give them: the
// list grows to the named one, names compare without case, and a name the
// type does not have changes nothing.
TEST(CoordinateSystemCoefficients, SetByName) {
    const struct {
        ProjectionType type;
        const char *name;
        bool known;
        std::vector<double> after; // the coefficients once 7.5 is set
    } cases[] = {
        {ProjectionType::ObliqueMercator27, "a", true, {7.5}},
        {ProjectionType::ObliqueMercator27, "EPSILON", true, {0, 0, 0, 0, 0, 0, 0, 0, 0, 7.5}},
        {ProjectionType::ObliqueMercator27, "lambda0", true, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7.5}},
        {ProjectionType::ObliqueMercator27, "l1", false, {}},
        {ProjectionType::TransverseMercatorAlaska27, "cm", true, {0, 7.5}},
        {ProjectionType::LambertConformalConic27, "L3", true, {0, 0, 7.5}},
        {ProjectionType::LambertConformalConic27, "t3", false, {}},
        {ProjectionType::TransverseMercator27, "t1", true, {7.5}},
        {ProjectionType::TransverseMercator, "a", false, {}},
    };
    for (const auto &c : cases) {
        CoordinateSystem cs;
        cs.type = c.type;
        EXPECT_EQ(cs.setCoefficient(c.name, 7.5), c.known) << c.name;
        EXPECT_EQ(cs.parameters.coefficients, c.after) << c.name;
    }
    // Setting an earlier one keeps the later ones.
    CoordinateSystem cs;
    cs.type = ProjectionType::LambertConformalConic27;
    cs.setCoefficient("l2", 2.0);
    cs.setCoefficient("l1", 1.0);
    EXPECT_EQ(cs.parameters.coefficients, (std::vector<double>{1.0, 2.0}));
}
