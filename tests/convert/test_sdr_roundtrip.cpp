// A job exported as SDR and imported again gives the same observations and
// points, to the precision of the format: SDR -> RW5 -> SDR -> RW5.
#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "convert/sdr_export.h"
#include "convert_test_support.h"

#include <map>

namespace tramline::test {
namespace {

struct Shot {
    std::string type, from, to, hzCode, vCode, dCode;
    double hz = 0, v = 0, d = 0;
};

std::vector<Shot> shotsOf(const convert::ImportOutput &out) {
    std::vector<Shot> shots;
    for (std::string_view line : out.lines) {
        const auto f = split(trimRight(line), ',');
        if (f.size() < 6 ||
            !(f[0] == "SS" || f[0] == "BD" || f[0] == "FD" || f[0] == "FR" || f[0] == "BR"))
            continue;
        Shot s{std::string(f[0]),
               std::string(f[1].substr(2)),
               std::string(f[2].substr(2)),
               std::string(f[3].substr(0, 2)),
               std::string(f[4].substr(0, 2)),
               std::string(f[5].substr(0, 2))};
        parseNumber(f[3].substr(2), s.hz);
        parseNumber(f[4].substr(2), s.v);
        parseNumber(f[5].substr(2), s.d);
        shots.push_back(s);
    }
    return shots;
}

std::map<std::string, crd::CrdPoint> pointsOf(const convert::ImportOutput &out) {
    std::map<std::string, crd::CrdPoint> points;
    for (const auto &p : out.points)
        points[p.name] = p;
    return points;
}

convert::ImportOutput throughSdr(const convert::ImportOutput &first, const char *layout) {
    std::vector<std::string> lines;
    for (const auto &line : first.lines)
        lines.emplace_back(line.substr(0, line.size() - 1));
    ScriptedInteraction ui;
    convert::ExportOutput exported;
    EXPECT_TRUE(convert::exportSdr(lines, {layout}, ui, exported).ok());
    return importSdrBytes(exported.bytes);
}

struct RoundTripCase {
    const char *file;
    const char *layout;
};

void PrintTo(const RoundTripCase &c, std::ostream *os) {
    *os << c.file << " as " << c.layout;
}

class SdrRoundTrip : public ::testing::TestWithParam<RoundTripCase> {};

TEST_P(SdrRoundTrip, GivesTheSameObservationsAndPoints) {
    TRAMLINE_REQUIRE_SAMPLES();
    const auto [file, layout] = GetParam();
    const auto first = importSdrBytes(readBytes(samplePath(std::string("sdr/") + file)));
    const auto second = throughSdr(first, layout);

    const auto a = shotsOf(first), b = shotsOf(second);
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        SCOPED_TRACE(file + std::string(" shot ") + std::to_string(i) + " to " + a[i].to);
        EXPECT_EQ(a[i].type, b[i].type);
        EXPECT_EQ(a[i].from, b[i].from);
        EXPECT_EQ(a[i].to, b[i].to);
        EXPECT_EQ(a[i].hzCode + a[i].vCode + a[i].dCode, b[i].hzCode + b[i].vCode + b[i].dCode);
        EXPECT_NEAR(unpackDms(a[i].hz), unpackDms(b[i].hz), 0.5 / 3600);
        EXPECT_NEAR(a[i].vCode == "CE" ? a[i].v : unpackDms(a[i].v),
                    b[i].vCode == "CE" ? b[i].v : unpackDms(b[i].v), 0.5 / 3600);
        EXPECT_NEAR(a[i].d, b[i].d, 0.0005);
    }
    const auto pa = pointsOf(first), pb = pointsOf(second);
    ASSERT_EQ(pa.size(), pb.size());
    for (const auto &[name, p] : pa) {
        ASSERT_TRUE(pb.count(name)) << name;
        EXPECT_NEAR(p.northing, pb.at(name).northing, 0.00005) << name;
        EXPECT_NEAR(p.easting, pb.at(name).easting, 0.00005) << name;
        EXPECT_NEAR(p.elevation, pb.at(name).elevation, 0.00005) << name;
        EXPECT_EQ(p.description, pb.at(name).description) << name;
    }
    // A second turn changes nothing at all.
    EXPECT_EQ(throughSdr(second, layout).lines.size(), second.lines.size());
}

INSTANTIATE_TEST_SUITE_P(Samples, SdrRoundTrip,
                         ::testing::Values(RoundTripCase{"20151125.sdr", "sdr33"},
                                           RoundTripCase{"20151130.sdr", "sdr33"},
                                           RoundTripCase{"20151204.sdr", "sdr33"},
                                           RoundTripCase{"20210205-3st.sdr", "sdr33"},
                                           RoundTripCase{"data.sdr", "sdr33"},
                                           RoundTripCase{"example.sdr", "sdr2x"},
                                           RoundTripCase{"example.sdr", "sdr33"},
                                           RoundTripCase{"sokkia_sdr33.tops", "sdr33"},
                                           RoundTripCase{"sokkia_sdr33_polar.tops", "sdr33"},
                                           RoundTripCase{"spectra-focus6/1.sdr", "sdr33"},
                                           RoundTripCase{"spectra-focus6/2.sdr", "sdr33"}));

TEST(SdrExport, HeaderJobAndUnitsAsInstrumentsExpect) {
    struct Case {
        const char *layout;
        const char *mode;
        std::string start;
    };
    const Case cases[] = {
        {"sdr33", "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0",
         "00NMSDR33     V04-01.00 Jan-18-80 20:34 111111\n10NMJOB1            121111\n"
         "06NM1.00000000\n"},
        {"sdr2x", "MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0",
         "00NMSDR22     V03-050000Jan-18-80 20:34 121111\n13DU3:US Feet:\n10NMJOB1            \n"
         "06NM1.00000000\n"},
    };
    for (const auto &c : cases) {
        ScriptedInteraction ui;
        convert::ExportOutput out;
        ASSERT_TRUE(convert::exportSdr({"JB,NMJOB1,DT,TM", c.mode}, {c.layout}, ui, out).ok());
        EXPECT_EQ(out.bytes, c.start) << c.layout;
        EXPECT_EQ(out.completion, "Done.");
    }
    // Without a layout the "SDR Format" question decides; cancel stops.
    ScriptedInteraction ui({"<cancel>"});
    convert::ExportOutput out;
    EXPECT_EQ(convert::exportSdr({}, {}, ui, out).code, StatusCode::Cancelled);
}

TEST(SdrExport, FeetComeBackAsTheirUnit) {
    ScriptedInteraction ui;
    convert::ExportOutput out;
    ASSERT_TRUE(
        convert::exportSdr({"MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0"}, {"sdr33"}, ui, out).ok());
    const auto back = importSdrBytes(out.bytes);
    EXPECT_EQ(linesStarting(back, "MO,")[0], "MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n");
}

} // namespace
} // namespace tramline::test
