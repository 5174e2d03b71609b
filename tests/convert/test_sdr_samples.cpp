// Every SDR field sample imports whole. The counts come from the files
// themselves: points are the 02 records with coordinates plus the 08
// records; observations the 09, 11 and 16 records plus one azimuth
// sideshot for every 07 backsight that names its point and azimuth.
#include "convert_test_support.h"
#include "raw/classify.h"

#include <set>

namespace tramline::test {
namespace {

struct SampleCase {
    const char *file;
    long points;         // point records met
    long distinctPoints; // names among them
    long observations;
    const char *pointName; // one point checked
    double northing, easting, elevation;
};

void PrintTo(const SampleCase &c, std::ostream *os) {
    *os << c.file;
}

class SdrSample : public ::testing::TestWithParam<SampleCase> {};

TEST_P(SdrSample, ImportsEveryPointAndObservation) {
    TRAMLINE_REQUIRE_SAMPLES();
    const SampleCase &c = GetParam();
    const auto out = importSdrBytes(readBytes(samplePath(std::string("sdr/") + c.file)));
    EXPECT_EQ(long(out.points.size()), c.points);
    std::set<std::string> names;
    for (const auto &p : out.points)
        names.insert(p.name);
    EXPECT_EQ(long(names.size()), c.distinctPoints);
    EXPECT_EQ(out.observations, c.observations);
    long shots = 0;
    for (const char *type : {"SS,", "BD,", "FD,", "FR,", "BR,"})
        shots += long(linesStarting(out, type).size());
    EXPECT_EQ(shots, c.observations) << "every observation counted is a shot line";
    EXPECT_EQ(long(linesStarting(out, "SP,").size()), c.points);
    ASSERT_TRUE(out.lines.front().starts_with("JB,NM"));
    // Every record written is one the strict classifier accepts.
    raw::RawFields fields;
    for (const auto &line : out.lines)
        EXPECT_NE(raw::ClassifyRawLine(std::string_view(line).substr(0, line.size() - 1),
                                       raw::JobRecords::Recognised, fields),
                  raw::kUnrecognised)
            << line;

    bool found = false;
    for (const auto &p : out.points)
        if (p.name == c.pointName) {
            found = true;
            EXPECT_NEAR(p.northing, c.northing, 1e-9);
            EXPECT_NEAR(p.easting, c.easting, 1e-9);
            EXPECT_NEAR(p.elevation, c.elevation, 1e-9);
        }
    EXPECT_TRUE(found) << c.pointName;
}

INSTANTIATE_TEST_SUITE_P(
    Samples, SdrSample,
    ::testing::Values(
        // E-N-Elev order: the first coordinate field is the easting.
        SampleCase{"20151125.sdr", 7, 6, 15, "KRYSHA", 14783.699, 6463.655, 223.327},
        SampleCase{"20151130.sdr", 6, 5, 22, "STLEV", 15102.106, 6594.363, 163.403},
        SampleCase{"20151204.sdr", 5, 4, 11, "STLEV", 15102.106, 6594.363, 163.403},
        // Stations without coordinates; 36 face-1 and 36 face-2 readings:
        // 3 backsight pairs and 33 foresight pairs, a set of four lines each.
        SampleCase{"20210205-3st.sdr", 6, 6, 132, "MM9", 481029.3597, 1321592.0102, 0.0},
        SampleCase{"data.sdr", 3, 3, 0, "Punkt8", 2.987, 8.123, 3.667},
        // The SDR-2x layout: 4-byte names and 10-byte numbers.
        SampleCase{"example.sdr", 10, 6, 85, "1000", 29.1755686, -4.0095257, 0.00963371},
        SampleCase{"sokkia_sdr33.tops", 13, 13, 0, "00000020", 506.797, 915.514, 19.556},
        // Right-aligned names run straight into the next value.
        SampleCase{"sokkia_sdr33_polar.tops", 34, 34, 36, "2", -2.161, 1.421, 0.946},
        SampleCase{"spectra-focus6/1.sdr", 4, 3, 18, "102", -0.172, -6.773, 0.603},
        SampleCase{"spectra-focus6/2.sdr", 21, 21, 0, "AE", 245.619, 664.645, 1.504}));

TEST(SdrSampleFile, OfAnotherFormatIsRefusedWithoutAQuestion) {
    TRAMLINE_REQUIRE_SAMPLES();
    Status status;
    const auto out =
        importSdrBytes(readBytes(samplePath("sdr/not-sdr/group_1_obs.sdr")), {}, &status);
    EXPECT_EQ(status.code, StatusCode::Format);
    EXPECT_EQ(status.message, "Error: not a Sokkia SDR file");
    EXPECT_TRUE(out.lines.empty());
    EXPECT_TRUE(out.points.empty());
}

TEST(SdrSampleFile, FaceReadingsOfThreeStationsFormSets) {
    TRAMLINE_REQUIRE_SAMPLES();
    const auto out = importSdrBytes(readBytes(samplePath("sdr/20210205-3st.sdr")));
    // Each station's first target is its backsight; every other target
    // measured in both faces gives one set.
    EXPECT_EQ(linesStarting(out, "BD,").size(), 33u);
    EXPECT_EQ(linesStarting(out, "BR,").size(), 33u);
    EXPECT_EQ(linesStarting(out, "FD,").size(), 33u);
    EXPECT_EQ(linesStarting(out, "FR,").size(), 33u);
    EXPECT_TRUE(linesStarting(out, "SS,").empty());
}

} // namespace
} // namespace tramline::test
