#include "../support/test_support.h"
#include "raw/document.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cmath>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

using namespace tramline;
using namespace tramline::raw;
namespace fs = std::filesystem;

namespace {

using tramline::test::slurp;

class RawDocumentTest : public tramline::test::ScratchFolderTest {
protected:
    RawDocument openText(const std::string &text, DisplayModes modes = {}) {
        RawDocument doc;
        doc.setModes(modes);
        EXPECT_TRUE(doc.open(write("in.rw5", text), ui));
        return doc;
    }

    ScriptedInteraction ui;
};

// A file already in the grid's formats comes back byte for byte.
TEST_F(RawDocumentTest, OpenSaveGivesTheSameBytes) {
    const std::string text = "JB,NMJOB,DT11-18-2026,TM08:15:00\n"
                             "MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n"
                             "--A note, with a comma\n"
                             "SP,PN1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD\n"
                             "OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD\n"
                             "BK,OP1,BP,BS118.0607,BC0.0000\n"
                             "LS,HI5.120,HR5.500\n"
                             "LS,HI5.120\n"
                             "LS,HR5.500\n"
                             "SS,OP1,FP101,AR187.4258,ZE90.0027,SD85.824,--IRON ROD FOUND\n"
                             "TR,OP1,FP2,BRN45.3000E,ZE89.2452,SD453.567,--\n"
                             "CL+AB,OP1,FP2,BRS5.0000W,ZE89.2452,SD453.567,--\n"
                             "FD,OP1,FP2,DL1.0000,ZE,SD,--angle only\n"
                             "GPS,PN9,LA44.123456789,LN-93.123456789,EL250.1234,--CP\n"
                             "BP,PN8,LA44.123456789,LN-93.123456789,EL250.1234,AG1,PA2,AT3,SR4\n"
                             "BP,PN8,LA44.123456789,LN-93.123456789,EL250.1234,--BASE\n"
                             "G0,vector block\n"
                             "G1,BP8,PN9,DX1.0,DY2.0,DZ3.0\n"
                             "EL,PN5,EL12.0000\n"
                             "AZ,OP1,FP2,BS45.3000\n"
                             "NAME,Loop A\n"
                             "DO,Data On/Off\n"
                             "CC,one,two\n"
                             "CSE,N 0.01,E 0.02,EL0.03,AZ5\n"
                             "SSE,TE1,IE2,HI3,RD4\n"
                             "MSE,PE1,RE2,VP3,VR4,DT5,PP6\n";
    RawDocument doc = openText(text);
    EXPECT_EQ(doc.rowCount(), 26u);
    EXPECT_EQ(doc.text(), text);
    const auto out = dir / "out.rw5";
    ASSERT_TRUE(doc.saveAs(out, ui));
    EXPECT_EQ(slurp(out), text);
    EXPECT_EQ(doc.fileName(), out.string());
    EXPECT_FALSE(doc.modified());
}

TEST_F(RawDocumentTest, TheBundledExampleRoundTrips) {
    const fs::path example = fs::path(TRAMLINE_SOURCE_DIR) / "data/examples/closed-traverse.rw5";
    RawDocument doc;
    ASSERT_TRUE(doc.open(example, ui));
    EXPECT_EQ(doc.text(), slurp(example));
}

// Where the grid's display changes a value's text, the saved file changes
// with it: vertical angles become zenith angles, horizontal distances slope
// distances, and values are rounded to the grid's decimals.
TEST_F(RawDocumentTest, GridFormatsRewriteValues) {
    struct Case {
        const char *in;
        const char *out;
    };
    const Case cases[] = {
        {"SS,OP1,FP2,AR90.0000,VA2.3000,SD100.000,--",
         "SS,OP1,FP2,AR90.0000,ZE87.3000,SD100.000,--\n"},
        {"SS,OP1,FP2,AR90,ZE90,HD100,--", "SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--\n"},
        {"SS,OP1,FP2,AR90.12345,ZE90.0000,SD100.12345,--",
         "SS,OP1,FP2,AR90.1235,ZE90.0000,SD100.123,--\n"},
        {"SS,OP1,FP2,AR359.59596,ZE90.0000,SD1,--", "SS,OP1,FP2,AR360.0000,ZE90.0000,SD1.000,--\n"},
        {"SS,OP1,FP2,ARabc,ZEdef,SDghi,--kept", "SS,OP1,FP2,ARabc,ZEdef,SDghi,--kept\n"},
        {"SP,PN1,N 1,E 2.12345,EL,--", "SP,PN1,N 1.0000,E 2.1235,EL,--\n"},
        {"LS,HI5.12345,HR6", "LS,HI5.123,HR6.000\n"},
        {"OC,OP1,N 1,E 2,EL3,--kept as written", "OC,OP1,N 1,E 2,EL3,--kept as written\n"},
        {"ZZ,an unknown record", "ZZ,an unknown record\n"},
    };
    for (const auto &c : cases) {
        RawDocument doc = openText(std::string(c.in) + "\n");
        EXPECT_EQ(doc.text(), c.out) << c.in;
    }
}

TEST_F(RawDocumentTest, DisplayModesDecideCellsAndWrittenCodes) {
    const std::string line = "SS,OP1,FP2,AR90.0000,ZE60.0000,SD100.000,--\n";
    struct Case {
        VerticalMode vertical; // 0: a corrupt mode, shown as zenith
        DistanceMode distance;
        const char *vertCell, *distCell, *vertCaption, *distCaption, *written;
    };
    const Case cases[] = {
        {VerticalMode::Zenith, DistanceMode::Slope, "60.0000", "100.000", "ZenithAng", "SlopeDist",
         "SS,OP1,FP2,AR90.0000,ZE60.0000,SD100.000,--\n"},
        {VerticalMode::VerticalAngle, DistanceMode::Slope, "30.0000", "100.000", "VertAng",
         "SlopeDist", "SS,OP1,FP2,AR90.0000,VA30.0000,SD100.000,--\n"},
        {VerticalMode::ElevationDifference, DistanceMode::Horizontal, "50.0000", "86.603",
         "ElevDiff", "HorzDist", "SS,OP1,FP2,AR90.0000,CE50.0000,HD86.603,--\n"},
        {VerticalMode::None, DistanceMode::Slope, "30.0000", "100.000", "VertAng", "SlopeDist",
         "SS,OP1,FP2,AR90.0000,VA30.0000,SD100.000,--\n"},
        {static_cast<VerticalMode>(0), DistanceMode::Slope, "60.0000", "100.000", "ZenithAng",
         "SlopeDist", "SS,OP1,FP2,AR90.0000,ZE60.0000,SD100.000,--\n"},
    };
    for (const auto &c : cases) {
        DisplayModes modes;
        modes.vertical = c.vertical;
        modes.distance = c.distance;
        RawDocument doc = openText(line, modes);
        const auto &row = doc.row(0);
        EXPECT_EQ(row.cells[kVerticalCell], c.vertCell) << static_cast<int>(c.vertical);
        EXPECT_EQ(row.cells[kDistanceCell], c.distCell) << static_cast<int>(c.vertical);
        const auto caps = doc.captions(row.type);
        EXPECT_EQ(caps[kVerticalCell], c.vertCaption);
        EXPECT_EQ(caps[kDistanceCell], c.distCaption);
        EXPECT_EQ(doc.text(), c.written) << static_cast<int>(c.vertical);
    }
}

TEST_F(RawDocumentTest, NoteRowsThatHoldRecords) {
    RawDocument doc;
    struct Case {
        const char *note;
        const char *line;
    };
    const Case cases[] = {
        {"OC,OP1,N 1,E 2,EL3,--", "OC,OP1,N 1,E 2,EL3,--\n"},
        {"--MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0", "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"},
        {"--JB,NMX,DT,TM", "JB,NMX,DT,TM\n"},
        {"--SS,not a record", "----SS,not a record\n"},
        {"plain note", "--plain note\n"},
    };
    for (const auto &c : cases) {
        RawRow row;
        row.cells = {c.note};
        EXPECT_EQ(doc.lineFor(row), c.line) << c.note;
    }
}

TEST_F(RawDocumentTest, AddAndDeleteRows) {
    RawDocument doc;
    const std::vector<std::string> types = {"TR",   "SS", "BK", "HI", "PT",  "EL",  "GPS",
                                            "NAME", "",   "DO", "AZ", "CSE", "SSE", "MSE"};
    size_t at = 0;
    for (const auto &t : types)
        at = doc.addRow(t, at);
    EXPECT_EQ(doc.rowCount(), types.size());
    EXPECT_TRUE(doc.modified());
    EXPECT_EQ(doc.row(0).type, "TR");
    EXPECT_EQ(doc.row(0).cells[kCodeCell], "AR");
    EXPECT_EQ(doc.row(9).cells[0], "Data On/Off");
    // Each new row is written as its record, with empty values.
    EXPECT_EQ(doc.lineFor(doc.row(0)), "TR,OP,FP,AR,ZE,SD,--\n");
    EXPECT_EQ(doc.lineFor(doc.row(3)), "LS,HI,HR\n");
    EXPECT_EQ(doc.lineFor(doc.row(9)), "DO,Data On/Off\n");
    // Inserted after the current row.
    const size_t inserted = doc.addRow("SS", 0);
    EXPECT_EQ(inserted, 1u);
    EXPECT_EQ(doc.row(1).type, "SS");
    EXPECT_TRUE(doc.deleteRow(1));
    EXPECT_EQ(doc.row(1).type, "SS"); // the original second row
    EXPECT_FALSE(doc.deleteRow(99));
    EXPECT_TRUE(doc.setCell(0, 2, "7"));
    EXPECT_EQ(doc.row(0).cells[kForesightCell], "7");
    EXPECT_FALSE(doc.setCell(0, 9, "x"));
    EXPECT_FALSE(doc.setRowType(0, "XX"));
    EXPECT_TRUE(doc.setRowType(0, "HI"));
    EXPECT_EQ(doc.row(0).cells.size(), 2u);
}

TEST_F(RawDocumentTest, ModifyMeasurements) {
    const std::string text = "SS,OP1,FP2,AR359.5900,ZE90.0000,SD100.000,--\n"
                             "SS,OP1,FP3,AR0.0100,ZE89.5900,SD50.000,--\n"
                             "LS,HI5.000\n"
                             "SS,OP1,FP10,AR90.0000,ZE,SD,--\n";
    struct Case {
        ModifyField field;
        double delta;
        ModifySelection selection;
        int count;
        size_t row, cell;
        const char *result;
    };
    const Case cases[] = {
        {ModifyField::HorizontalAngle,
         0.0200,
         {"2", 0, 0},
         1,
         0,
         kHorizontalCell,
         "0.0100"}, // wraps past 360
        {ModifyField::HorizontalAngle, -0.0200, {"3", 0, 0}, 1, 1, kHorizontalCell, "359.5900"},
        {ModifyField::VerticalAngle, 0.0030, {"1-3", 0, 0}, 2, 1, kVerticalCell, "89.5930"},
        {ModifyField::Distance, 0.25, {"", 1, 4}, 2, 1, kDistanceCell, "50.250"}, // empty cell
                                                                                  // untouched
        {ModifyField::Distance, 1.0, {"10", 0, 0}, 0, 3, kDistanceCell, ""},
        {ModifyField::Distance, 1.0, {"", 2, 3}, 1, 0, kDistanceCell, "100.000"},
    };
    for (const auto &c : cases) {
        RawDocument doc = openText(text);
        EXPECT_EQ(doc.modifyMeasurements(c.field, c.delta, c.selection), c.count);
        EXPECT_EQ(doc.row(c.row).cells[c.cell], c.result);
    }
    // Elevation differences only in the elevation-difference display.
    RawDocument zenith = openText(text);
    EXPECT_EQ(zenith.modifyMeasurements(ModifyField::ElevationDifference, 1.0, {"2", 0, 0}), -1);
    DisplayModes elev;
    elev.vertical = VerticalMode::ElevationDifference;
    RawDocument diff = openText(text, elev);
    EXPECT_EQ(diff.modifyMeasurements(ModifyField::VerticalAngle, 0.5, {"3", 0, 0}), 1);
    EXPECT_EQ(diff.row(1).cells[kVerticalCell], "0.5145"); // 50 sin(0.0167 deg) + 0.5
    // In gons the circle is 400: 399.9815 + 30 wraps to 29.9815.
    RawDocument gons = openText(text);
    gons.changeAngleMode(AngleUnit::Gons); // a units note becomes the first row
    EXPECT_EQ(gons.modifyMeasurements(ModifyField::HorizontalAngle, 30.0, {"2", 0, 0}), 1);
    EXPECT_EQ(gons.row(1).cells[kHorizontalCell], "29.9815");
    // Found by fuzzing: a huge angle is brought onto the circle at once
    // (adding circles one by one never finished); an infinite one is left.
    EXPECT_EQ(gons.modifyMeasurements(ModifyField::HorizontalAngle, 1e300, {"2", 0, 0}), 1);
    const double wrapped = std::stod(gons.row(1).cells[kHorizontalCell]);
    EXPECT_TRUE(wrapped >= 0.0 && wrapped < 400.0) << wrapped;
    EXPECT_EQ(gons.modifyMeasurements(ModifyField::HorizontalAngle, INFINITY, {"2", 0, 0}), 0);
}

TEST_F(RawDocumentTest, FindAndReplace) {
    RawDocument doc = openText("SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--IP\n"
                               "SS,OP1,FP3,AR10.0000,ZE90.0000,SD100.000,--IP FOUND\n"
                               "--note\n");
    auto hit = doc.find("IP", {0, 0});
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->row, 0u);
    EXPECT_EQ(hit->column, 7u);
    hit = doc.find("IP", *hit);
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->row, 1u);
    hit = doc.find("IP", *hit); // wraps round
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->row, 0u);
    EXPECT_TRUE(doc.find("SS", {2, 1}));
    EXPECT_FALSE(doc.find("nowhere", {0, 0}));
    // The only hit is the starting cell itself.
    hit = doc.find("note", {2, 1});
    ASSERT_TRUE(hit);
    EXPECT_EQ(hit->row, 2u);

    ScriptedInteraction answers({"No", "Yes"});
    EXPECT_EQ(doc.replace("IP", "PIN", ReplaceScope::AskEach, answers), 1);
    EXPECT_EQ(answers.questions[0], "Search and Replace: Replace in row 1 column 8?");
    EXPECT_EQ(doc.row(0).cells[kDescriptionCell], "IP");
    EXPECT_EQ(doc.row(1).cells[kDescriptionCell], "PIN FOUND");
    EXPECT_EQ(doc.replace("0000", "0", ReplaceScope::All, ui), 4); // two angles in each shot
    ScriptedInteraction cancel({"Cancel"});
    EXPECT_EQ(doc.replace("SS", "TR", ReplaceScope::AskEach, cancel), 0);
}

TEST_F(RawDocumentTest, AppendAnotherFile) {
    const auto other =
        write("other.rw5", "JB,NMOTHER,DT,TM\nMO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\nLS,HI5\n");
    RawDocument doc = openText("--first\n");
    ASSERT_TRUE(doc.append(other, RawFlavour::Rw5, ui));
    EXPECT_EQ(doc.rowCount(), 4u);
    EXPECT_EQ(doc.row(3).type, "HI");
    RawDocument tds = openText("--first\n");
    ASSERT_TRUE(tds.append(other, RawFlavour::Tds, ui));
    EXPECT_EQ(tds.rowCount(), 2u);
    EXPECT_FALSE(tds.append(dir / "missing.rw5", RawFlavour::Rw5, ui));
    EXPECT_EQ(ui.messages.back(), "Error: unable to read raw file");
}

TEST_F(RawDocumentTest, FailuresKeepEverything) {
    RawDocument doc = openText("LS,HI5.000\n");
    EXPECT_FALSE(doc.open(dir / "missing.rw5", ui));
    EXPECT_EQ(ui.messages.back(), "Error: unable to read raw file");
    EXPECT_FALSE(doc.open(dir, ui)); // a folder
    ASSERT_EQ(::mkfifo((dir / "pipe.rw5").c_str(), 0666), 0);
    EXPECT_FALSE(doc.open(dir / "pipe.rw5", ui)); // would wait for a writer for ever
    EXPECT_FALSE(doc.open("/dev/zero", ui));      // would never end
    EXPECT_EQ(doc.rowCount(), 1u);                // the open document is kept

    const auto target = write("keep.rw5", "old\n");
    doc.addRow("SS", 0);
    EXPECT_FALSE(doc.saveAs(dir, ui)); // a folder where the file should be
    EXPECT_TRUE(ui.messages.back().starts_with("Error: failed to write rawfile\n"));
    EXPECT_TRUE(doc.modified());
    EXPECT_NE(doc.fileName(), dir.string());
    EXPECT_FALSE(doc.saveAs(dir / "no" / "such" / "folder.rw5", ui));
    EXPECT_EQ(slurp(target), "old\n");

    RawDocument untitled;
    EXPECT_FALSE(untitled.save(ui));
    EXPECT_EQ(untitled.fileName(), "NONE");
}

TEST_F(RawDocumentTest, PrintReport) {
    RawDocument doc = openText("SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--IP\n--note\n");
    ASSERT_TRUE(doc.print(dir, ui));
    const std::string report = slurp(dir / "morvrprt.tmp");
    EXPECT_EQ(report.rfind("Edit-Process Raw File\n", 0), 0u);
    EXPECT_NE(report.find("    1  SS    OcPt=1 FsPt=2 Code=AR HorzAngle=90.0000 ZenithAng=90.0000 "
                          "SlopeDist=100.000 Description=IP\n"),
              std::string::npos);
    EXPECT_NE(report.find("    2  --    note\n"), std::string::npos);
    EXPECT_FALSE(doc.print(dir / "missing-folder", ui));
    EXPECT_EQ(ui.messages.back().rfind("Can't open output file ", 0), 0u);
}

} // namespace
