// Every GSI, SDR and Geodimeter field sample imports whole. The counts come
// from the files themselves (counted with awk):
// - GSI: observations are the blocks with a horizontal angle (word 21),
//   set-ups the blocks with station words (84-86), points the blocks with
//   coordinates (81-83) plus the set-ups with station coordinates;
// - SDR: points are the 02 records with coordinates plus the 08 records;
//   observations the 09, 11 and 16 records plus one azimuth sideshot for
//   every 07 backsight that names its point and azimuth;
// - Geodimeter: set-ups are the label-2 blocks with a backsight or a shot,
//   observations the label-5 blocks with an angle or a distance, points the
//   label-2, 5 and 62 blocks with labels 37 and 38.
#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/unset.h"
#include "convert/geodimeter_import.h"
#include "convert/geodimeter_points.h"
#include "convert/gsi_import.h"
#include "convert_test_support.h"
#include "raw/classify.h"

#include <set>

namespace tramline::test {
namespace {

enum class Reader { Gsi, Sdr, Geodimeter };

struct Shot {
    const char *to;                                  // empty: none checked
    double horizontal = 0, zenith = 0, distance = 0; // degrees, degrees, file units
    double angleTolerance = 0;                       // degrees: what the file's unit keeps
};

struct Point {
    const char *name = ""; // empty: none checked
    double northing = 0, easting = 0, elevation = 0;
};

struct SampleCase {
    Reader reader;
    const char *file;
    long observations, points;
    // GSI: set-up lines; SDR: distinct point names; Geodimeter: stations
    // oriented (a later label 21 may orient a station again).
    long distinct;
    Point point = {};
    Shot shot = {};
};

void PrintTo(const SampleCase &c, std::ostream *os) {
    *os << c.file;
}

convert::ImportOutput importSample(const SampleCase &c) {
    const std::string bytes = readBytes(samplePath(c.file));
    if (c.reader == Reader::Sdr)
        return importSdrBytes(bytes);
    convert::ImportOutput out;
    const Status s = c.reader == Reader::Gsi
                         ? convert::importGsiWith(sourceOf(bytes), {}, out)
                         : convert::importGeodimeterWith(sourceOf(bytes), {}, out);
    EXPECT_TRUE(s.ok()) << s.message;
    return out;
}

// The field after `code` in an RW5 line, up to the next comma.
std::string fieldAfter(const std::string &line, const std::string &code) {
    const auto at = line.find("," + code);
    if (at == std::string::npos)
        return "";
    const auto start = at + 1 + code.size();
    return line.substr(start, line.find(',', start) - start);
}

// The shot kinds each reader writes for plain readings (SDR sorts face
// readings into sets, Geodimeter and GSI write traverse shots only when told).
std::vector<std::string> shotKinds(Reader reader) {
    switch (reader) {
    case Reader::Gsi:
        return {"SS,"};
    case Reader::Sdr:
        return {"SS,", "BD,", "FD,", "FR,", "BR,"};
    case Reader::Geodimeter:
        return {"SS,", "TR,"};
    }
    return {};
}

long distinctCount(const SampleCase &c, const convert::ImportOutput &out) {
    std::set<std::string> seen;
    if (c.reader == Reader::Gsi)
        return long(linesStarting(out, "OC,").size());
    if (c.reader == Reader::Sdr)
        for (const auto &p : out.points)
            seen.insert(p.name);
    else
        for (const auto &line : linesStarting(out, "BK,"))
            seen.insert(fieldAfter(line, "OP"));
    return long(seen.size());
}

void expectPoint(const std::vector<crd::CrdPoint> &points, const Point &wanted) {
    bool found = false;
    for (const auto &p : points)
        if (p.name == wanted.name && !found) {
            found = true;
            EXPECT_NEAR(p.northing, wanted.northing, 1e-9) << p.name;
            EXPECT_NEAR(p.easting, wanted.easting, 1e-9) << p.name;
            EXPECT_NEAR(p.elevation, wanted.elevation, 1e-9) << p.name;
        }
    EXPECT_TRUE(found) << wanted.name;
}

class FieldSample : public ::testing::TestWithParam<SampleCase> {};

TEST_P(FieldSample, ImportsEveryReadingSetUpAndPoint) {
    TRAMLINE_REQUIRE_SAMPLES();
    const SampleCase &c = GetParam();
    const auto out = importSample(c);
    EXPECT_EQ(out.observations, c.observations);
    long shots = 0;
    for (const auto &kind : shotKinds(c.reader))
        shots += long(linesStarting(out, kind).size());
    EXPECT_EQ(shots, c.observations) << "every observation counted is a shot line";
    EXPECT_EQ(long(out.points.size()), c.points);
    EXPECT_EQ(long(linesStarting(out, "SP,").size()), c.points);
    EXPECT_EQ(distinctCount(c, out), c.distinct);
    if (c.reader == Reader::Gsi) { // SDR and Geodimeter files hold records no job needs
        EXPECT_TRUE(out.skipped.empty()) << out.skipped.begin()->first;
    }
    ASSERT_FALSE(out.lines.empty());
    EXPECT_TRUE(out.lines.front().starts_with("JB,NM")) << out.lines.front();
    // Every record written is one the strict classifier accepts.
    raw::RawFields fields;
    for (const auto &line : out.lines)
        EXPECT_NE(raw::ClassifyRawLine(std::string_view(line).substr(0, line.size() - 1),
                                       raw::JobRecords::Recognised, fields),
                  raw::kUnrecognised)
            << line;

    const bool pointGiven = c.point.name && *c.point.name;
    if (pointGiven)
        expectPoint(out.points, c.point);
    if (c.reader == Reader::Geodimeter) {
        // The point import reads the same coordinates out of the same blocks.
        ScriptedInteraction ui;
        convert::ImportOutput points;
        ASSERT_TRUE(
            convert::importGeodimeterPoints(sourceOf(readBytes(samplePath(c.file))), ui, points)
                .ok());
        EXPECT_EQ(long(points.points.size()), c.points);
        if (pointGiven)
            expectPoint(points.points, c.point);
    }
    if (!c.shot.to || !*c.shot.to)
        return;
    std::string shot;
    for (const auto &line : out.lines)
        for (const auto &kind : shotKinds(c.reader))
            if (shot.empty() && line.starts_with(kind) &&
                line.find(std::string(",FP") + c.shot.to + ",") != std::string::npos)
                shot = line;
    ASSERT_FALSE(shot.empty()) << c.shot.to;
    double hz = 0, ze = 0, distance = -1;
    ASSERT_TRUE(parseNumber(fieldAfter(shot, "AR"), hz)) << shot;
    ASSERT_TRUE(parseNumber(fieldAfter(shot, "ZE"), ze)) << shot;
    if (!parseNumber(fieldAfter(shot, "SD"), distance)) {
        ASSERT_TRUE(parseNumber(fieldAfter(shot, "HD"), distance)) << shot;
    }
    EXPECT_NEAR(unpackDms(hz), c.shot.horizontal, c.shot.angleTolerance) << shot;
    EXPECT_NEAR(unpackDms(ze), c.shot.zenith, c.shot.angleTolerance) << shot;
    EXPECT_NEAR(distance, c.shot.distance, 1e-9) << shot;
}

constexpr double kTenthSecond = 0.1 / 3600;
constexpr double kWholeSecond = 1.5e-4; // angles written as ddd.mmss, to the second
constexpr double dms(int d, int m, double s) {
    return d + m / 60.0 + s / 3600;
}
constexpr double gon(double g) {
    return g * 0.9;
}

using enum Reader;

const SampleCase kSamples[] = {
    // Gons (unit 2), CR-only lines, two empty lines after every block.
    {Gsi,
     "gsi/RILIEVO.gsi",
     23,
     0,
     0,
     {},
     {"102", gon(132.471), gon(103.782), 5.165, kTenthSecond}},
    // Degrees-minutes-seconds with tenths (unit 4), alphanumeric names.
    {Gsi,
     "gsi/leica_gsi16_gurob.gsi",
     343,
     0,
     0,
     {},
     {"GDEM5415", dms(35, 45, 10), dms(91, 17, 51), 13.825, kTenthSecond}},
    // Computed coordinates in 689 reading blocks, four free stations;
    // block 132 has no distance and all-zero coordinates: no point.
    {Gsi,
     "gsi/leica_gsi8_ertola.gsi",
     694,
     692,
     4,
     {"STAZLIB4", 445.069, 524.441, 0.388},
     {"1", gon(34.9694), gon(93.6436), 30.485, kTenthSecond}},
    {Gsi, "gsi/coords.gsi", 0, 48, 0, {"9001", 173419.641, 698460.332, -0.092}},
    // Tenths of millimetres (unit 6), no blank after the last word.
    {Gsi, "gsi/GSI16_Cartesian.GSI", 0, 17, 1, {"FS01", 2085.1498, 6600.6088, 298.5772}},
    // E-N-Elev order: the first coordinate field is the easting.
    {Sdr, "sdr/20151125.sdr", 15, 7, 6, {"KRYSHA", 14783.699, 6463.655, 223.327}},
    {Sdr, "sdr/20151130.sdr", 22, 6, 5, {"STLEV", 15102.106, 6594.363, 163.403}},
    {Sdr, "sdr/20151204.sdr", 11, 5, 4, {"STLEV", 15102.106, 6594.363, 163.403}},
    // Stations without coordinates; 36 face-1 and 36 face-2 readings:
    // 3 backsight pairs and 33 foresight pairs, a set of four lines each.
    {Sdr, "sdr/20210205-3st.sdr", 132, 6, 6, {"MM9", 481029.3597, 1321592.0102, 0.0}},
    {Sdr, "sdr/data.sdr", 0, 3, 3, {"Punkt8", 2.987, 8.123, 3.667}},
    // The SDR-2x layout: 4-byte names and 10-byte numbers.
    {Sdr, "sdr/example.sdr", 85, 10, 6, {"1000", 29.1755686, -4.0095257, 0.00963371}},
    {Sdr, "sdr/sokkia_sdr33.tops", 0, 13, 13, {"00000020", 506.797, 915.514, 19.556}},
    // Right-aligned names run straight into the next value.
    {Sdr, "sdr/sokkia_sdr33_polar.tops", 36, 34, 34, {"2", -2.161, 1.421, 0.946}},
    {Sdr, "sdr/spectra-focus6/1.sdr", 18, 4, 3, {"102", -0.172, -6.773, 0.603}},
    {Sdr, "sdr/spectra-focus6/2.sdr", 0, 21, 21, {"AE", 245.619, 664.645, 1.504}},
    // Angles in gons (92.4486 cannot be ddd.mmss): 92.4486 gon is
    // 83.20374 degrees, 109.4524 gon 98.50716 degrees.
    {Geodimeter,
     "geodimeter/BSG-08-11-19.are",
     105,
     114,
     3,
     {"3", 497.857, 499.622, 1.348},
     {"1", 83.203740, 98.507160, 9.605, kWholeSecond}},
    {Geodimeter, "geodimeter/DT.are", 0, 6, 0, {"F3", 178.397, 1056.392, 0.0}},
    // Face-one angle (label 24) and a horizontal distance; no vertical.
    {Geodimeter, "geodimeter/DT.job", 87, 0, 9, {}, {"F1", 264.080278, 90.0, 32.392, kWholeSecond}},
    {Geodimeter,
     "geodimeter/eastern_desert11.are",
     0,
     618,
     0,
     {"az", 2936545.339, 595563.000, 99.899}},
    // 38 before 37.
    {Geodimeter, "geodimeter/ullo.are", 0, 4, 0, {"GP1", 12273.89, -23779.46, 0.0}},
    // Angles without a distance: the zero-distance rule.
    {Geodimeter,
     "geodimeter/ullo.job",
     50,
     0,
     8,
     {},
     {"3059", 354.131944, 89.301389, 0.0, kWholeSecond}},
};

INSTANTIATE_TEST_SUITE_P(Samples, FieldSample, ::testing::ValuesIn(kSamples));

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

TEST(SdrSample, OfAnotherFormatIsRefusedWithoutAQuestion) {
    TRAMLINE_REQUIRE_SAMPLES();
    Status status;
    const auto out =
        importSdrBytes(readBytes(samplePath("sdr/not-sdr/group_1_obs.sdr")), {}, &status);
    EXPECT_EQ(status.code, StatusCode::Format);
    EXPECT_EQ(status.message, "Error: not a Sokkia SDR file");
    EXPECT_TRUE(out.lines.empty());
    EXPECT_TRUE(out.points.empty());
}

TEST(SdrSample, FaceReadingsOfThreeStationsFormSets) {
    TRAMLINE_REQUIRE_SAMPLES();
    const auto out = importSdrBytes(readBytes(samplePath("sdr/20210205-3st.sdr")));
    // Each station's first target is its backsight; every other target
    // measured in both faces gives one set.
    for (const char *kind : {"BD,", "BR,", "FD,", "FR,"})
        EXPECT_EQ(linesStarting(out, kind).size(), 33u) << kind;
    EXPECT_TRUE(linesStarting(out, "SS,").empty());
}

} // namespace
} // namespace tramline::test
