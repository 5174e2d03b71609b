// Every GSI field sample imports whole. The counts come from the files
// themselves (counted with awk over the words): observations are the
// blocks with a horizontal angle (word 21), set-ups the blocks with
// station words (84-86), points the blocks with coordinates (81-83) plus
// the set-ups with station coordinates.
#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/unset.h"
#include "convert/gsi_import.h"
#include "convert_test_support.h"
#include "raw/classify.h"

namespace tramline::test {
namespace {

struct Shot {
    const char *to;
    double horizontal, zenith, distance; // degrees, degrees, file units
};

struct SampleCase {
    const char *file;
    long observations, setUps, points;
    Shot shot; // one reading checked; `to` empty: none in the file
    const char *pointName;
    double easting, northing, elevation;
};

void PrintTo(const SampleCase &c, std::ostream *os) {
    *os << c.file;
}

// The numbers of the tagged fields of a shot line, in degrees for angles.
bool shotValues(const std::string &line, double &hz, double &ze, double &distance) {
    int found = 0;
    for (std::string_view field : split(trimRight(line), ',')) {
        double v = 0.0;
        if (field.size() > 2 && parseNumber(field.substr(2), v)) {
            if (field.starts_with("AR"))
                hz = unpackDms(v), ++found;
            else if (field.starts_with("ZE"))
                ze = unpackDms(v), ++found;
            else if (field.starts_with("SD") || field.starts_with("HD"))
                distance = v, ++found;
        }
    }
    return found == 3;
}

class GsiSample : public ::testing::TestWithParam<SampleCase> {};

TEST_P(GsiSample, ImportsEveryReadingSetUpAndPoint) {
    TRAMLINE_REQUIRE_SAMPLES();
    const SampleCase &c = GetParam();
    convert::ImportOutput out;
    const Status s = convert::importGsiWith(
        sourceOf(readBytes(samplePath(std::string("gsi/") + c.file))), {}, out);
    ASSERT_TRUE(s.ok()) << s.message;
    EXPECT_EQ(out.observations, c.observations);
    EXPECT_EQ(long(linesStarting(out, "SS,").size()), c.observations);
    EXPECT_EQ(long(linesStarting(out, "OC,").size()), c.setUps);
    EXPECT_EQ(long(out.points.size()), c.points);
    EXPECT_EQ(long(linesStarting(out, "SP,").size()), c.points);
    EXPECT_TRUE(out.skipped.empty()) << out.skipped.begin()->first;
    raw::RawFields fields;
    for (const auto &line : out.lines)
        EXPECT_NE(raw::ClassifyRawLine(std::string_view(line).substr(0, line.size() - 1),
                                       raw::JobRecords::Recognised, fields),
                  raw::kUnrecognised)
            << line;

    if (*c.shot.to) {
        const std::string prefix = std::string(",FP") + c.shot.to + ",";
        bool found = false;
        for (const auto &line : linesStarting(out, "SS,"))
            if (line.find(prefix) != std::string::npos && !found) {
                found = true;
                double hz = 0, ze = 0, distance = 0;
                ASSERT_TRUE(shotValues(line, hz, ze, distance)) << line;
                EXPECT_NEAR(hz, c.shot.horizontal, 0.1 / 3600) << line;
                EXPECT_NEAR(ze, c.shot.zenith, 0.1 / 3600) << line;
                EXPECT_NEAR(distance, c.shot.distance, 1e-9) << line;
            }
        EXPECT_TRUE(found) << c.shot.to;
    }
    if (*c.pointName) {
        bool found = false;
        for (const auto &p : out.points)
            if (p.name == c.pointName && !found) {
                found = true;
                EXPECT_NEAR(p.easting, c.easting, 1e-9);
                EXPECT_NEAR(p.northing, c.northing, 1e-9);
                EXPECT_NEAR(p.elevation, c.elevation, 1e-9);
            }
        EXPECT_TRUE(found) << c.pointName;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Samples, GsiSample,
    ::testing::Values(
        // Gons (unit 2), CR-only lines, two empty lines after every block.
        SampleCase{
            "RILIEVO.gsi", 23, 0, 0, {"102", 132.471 * 0.9, 103.782 * 0.9, 5.165}, "", 0, 0, 0},
        // Degrees-minutes-seconds with tenths (unit 4), alphanumeric names.
        SampleCase{"leica_gsi16_gurob.gsi",
                   343,
                   0,
                   0,
                   {"GDEM5415", 35 + 45 / 60.0 + 10.0 / 3600, 91 + 17 / 60.0 + 51.0 / 3600, 13.825},
                   "",
                   0,
                   0,
                   0},
        // Computed coordinates in 689 reading blocks, four free stations;
        // block 132 has no distance and all-zero coordinates: no point.
        SampleCase{"leica_gsi8_ertola.gsi",
                   694,
                   4,
                   692,
                   {"1", 34.9694 * 0.9, 93.6436 * 0.9, 30.485},
                   "STAZLIB4",
                   524.441,
                   445.069,
                   0.388},
        SampleCase{"coords.gsi", 0, 0, 48, {"", 0, 0, 0}, "9001", 698460.332, 173419.641, -0.092},
        // Tenths of millimetres (unit 6), no blank after the last word.
        SampleCase{"GSI16_Cartesian.GSI",
                   0,
                   1,
                   17,
                   {"", 0, 0, 0},
                   "FS01",
                   6600.6088,
                   2085.1498,
                   298.5772}));

TEST(GsiSample, MissingHeightStaysMissing) {
    TRAMLINE_REQUIRE_SAMPLES();
    convert::ImportOutput out;
    ASSERT_TRUE(
        convert::importGsiWith(sourceOf(readBytes(samplePath("gsi/coords.gsi"))), {}, out).ok());
    ASSERT_GE(out.points.size(), 4u);
    EXPECT_EQ(out.points[3].name, "9003");
    EXPECT_TRUE(isUnset(out.points[3].elevation));
    EXPECT_FALSE(isUnset(out.points[2].elevation));
    EXPECT_EQ(linesStarting(out, "SP,PN9003")[1], "SP,PN9003,N 173455.3620,E 698434.7050,EL,--\n");
}

} // namespace
} // namespace tramline::test
