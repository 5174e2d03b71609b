#include "../support/test_support.h"
#include "raw/document.h"

#include <gtest/gtest.h>

using namespace tramline;
using namespace tramline::raw;

namespace {

using VM = VerticalMode;
using DM = DistanceMode;

class DisplayModesTest : public tramline::test::ScratchFolderTest {
protected:
    RawDocument openText(const std::string &text, DisplayModes modes = {}) {
        RawDocument doc;
        doc.setModes(modes);
        EXPECT_TRUE(doc.open(write("in.rw5", text), ui));
        return doc;
    }
    static std::string vertical(const RawDocument &doc, size_t row = 0) {
        return doc.row(row).cells[kVerticalCell];
    }
    static std::string distance(const RawDocument &doc, size_t row = 0) {
        return doc.row(row).cells[kDistanceCell];
    }

    ScriptedInteraction ui;
};

// One shot (zenith 87 degrees, slope 100) walked through every pair of
// vertical modes, in both distance modes: each value is what the relations
// give from the one before.
TEST_F(DisplayModesTest, VerticalModeChanges) {
    struct Case {
        DistanceMode distance;
        VerticalMode from, to;
        const char *before, *after, *caption;
    };
    const Case cases[] = {
        {DM::Slope, VM::Zenith, VM::VerticalAngle, "87.0000", "3.0000", "VertAng"},
        {DM::Slope, VM::VerticalAngle, VM::Zenith, "3.0000", "87.0000", "ZenithAng"},
        {DM::Slope, VM::Zenith, VM::ElevationDifference, "87.0000", "5.2336", "ElevDiff"},
        {DM::Slope, VM::ElevationDifference, VM::Zenith, "5.2336", "87.0000", "ZenithAng"},
        {DM::Slope, VM::ElevationDifference, VM::VerticalAngle, "5.2336", "3.0000", "VertAng"},
        {DM::Slope, VM::Zenith, VM::None, "87.0000", "3.0000", "VertAng"},
        {DM::Slope, VM::None, VM::Zenith, "3.0000", "87.0000", "ZenithAng"},
        // With horizontal distances the elevation difference is h * tan(va).
        {DM::Horizontal, VM::Zenith, VM::ElevationDifference, "87.0000", "5.2336", "ElevDiff"},
        {DM::Horizontal, VM::ElevationDifference, VM::VerticalAngle, "5.2336", "3.0000", "VertAng"},
        // A shot below the horizon.
        {DM::Slope, VM::VerticalAngle, VM::ElevationDifference, "-3.0000", "-5.2336", "ElevDiff"},
    };
    for (const auto &c : cases) {
        DisplayModes modes;
        modes.distance = c.distance;
        RawDocument doc = openText("SS,OP1,FP2,AR10.0000,ZE87.0000,SD100.000,--\n", modes);
        doc.changeVerticalMode(c.from);
        // Set the starting value exactly, so each row tests one conversion.
        doc.setCell(0, 1 + kVerticalCell, c.before);
        if (c.distance == DM::Horizontal)
            doc.setCell(0, 1 + kDistanceCell, "99.863");
        doc.setModified(false);
        EXPECT_EQ(doc.changeVerticalMode(c.to), 1);
        EXPECT_EQ(vertical(doc), c.after)
            << static_cast<int>(c.from) << "->" << static_cast<int>(c.to) << " distance mode "
            << static_cast<int>(c.distance);
        EXPECT_EQ(doc.captions("SS")[kVerticalCell], c.caption);
        EXPECT_EQ(doc.modes().vertical, c.to);
        EXPECT_FALSE(doc.modified());
    }
}

// A corrupt vertical mode acts as zenith and is reset by any display command.
TEST_F(DisplayModesTest, CorruptVerticalModeActsAsZenith) {
    for (int number : {0, 5, -1}) {
        const auto corrupt = static_cast<VerticalMode>(number);
        RawDocument doc = openText("SS,OP1,FP2,AR10.0000,ZE87.0000,SD100.000,--\n");
        DisplayModes modes = doc.modes();
        modes.vertical = corrupt;
        doc.setModes(modes);
        doc.changeVerticalMode(VM::VerticalAngle);
        EXPECT_EQ(vertical(doc), "3.0000") << number;

        doc.setModes(modes);
        doc.changeDistanceMode(DM::Slope);
        EXPECT_EQ(doc.modes().vertical, VM::Zenith) << number;
        doc.setModes(modes);
        doc.changeVerticalMode(corrupt); // a corrupt target means zenith
        EXPECT_EQ(doc.modes().vertical, VM::Zenith) << number;
    }
}

TEST_F(DisplayModesTest, DistanceModeChanges) {
    struct Case {
        VerticalMode vertical;
        const char *line, *horizontal, *slope;
    };
    const Case cases[] = {
        {VM::Zenith, "SS,OP1,FP2,AR10.0000,ZE87.0000,SD100.000,--", "99.863", "100.000"},
        {VM::VerticalAngle, "SS,OP1,FP2,AR10.0000,ZE93.0000,SD100.000,--", "99.863", "100.000"},
        {VM::ElevationDifference, "SS,OP1,FP2,AR10.0000,ZE87.0000,SD100.000,--", "99.863",
         "100.000"},
        // Face-two zenith angles give a positive horizontal distance.
        {VM::Zenith, "SS,OP1,FP2,AR10.0000,ZE273.0000,SD100.000,--", "99.863", "100.000"},
        // No vertical value: the distance is taken as level.
        {VM::Zenith, "SS,OP1,FP2,AR10.0000,ZE,SD100.000,--", "100.000", "100.000"},
    };
    for (const auto &c : cases) {
        DisplayModes modes;
        modes.vertical = c.vertical;
        RawDocument doc = openText(std::string(c.line) + "\n", modes);
        const std::string verticalBefore = vertical(doc);
        EXPECT_EQ(doc.changeDistanceMode(DM::Horizontal), 1) << c.line;
        EXPECT_EQ(distance(doc), c.horizontal) << c.line;
        EXPECT_EQ(doc.captions("SS")[kDistanceCell], "HorzDist");
        doc.changeDistanceMode(DM::Slope);
        EXPECT_EQ(distance(doc), c.slope) << c.line;
        EXPECT_EQ(doc.captions("SS")[kDistanceCell], "SlopeDist");
        EXPECT_EQ(vertical(doc), verticalBefore) << c.line;
    }
}

// A row read with a horizontal distance keeps a correct slope distance:
// 86.603 / cos 30 degrees is 100.0005.
TEST_F(DisplayModesTest, HorizontalDistanceRowGivesTheRightSlope) {
    DisplayModes modes;
    modes.distance = DM::Horizontal;
    RawDocument doc = openText("SS,OP1,FP2,AR10.0000,VA30.0000,HD86.603,--\n", modes);
    EXPECT_EQ(distance(doc), "86.603");
    doc.changeDistanceMode(DM::Slope);
    EXPECT_EQ(distance(doc), "100.001");
    EXPECT_EQ(doc.text(), "SS,OP1,FP2,AR10.0000,ZE60.0000,SD100.001,--\n");
}

TEST_F(DisplayModesTest, AngleModeConvertsEveryAngleCell) {
    const std::string text = "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                             "BK,OP1,BP2,BS90.0000,BC180.0000\n"
                             "AZ,OP1,FP2,BS45.0000\n"
                             "SS,OP1,FP101,AR345.4539,ZE90.0000,SD85.824,--\n"
                             "TR,OP1,FP2,BRN45.3000E,ZE89.2452,SD453.567,--\n";
    RawDocument doc = openText(text);
    EXPECT_EQ(doc.changeAngleMode(AngleUnit::Gons), 7);
    EXPECT_EQ(doc.text(), "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU1\n"
                          "BK,OP1,BP2,BS100.0000,BC200.0000\n"
                          "AZ,OP1,FP2,BS50.0000\n"
                          "SS,OP1,FP101,AR384.1787,ZE100.0000,SD85.824,--\n"
                          "TR,OP1,FP2,BRN50.5556E,ZE99.3494,SD453.567,--\n");
    EXPECT_EQ(doc.angleUnit(), AngleUnit::Gons);
    EXPECT_EQ(doc.changeAngleMode(AngleUnit::Gons), 0); // already gons
    EXPECT_EQ(doc.changeAngleMode(AngleUnit::DegreesMinutesSeconds), 7);
    EXPECT_EQ(doc.text(), text);
}

// The saved file must say which unit its angles are in, so that it reads
// back the same; a file without a mode record gets a units note.
TEST_F(DisplayModesTest, AngleUnitIsDeclaredInTheFile) {
    RawDocument doc = openText("SS,OP1,FP2,AR90.0000,ZE90.0000,SD10.000,--\n");
    doc.changeAngleMode(AngleUnit::Gons);
    EXPECT_EQ(doc.text(), "--UNITS GONS\nSS,OP1,FP2,AR100.0000,ZE100.0000,SD10.000,--\n");
    RawFile records;
    ASSERT_TRUE(doc.records(records));
    EXPECT_EQ(records.units.angle, AngleUnit::Gons);
    EXPECT_NEAR(records.nodes[1].observation.verticalAngle, 0.0, 1e-9);
    doc.changeAngleMode(AngleUnit::DegreesMinutesSeconds);
    EXPECT_EQ(doc.text(), "SS,OP1,FP2,AR90.0000,ZE90.0000,SD10.000,--\n");
}

// Elevation differences are lengths: a change of angle unit leaves them.
TEST_F(DisplayModesTest, AngleModeLeavesElevationDifferences) {
    DisplayModes modes;
    modes.vertical = VM::ElevationDifference;
    RawDocument doc = openText("SS,OP1,FP2,AR90.0000,ZE87.0000,SD100.000,--\n", modes);
    EXPECT_EQ(doc.changeAngleMode(AngleUnit::Gons), 1);
    ASSERT_EQ(doc.rowCount(), 2u); // the units note comes first
    EXPECT_EQ(vertical(doc, 1), "5.2336");
    doc.changeVerticalMode(VM::Zenith);
    EXPECT_EQ(vertical(doc, 1), "96.6667");
}

// Looking never wears the record down: any walk through the display modes
// that ends where it started gives back the text byte for byte, however
// many conversions lie between (a single rounding per shown value).
TEST_F(DisplayModesTest, EveryWalkThroughTheModesAndBackKeepsTheText) {
    const std::string text = "MO,AD0,UN1,SF1.00000000,EC0,EO0\n"
                             "BK,OP1,BP2,BS320.0326,BC0.0000\n"
                             "AZ,OP1,FP2,BS45.0000\n"
                             "SS,OP1,FP101,AR345.4539,ZE90.0027,SD85.824,--\n"
                             "TR,OP1,FP2,AR64.3327,ZE89.2452,SD453.567,--\n"
                             "SS,OP2,FP3,AR10.0000,ZE,SD12.345,--\n"
                             "SS,OP2,FP4,AR10.0000,ZE87.1234,SD,--\n"
                             "SS,OP2,FP5,AR10.0000,ZEabc,SD9.876,--\n";
    enum Step { VA, ZE, ED, NO, HD, SD, GON, DMS };
    const std::vector<std::vector<Step>> walks = {
        {HD, SD},
        {GON, DMS},
        {ED, ZE},
        {NO, ZE},
        {ED, HD, GON, VA, SD, DMS, ZE},
        {HD, ED, HD, SD, HD, SD, ZE},
        {GON, ED, DMS, GON, HD, VA, NO, ZE, SD, DMS},
    };
    for (size_t w = 0; w < walks.size(); ++w) {
        RawDocument doc = openText(text);
        const std::string first = doc.text();
        for (int round = 0; round < 3; ++round) {
            for (Step step : walks[w]) {
                switch (step) {
                case VA:
                    doc.changeVerticalMode(VM::VerticalAngle);
                    break;
                case ZE:
                    doc.changeVerticalMode(VM::Zenith);
                    break;
                case ED:
                    doc.changeVerticalMode(VM::ElevationDifference);
                    break;
                case NO:
                    doc.changeVerticalMode(VM::None);
                    break;
                case HD:
                    doc.changeDistanceMode(DM::Horizontal);
                    break;
                case SD:
                    doc.changeDistanceMode(DM::Slope);
                    break;
                case GON:
                    doc.changeAngleMode(AngleUnit::Gons);
                    break;
                case DMS:
                    doc.changeAngleMode(AngleUnit::DegreesMinutesSeconds);
                    break;
                }
            }
        }
        EXPECT_EQ(doc.text(), first) << "walk " << w;
        EXPECT_FALSE(doc.modified()) << "walk " << w;
    }
}

// An edit makes the typed text the record: later changes convert from it,
// not from what the row held before.
TEST_F(DisplayModesTest, AnEditedCellIsConvertedFromTheTypedText) {
    RawDocument doc = openText("SS,OP1,FP2,AR10.0000,ZE87.0000,SD100.000,--\n");
    doc.changeDistanceMode(DM::Horizontal);
    doc.setCell(0, 1 + kDistanceCell, "50.000");
    doc.changeDistanceMode(DM::Slope);
    EXPECT_EQ(distance(doc), "50.069");
}

} // namespace
