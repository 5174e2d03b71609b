// RW5 -> GSI-16 -> RW5 keeps every shot to the precision of the format:
// angles to a tenth of a second (or of a milligon), distances to the
// millimetre, with the station, the point and the note.
#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "convert/gsi_export.h"
#include "convert/gsi_import.h"
#include "convert_test_support.h"

#include <cmath>

namespace tramline::test {
namespace {

const std::vector<std::string> kJob = {
    "JB,NMROUND,DT11-23-2026,TM10:15:00",
    "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0",
    "--Personnel: ANNA",
    "OC,OPST1,N 5000.0000,E 2000.0000,EL100.0000,--",
    "LS,HI1.5500",
    "BK,OPST1,BPBS1,BS,BC0.0000",
    "LS,HR1.3000",
    "BD,OPST1,FPBS1,AR0.0000,ZE90.1210,SD120.4560,--",
    "FD,OPST1,FPP1,AR45.3015,ZE88.0005,SD35.1110,--FENCE",
    "FR,OPST1,FPP1,AR225.3018,ZE271.5950,SD35.1120,--FENCE",
    "BR,OPST1,FPBS1,AR180.0002,ZE269.4745,SD120.4550,--",
    "SS,OPST1,FPP2,AR359.5959,ZE95.1234,SD0.0010,--CORNER 2",
    "LS,HR2.0000",
    "SS,OPST1,FPP3,AL10.0000,ZE90.0000,HD10.0000,--",
    "SP,PNCP9,N -12.5000,E 7.2500,EL0.0000,--MARK",
    "OC,OPST2,N 5100.0000,E 2000.0000,EL101.0000,--",
    "SS,OPST2,FPP4,AR12.0000,VA2.0000,SD50.0000,--",
    "GPS,PN9,LA-33.5212345678,LN151.1234567890,EL25.1234,--BASE",
    "--SDEV: 0.012,0.034,0.056 PDOP: 1.8",
};

struct Shot {
    std::string type, op, fp, note;
    double hz = 0, ze = 90, sd = 0;
};

// Shots of RW5 lines, with angles in degrees and slope distances.
std::vector<Shot> shotsOf(const std::vector<std::string> &lines) {
    std::vector<Shot> shots;
    for (std::string_view line : lines) {
        line = trimRight(line);
        const auto fields = split(line.substr(0, line.find(",--")), ',');
        const std::string type(fields.front());
        if (type != "SS" && type != "BD" && type != "FD" && type != "FR" && type != "BR")
            continue;
        Shot s;
        s.type = type;
        s.note = std::string(line.substr(line.find(",--") + 3));
        double hd = -1, v = 0;
        for (auto f : fields) {
            const bool n = f.size() > 2 && parseNumber(f.substr(2), v);
            if (f.starts_with("OP"))
                s.op = std::string(f.substr(2));
            else if (f.starts_with("FP"))
                s.fp = std::string(f.substr(2));
            else if (n && f.starts_with("AR"))
                s.hz = unpackDms(v);
            else if (n && f.starts_with("AL"))
                s.hz = 360 - unpackDms(v);
            else if (n && f.starts_with("ZE"))
                s.ze = unpackDms(v);
            else if (n && f.starts_with("VA"))
                s.ze = 90 - unpackDms(v);
            else if (n && f.starts_with("SD"))
                s.sd = v;
            else if (n && f.starts_with("HD"))
                hd = v;
        }
        if (hd >= 0)
            s.sd = hd / std::sin(radians(s.ze));
        shots.push_back(s);
    }
    return shots;
}

std::vector<std::string> roundTrip(const std::string &units, std::string *gsi = nullptr) {
    ScriptedInteraction ui({units});
    convert::ExportOutput exported;
    EXPECT_TRUE(convert::exportGsi(kJob, {}, ui, exported).ok());
    if (gsi)
        *gsi = exported.bytes;
    convert::ImportOutput imported;
    EXPECT_TRUE(convert::importGsiWith(sourceOf(exported.bytes), {}, imported).ok());
    std::vector<std::string> lines;
    for (const std::string_view line : imported.lines)
        lines.emplace_back(line.substr(0, line.size() - 1));
    return lines;
}

TEST(GsiRoundTrip, KeepsEveryShot) {
    for (const char *units : {"Deg/Min/Sec|Meters", "Gon|Meters"}) {
        const auto before = shotsOf(kJob);
        const auto after = shotsOf(roundTrip(units));
        ASSERT_EQ(after.size(), before.size()) << units;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const Shot &a = before[i], &b = after[i];
            EXPECT_EQ(b.type, a.type) << units << " shot " << i;
            EXPECT_EQ(b.op, a.op) << i;
            EXPECT_EQ(b.fp, a.fp) << i;
            EXPECT_EQ(b.note, a.note) << i;
            EXPECT_NEAR(b.hz, a.hz, 0.35 / 3600) << i;
            EXPECT_NEAR(b.ze, a.ze, 0.35 / 3600) << i;
            EXPECT_NEAR(b.sd, a.sd, 0.0005) << i;
        }
    }
}

TEST(GsiRoundTrip, KeepsHeightsAndPoints) {
    const auto lines = roundTrip("Deg/Min/Sec|Meters");
    auto has = [&](const std::string &wanted) {
        return std::find(lines.begin(), lines.end(), wanted) != lines.end();
    };
    EXPECT_TRUE(has("LS,HI1.550"));
    EXPECT_TRUE(has("LS,HR1.300"));
    EXPECT_TRUE(has("LS,HR2.000"));
    EXPECT_TRUE(has("SP,PNCP9,N -12.5000,E 7.2500,EL0.0000,--MARK"));
    EXPECT_TRUE(has("OC,OPST2,N 5100.0000,E 2000.0000,EL101.0000,--"));
    EXPECT_TRUE(lines.front().starts_with("JB,NMROUND,DT11-23-2026,TM10:15:00"));
    // A GPS position and its quality come back as they were, not as a point.
    EXPECT_TRUE(has("GPS,PN9,LA-33.5212345678,LN151.1234567890,EL25.1234,--BASE"));
    EXPECT_TRUE(has("--SDEV: 0.012,0.034,0.056 PDOP: 1.8"));
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string &l) { return l.starts_with("SP,PN9"); }),
              0);
}

TEST(GsiExport, WritesTheBlocksWordForWord) {
    std::string gsi;
    roundTrip("Deg/Min/Sec|Feet", &gsi);
    const auto lines = split(gsi, '\n');
    // Block numbers grow by one for every line written.
    EXPECT_EQ(lines[0], "*410001+0000000000000020 42....+00000000000ROUND ");
    EXPECT_EQ(lines[1], "*410002+0000000000000022 42....+00000011-23-2026 "
                        "43....+0000000010:15:00 ");
    EXPECT_EQ(lines[4], "*410005+0000000000000001 42....+0000000000000ST1 "
                        "43....+00000005000.0000 44....+00000002000.0000 "
                        "45....+00000000100.0000 ");
    EXPECT_EQ(lines[8], "*110009+00000000000000P1 21...4+0000000004530150 "
                        "22...4+0000000008800050 31...1+0000000000035111 "
                        "81...1+0000000000000000 82...1+0000000000000000 "
                        "83...1+0000000000000000 51....+000000000013+000 "
                        "87...1+0000000000001300 ");
    EXPECT_EQ(lines[9], "*410010+0000000000000090 42....+00000000000FENCE "
                        "43....+0000000000000000 ");
}

} // namespace
} // namespace tramline::test
