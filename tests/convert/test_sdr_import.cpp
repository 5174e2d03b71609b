// The SDR import's edge cases, grouped by what they guard.
#include "convert/sdr_face_sets.h"
#include "convert_test_support.h"

namespace tramline::test {
namespace {

using convert::sdr::FaceReading;
using convert::sdr::SetRole;

// An SDR-33 record: the four-byte type, then 16-byte fields.
std::string sdr33(const std::string &type, std::initializer_list<std::string> fields) {
    std::string line = type;
    for (const auto &f : fields)
        line += f + std::string(f.size() < 16 ? 16 - f.size() : 0, ' ');
    return line + "\r\n";
}

std::string header(const std::string &units) {
    return "00NMSDR33 V04-04.02     05-Nov-20 08:00 " + units + "\r\n";
}

TEST(SdrHeader, DecidesLayoutUnitsAndCoordinateOrder) {
    struct Case {
        std::string head;         // empty: no header, the question answers
        std::string answer;       // reply to "File Format"
        double northing, easting; // of point 1000
        const char *horizontal;   // AR written for 100.0000 read
    };
    const std::string point = "08KI1000            100.0           200.0           5.0\r\n";
    const std::string shot = sdr33("09MC", {"1000", "2000", "10.0", "90.0", "100.0"});
    const Case cases[] = {
        {header("113111"), "", 100.0, 200.0, "AR100.0000"},
        {header("113121"), "", 200.0, 100.0, "AR100.0000"}, // easting first: swapped
        {header("213111"), "", 100.0, 200.0, "AR90.0000"},  // gons to degrees
        {"", "SDR-33", 100.0, 200.0, "AR100.0000"},
        {"", "All Others", 0.0, 100.0, ""}, // the same bytes read as SDR-2x
    };
    for (const auto &c : cases) {
        std::deque<std::string> replies = {"Sideshots"};
        if (!c.answer.empty())
            replies.push_back(c.answer);
        ScriptedInteraction ui(replies);
        convert::ImportOutput out;
        ASSERT_TRUE(convert::importSdr(sourceOf(c.head + point + shot), ui, out).ok());
        ASSERT_EQ(out.points.size(), 1u) << c.head << c.answer;
        EXPECT_EQ(out.points[0].name, "1000");
        EXPECT_DOUBLE_EQ(out.points[0].northing, c.northing) << c.head << c.answer;
        EXPECT_DOUBLE_EQ(out.points[0].easting, c.easting) << c.head << c.answer;
        EXPECT_EQ(ui.questions.size(), c.answer.empty() ? 1u : 2u);
        if (*c.horizontal) {
            const auto shots = linesStarting(out, "SS,");
            ASSERT_EQ(shots.size(), 1u);
            EXPECT_NE(shots[0].find(c.horizontal), std::string::npos) << shots[0];
        }
    }
}

TEST(SdrHeader, CancelledFormatQuestionWritesNothing) {
    Status status;
    const auto out = importSdrBytes("08KI1000  100.0\r\n", {"Sideshots", "<cancel>"}, &status);
    EXPECT_EQ(status.code, StatusCode::Cancelled);
    EXPECT_TRUE(out.lines.empty());
}

TEST(SdrSourceLines, ShortLinesAreSkippedAndLongOnesComeInPieces) {
    const std::string longLine(300, 'x');
    const auto lines = sourceOf("a\r\n" + longLine + "\n13NMnote\r13NMcr only\n");
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].text.size(), 254u);
    EXPECT_EQ(lines[1].text.size(), 46u);
    EXPECT_EQ(lines[0].number, 1u); // the skipped line keeps its number
    EXPECT_EQ(lines[2].text, "13NMnote");
    EXPECT_EQ(lines[3].text, "13NMcr only");
}

TEST(SdrTargetHeights, OnlyTheHeightInForceAtTheNextShotStays) {
    struct Case {
        std::vector<std::string> in, out;
    };
    const Case cases[] = {
        {{"LS,HR1\n", "--note\n", "BK,OP1,BP2,BS,BC0\n", "LS,HR2\n", "SS,a\n"},
         {"--note\n", "BK,OP1,BP2,BS,BC0\n", "LS,HR2\n", "SS,a\n"}},
        {{"LS,HR1\n", "SS,a\n", "LS,HR2\n", "FD,b\n"},
         {"LS,HR1\n", "SS,a\n", "LS,HR2\n", "FD,b\n"}},
        {{"LS,HR1\n", "LS,HI1.5\n", "LS,HR2\n"}, {"LS,HI1.5\n", "LS,HR2\n"}},
        {{"LS,HR1\n", "LS,HR2\n", "LS,HR3\n", "BR,c\n"}, {"LS,HR3\n", "BR,c\n"}},
    };
    for (const auto &c : cases) {
        convert::OutputLines lines;
        for (const auto &line : c.in)
            lines.push_back(line);
        convert::dropUnusedTargetHeights(lines);
        EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.end()), c.out);
    }
}

TEST(SdrReadings, WarnAboutZeroValuesAndOccupyPoints) {
    const std::string file = header("113111") + sdr33("02TP", {"A"}) +
                             sdr33("09MC", {"A", "B", "0", "0", "10.0"}) +
                             sdr33("09MC", {"C", "D", "5.0", "90.0", "20.0"}) +
                             sdr33("09MC", {"", "E", "5.0", "90.0", "30.0"});
    const auto out = importSdrBytes(file);
    EXPECT_NE(out.report.find("\nWarning: zero distance and vertical angle at line 3 of source "
                              "raw file."),
              std::string::npos)
        << out.report;
    EXPECT_NE(out.report.find("\nWarning: occupy points A and C don't match for line:\n  09MC"),
              std::string::npos)
        << out.report;
    const auto &l = out.lines;
    const auto zero = std::find(l.begin(), l.end(),
                                "--Warning: zero values for distance and vertical angle on "
                                "following shot\n");
    ASSERT_NE(zero, l.end());
    EXPECT_TRUE(zero[1].starts_with("SS,OPA,FPB,")) << zero[1];
    // The new station gets its backsight line; the reading without a
    // from-point stays at the current station.
    EXPECT_EQ(linesStarting(out, "BK,OPC,").size(), 1u);
    EXPECT_EQ(linesStarting(out, "SS,OPC,FPE,").size(), 1u);
}

TEST(SdrReadings, WithoutAnyStationAreReportedAndSkipped) {
    const auto out = importSdrBytes(header("113111") + sdr33("09MC", {"", "B", "5", "90", "1"}));
    EXPECT_NE(out.report.find("\nWarning: unable to set occupy point at line 2"), std::string::npos)
        << out.report;
    EXPECT_TRUE(linesStarting(out, "SS,").empty());
    EXPECT_EQ(out.skipped.at("reading without a station"), 1);
}

TEST(SdrBacksight, MeasurementsAsSideshotsOrNotes) {
    const std::string file = header("113111") + sdr33("08KI", {"B", "100", "100", "0"}) +
                             sdr33("02TP", {"A", "0", "0", "0", "1.5"}) +
                             sdr33("07TP", {"A", "B", "45.0", "0.0"}) +
                             sdr33("09MC", {"A", "B", "141.42", "90.0", "0.0"});
    struct Case {
        const char *answer;
        std::size_t sideshots, notes;
    };
    for (const Case c : {Case{"Sideshots", 2, 0}, Case{"Notes", 0, 1}}) {
        const auto out = importSdrBytes(file, {c.answer});
        EXPECT_EQ(linesStarting(out, "SS,").size(), c.sideshots) << c.answer;
        EXPECT_EQ(linesStarting(out, "--Backsight reading:").size(), c.notes) << c.answer;
        // B is a known point: the backsight names it rather than its azimuth.
        EXPECT_EQ(linesStarting(out, "BK,OPA,BPB,BS,BC0.0000\n").size(), 1u) << c.answer;
    }
    const auto out = importSdrBytes(file);
    EXPECT_EQ(linesStarting(out, "SS,OPA,FPB,AZ45.0000,ZE90.0,SD100.0,--Backsight\n").size(), 1u);
}

TEST(SdrBacksight, ToAnUnknownPointIsWrittenByItsAzimuth) {
    const auto out = importSdrBytes(header("113111") + sdr33("02TP", {"A"}) +
                                    sdr33("07TP", {"A", "Z", "30.5", "10.25"}));
    EXPECT_EQ(linesStarting(out, "BK,").at(0), "BK,OPA,BP,BS30.3000,BC10.1500\n");
}

TEST(SdrFaceSets, GroupingRule) {
    struct Case {
        const char *name;
        std::vector<FaceReading> readings; // backsight is "BS"
        std::vector<std::pair<std::size_t, SetRole>> placed;
    };
    using enum SetRole;
    const FaceReading bs1{false, "BS"}, bs2{true, "BS"}, a1{false, "A"}, a2{true, "A"},
        b1{false, "B"}, b2{true, "B"};
    const Case cases[] = {
        {"face 1 then face 2",
         {bs1, a1, b1, b2, a2, bs2},
         {{0, BD}, {1, FD}, {4, FR}, {5, BR}, {0, BD}, {2, FD}, {3, FR}, {5, BR}}},
        {"both faces per target",
         {bs1, bs2, a1, a2, b1, b2},
         {{0, BD}, {2, FD}, {3, FR}, {1, BR}, {0, BD}, {4, FD}, {5, FR}, {1, BR}}},
        {"no face-2 backsight", {bs1, a1, a2}, {{0, Single}, {1, Single}, {2, Single}}},
        {"no pair", {bs1, a1, b2, bs2}, {{0, Single}, {1, Single}, {2, Single}, {3, Single}}},
        {"reading before the round",
         {a1, bs1, a1, a2, bs2},
         {{0, Single}, {1, BD}, {2, FD}, {3, FR}, {4, BR}}},
        {"two rounds",
         {bs1, a1, a2, bs2, bs1, b1, b2, bs2},
         {{0, BD}, {1, FD}, {2, FR}, {3, BR}, {4, BD}, {5, FD}, {6, FR}, {7, BR}}},
        {"repeated target, extra readings",
         {bs1, a1, a1, a2, bs2, bs2, b1},
         {{0, BD}, {1, FD}, {3, FR}, {4, BR}, {2, Single}, {5, Single}, {6, Single}}},
    };
    for (const auto &c : cases) {
        const auto placed = convert::sdr::groupFaceReadings(c.readings, "BS");
        std::vector<std::pair<std::size_t, SetRole>> got;
        for (const auto &p : placed)
            got.emplace_back(p.index, p.role);
        EXPECT_EQ(got, c.placed) << c.name;
    }
    EXPECT_EQ(convert::sdr::groupFaceReadings({bs1, bs2}, "")[0].role, Single);
}

TEST(SdrFaceSets, TargetHeightChangesInsideASetAreWrittenBeforeTheirLine) {
    const std::string file = header("113111") + sdr33("02TP", {"S"}) + sdr33("07TP", {"S", "BS"}) +
                             sdr33("03NM", {"1.0"}) + sdr33("09F1", {"S", "BS", "10", "90", "0"}) +
                             sdr33("03NM", {"1.5"}) + sdr33("09F1", {"S", "A", "20", "90", "45"}) +
                             sdr33("09F2", {"S", "A", "20", "270", "225"}) +
                             sdr33("03NM", {"1.0"}) +
                             sdr33("09F2", {"S", "BS", "10", "270", "180"});
    const auto out = importSdrBytes(file);
    std::vector<std::string> body;
    for (const auto &line : out.lines)
        if (line.starts_with("LS,HR") || line.starts_with("BD") || line.starts_with("FD") ||
            line.starts_with("FR") || line.starts_with("BR"))
            body.emplace_back(line.substr(0, line.find_first_of(",\n", 3)));
    const std::vector<std::string> expected = {
        "LS,HR1.0000", "BD,OPS", "LS,HR1.5000", "FD,OPS", "FR,OPS", "LS,HR1.0000", "BR,OPS"};
    EXPECT_EQ(body, expected);
}

TEST(SdrBytes, DescriptionsKeepTheirBytesAndGarbageCannotStopTheImport) {
    const std::string cyrillic = "\xD2\xEE\xF7\xEA\xE0";
    const auto out =
        importSdrBytes(header("113111") + sdr33("08KI", {"P", "1", "2", "3", cyrillic}) +
                       std::string("\x01\xff\x00\x80garbage\r\n", 13) + "99XXtype above 77\r\n");
    ASSERT_EQ(out.points.size(), 1u);
    EXPECT_EQ(out.points[0].description, cyrillic);
    EXPECT_EQ(out.skipped.at("not a record"), 1);
    EXPECT_EQ(out.skipped.at("ignored record type"), 1);
}

} // namespace
} // namespace tramline::test
