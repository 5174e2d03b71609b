// The GSI import's own rules: the grouping of face readings by the order
// chosen, and what the code blocks of each coding write.
#include "base/text.h"
#include "convert/gsi_face_sets.h"
#include "convert/gsi_import.h"
#include "convert_test_support.h"

namespace tramline::test {
namespace {

using convert::gsi::FaceOrder;

// Readings as "B1 A1 A2 B2" (point, face) and the grouping as "BD:B1 ...".
std::string grouped(const std::string &readings, FaceOrder order) {
    std::vector<convert::gsi::FaceReading> faces;
    std::vector<std::string> names;
    for (std::string_view r : split(readings, ' ')) {
        faces.push_back({r.back() == '2', std::string(r.substr(0, r.size() - 1))});
        names.emplace_back(r);
    }
    static const char *const kRoles[] = {"SS", "BD", "FD", "FR", "BR"};
    std::string out;
    for (const auto &placed : convert::gsi::groupFaceSets(faces, "B", order))
        out += std::string(out.empty() ? "" : " ") + kRoles[int(placed.role)] + ":" +
               names[placed.index];
    return out;
}

TEST(GsiFaceSets, PairsReadingsInTheOrderObserved) {
    struct {
        const char *readings;
        FaceOrder order;
        const char *sets;
    } cases[] = {
        {"B1 A1 C1 C2 A2 B2", FaceOrder::BFFB, "BD:B1 FD:A1 FR:A2 BR:B2 BD:B1 FD:C1 FR:C2 BR:B2"},
        // Backsight on face 2 before the foresights: no BFFB set.
        {"B1 A1 B2 A2", FaceOrder::BFFB, "SS:B1 SS:A1 SS:B2 SS:A2"},
        {"B1 A1 B2 A2", FaceOrder::BFBF, "BD:B1 FD:A1 FR:A2 BR:B2"},
        {"B1 A1 A2 B2", FaceOrder::BFBF, "SS:B1 SS:A1 SS:A2 SS:B2"},
        // Readings before the first round and without their other face.
        {"A1 B1 A1 D1 A2 B2", FaceOrder::BFFB, "SS:A1 BD:B1 FD:A1 FR:A2 BR:B2 SS:D1"},
        // Two rounds, each with its own backsight readings.
        {"B1 A1 A2 B2 B1 A1 A2 B2", FaceOrder::BFFB,
         "BD:B1 FD:A1 FR:A2 BR:B2 BD:B1 FD:A1 FR:A2 BR:B2"},
        {"A1 A2", FaceOrder::BFFB, "SS:A1 SS:A2"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(grouped(c.readings, c.order), c.sets) << c.readings;
}

convert::ImportOutput importText(const std::string &text, convert::GsiImportOptions options = {}) {
    convert::ImportOutput out;
    const Status s = convert::importGsiWith(sourceOf(text), options, out);
    EXPECT_TRUE(s.ok()) << s.message;
    return out;
}

std::string joined(const convert::ImportOutput &out) {
    std::string all;
    for (const auto &line : out.lines)
        all += line;
    return all;
}

TEST(GsiImport, WildSoftBlocksAndCodes) {
    const auto out =
        importText("*410001+0000000000000020 42....+000000000000JOB7 \n"
                   "*110002+00000000000000S1 84..10+0000000001000000 85..10+0000000002000000 "
                   "86..10+0000000000100000 88..10+0000000000001500 \n"
                   "*110003+00000000000000B1 21.324+0000000000000000 22.324+0000000009000000 "
                   "31..00+0000000000050000 87..10+0000000000001300 \n"
                   "*410004+0000000000000014 42....+0000000000002000 \n"
                   "*410005+0000000000000999 \n"
                   "*110006+00000000000000P7 21.324+0000000004530150 22.324+0000000027000000 "
                   "32..00+0000000000012345 81..00+0000000000001000 82..00+0000000000002000 "
                   "83..00+00000000000----- \n"
                   "*410007+0000000000000090 42....+00000000000FENCE \n"
                   "*410008+0000000000000007 42....+0000000000000250 \n");
    EXPECT_EQ(joined(out), "JB,NMJOB7,DT,TM\n"
                           "--Leica GSI-16\n"
                           "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                           "--Job Name: JOB7\n"
                           "OC,OPS1,N 2000.0000,E 1000.0000,EL100.0000,--\n"
                           "SP,PNS1,N 2000.0000,E 1000.0000,EL100.0000,--\n"
                           "LS,HI1.500\n"
                           "BK,OPS1,BPB1,BS,BC0.000000\n"
                           "LS,HR1.300\n"
                           "SS,OPS1,FPB1,AR0.000000,ZE90.000000,SD50.0000,--\n"
                           "--Code 14 : Change to Rod Height\n"
                           "LS,HR2.000\n"
                           "--Using 999 vertical offset code\n"
                           "SS,OPS1,FPP7,AR45.301500,ZE270.000000,HD12.3450,--FENCE\n"
                           "SP,PNP7,N 2.0000,E 1.0000,EL,--FENCE\n"
                           "--OFFSET UP 0.250\n");
    EXPECT_EQ(out.observations, 2);
    ASSERT_EQ(out.points.size(), 2u);
    EXPECT_EQ(out.points[1].description, "FENCE") << "a code-90 description reaches the point";
}

TEST(GsiImport, CodingsWriteTheirOwnShapes) {
    const std::string station = "*110001+00000000000000S1 84..10+0000000001000000 "
                                "85..10+0000000002000000 \n";
    const std::string shot = "*110002+00000000000000S2 21.324+0000000001000000 "
                             "22.324+0000000009000000 31..00+0000000000050000 \n";
    struct {
        convert::GsiImportOptions options;
        std::string text;
        const char *expected;
    } cases[] = {
        // A shot to a point set up later is a traverse shot in Liscad.
        {{convert::GsiCoding::Liscad},
         station + shot + "*110003+00000000000000S2 84..10+0 \n",
         "TR,OPS1,FPS2,AR10.000000,ZE90.000000,SD50.0000,--\n"},
        {{convert::GsiCoding::Liscad}, station + shot, "--UNITS METERS\n"},
        // A target height in a code block other than 14 is kept as a note.
        {{convert::GsiCoding::WildSoft},
         "*410001+0000000000000026 42....+00000000000FENCE 87..10+0000000000001650 \n" + shot,
         "--FENCE\n--LS,HR1.650\n"},
        {{convert::GsiCoding::WildSoft},
         station + shot,
         "SS,OPS1,FPS2,AR10.000000,ZE90.000000,SD50.0000,--\n"},
        {{convert::GsiCoding::TenTwentyThirtyForty, FaceOrder::BFFB, true, true},
         "*410001+0000000000000010 42....+00000000000000S9 43....+0000000000001600 \n"
         "*410002+0000000000000020 42....+00000000000000S8 \n" +
             shot,
         "SS,OPS9,FPS2,AZ10.000000,ZE90.000000,SD50.0000,--\n"},
        {{convert::GsiCoding::TenTwentyThirtyForty},
         "*410001+0000000000000010 42....+00000000000000S9 43....+0000000000001600 \n" + shot,
         "LS,HI1.600\n"},
        {{convert::GsiCoding::TenTwentyThirtyForty, FaceOrder::BFFB, false},
         "*410001+0000000000000040 42....+0000000000001700 \n" + shot,
         "LS,HR1.700\n"},
    };
    for (const auto &c : cases) {
        const std::string all = joined(importText(c.text, c.options));
        EXPECT_NE(all.find(c.expected), std::string::npos) << c.expected << "in\n" << all;
    }
}

// A GSI-16 reading block: point, horizontal and zenith angle (ddd.mmsss
// digits), slope distance 50 m.
std::string reading(const std::string &to, const char *hz, const char *ze) {
    const std::string name = std::string(16 - to.size(), '0') + to;
    return "*110002+" + name + " 21.324+" + hz + " 22.324+" + ze + " 31..00+0000000000050000 \n";
}

// Liscad checks each set's pairs: face 2 must be face 1 plus 180 degrees
// horizontally and the zenith angles must add to 360, within a minute.
TEST(GsiImport, LiscadWarnsOfInconsistentSetReadings) {
    const std::string station = "*110001+00000000000000S1 84..10+0000000001000000 "
                                "85..10+0000000002000000 \n";
    struct {
        const char *what;
        const char *frHz, *frZe, *brHz, *brZe;
        std::vector<std::string> warnings;
    } cases[] = {
        {"consistent",
         "0000000022500000",
         "0000000027000000",
         "0000000018000000",
         "0000000027000000",
         {}},
        {"foresight face 2 turned 2'",
         "0000000022502000",
         "0000000027000000",
         "0000000018000000",
         "0000000027000000",
         {"--WARNING: inconsistent forsight reverse angle"}},
        {"backsight face 2 turned 2'",
         "0000000022500000",
         "0000000027000000",
         "0000000017958000",
         "0000000027000000",
         {"--WARNING: inconsistent backsight reverse angle"}},
        {"backsight zeniths off by 1 degree",
         "0000000022500000",
         "0000000027000000",
         "0000000018000000",
         "0000000027100000",
         {"--WARNING: inconsistent backsight direct angle"}},
        {"foresight zeniths off by 1 degree",
         "0000000022500000",
         "0000000026900000",
         "0000000018000000",
         "0000000027000000",
         {"--WARNING: inconsistent forsight direct angle"}},
        {"within the minute",
         "0000000022500300",
         "0000000027000300",
         "0000000017959300",
         "0000000026959300",
         {}},
    };
    for (const auto &c : cases) {
        const std::string text = station + reading("B1", "0000000000000000", "0000000009000000") +
                                 reading("A", "0000000004500000", "0000000009000000") +
                                 reading("A", c.frHz, c.frZe) + reading("B1", c.brHz, c.brZe);
        convert::GsiImportOptions liscad;
        liscad.coding = convert::GsiCoding::Liscad;
        const auto out = importText(text, liscad);
        std::vector<std::string> warnings;
        for (const auto &line : out.lines)
            if (line.starts_with("--WARNING"))
                warnings.push_back(std::string(trimRight(line)));
        EXPECT_EQ(warnings, c.warnings) << c.what;
        EXPECT_NE(joined(out).find("BR,OPS1,FPB1"), std::string::npos) << c.what << ": no set";
        // WildSoft writes no such warnings.
        EXPECT_EQ(joined(importText(text)).find("WARNING"), std::string::npos) << c.what;
    }
}

// A closing shot in Liscad: a single reading to a station occupied before
// (other than the backsight), or to the point a code-4 block names.
TEST(GsiImport, LiscadTagsClosingShots) {
    auto setUp = [](const char *name) {
        return std::string("*110001+00000000000000") + name +
               " 84..10+0000000001000000 85..10+0000000002000000 \n";
    };
    const char *hz = "0000000001000000";
    const char *ze = "0000000009000000";
    const std::string text = setUp("S1") + reading("S2", hz, ze) + setUp("S2") +
                             reading("S1", hz, ze) + reading("S3", hz, ze) + setUp("S3") +
                             reading("S2", hz, ze) + reading("S1", hz, ze) +
                             "*410003+0000000000000004 42....+00000000000000P9 \n" +
                             reading("P9", hz, ze) + reading("P8", hz, ze);
    convert::GsiImportOptions liscad;
    liscad.coding = convert::GsiCoding::Liscad;
    const std::string all = joined(importText(text, liscad));
    for (const char *line : {"TR,OPS3,FPS1,AR10.000000,ZE90.000000,SD50.0000,--CLO\n",
                             "SS,OPS3,FPP9,AR10.000000,ZE90.000000,SD50.0000,--CLO\n",
                             "SS,OPS3,FPP8,AR10.000000,ZE90.000000,SD50.0000,--\n",
                             "TR,OPS2,FPS1,AR10.000000,ZE90.000000,SD50.0000,--\n",
                             "TR,OPS3,FPS2,AR10.000000,ZE90.000000,SD50.0000,--\n"})
        EXPECT_NE(all.find(line), std::string::npos) << line << "in\n" << all;
    EXPECT_EQ(joined(importText(text)).find("CLO"), std::string::npos) << "WildSoft tags none";
}

TEST(GsiImport, RefusesWhatItCannotRead) {
    convert::ImportOutput out;
    EXPECT_EQ(convert::importGsiWith(sourceOf("JOB,1\nnothing here\n"), {}, out).code,
              StatusCode::Format);
    convert::GsiImportOptions geoComp;
    geoComp.coding = convert::GsiCoding::GeoComp;
    EXPECT_EQ(convert::importGsiWith(sourceOf("*110001+0000000000000001 \n"), geoComp, out).code,
              StatusCode::Format);
    ScriptedInteraction ui({"<cancel>"});
    EXPECT_EQ(convert::importGsi(sourceOf("*110001+0000000000000001 \n"), ui, out).code,
              StatusCode::Cancelled);
    EXPECT_TRUE(out.lines.empty());
}

TEST(GsiImport, AsksTheLeicaOptions) {
    ScriptedInteraction ui({"BFBF|Liscad"});
    convert::ImportOutput out;
    ASSERT_TRUE(convert::importGsi(sourceOf("*110001+0000000000000001 21.324+0000000001000000 "
                                            "31..00+0000000000050000 \n"),
                                   ui, out)
                    .ok());
    ASSERT_EQ(ui.questions.size(), 1u);
    EXPECT_NE(ui.questions[0].find("Leica Options"), std::string::npos);
    EXPECT_EQ(linesStarting(out, "--UNITS").size(), 1u) << "Liscad was chosen";
}

} // namespace
} // namespace tramline::test
