// Text point import and export: the order letters, fields that keep their
// place, the samples, and the four export orders.
#include "convert/text_points_export.h"
#include "convert/text_points_flow.h"
#include "convert_test_support.h"
#include "crd/coordinate_file.h"
#include "support/test_support.h"

namespace tramline::test {
namespace {

using convert::PointColumns;
using convert::PointNames;

TEST(CoordinateOrder, LettersDelimiterAndTheTwoErrors) {
    struct Case {
        const char *text;
        const char *letters; // null: refused with `message`
        char delimiter;
        const char *message;
    };
    const Case cases[] = {
        {"P,N,E,Z,D", "PNEZD", ',', nullptr},
        {"P N E Z D", "PNEZD", ' ', nullptr},
        {"e,n,s,z", "ENSZ", ',', nullptr},
        {"PNEZD", nullptr, 0, "Invalid Coordinate Order - no delimiter between identifiers"},
        {"1,2,3", nullptr, 0, "Invalid Coordinate Order - no identifiers found"},
        {"", nullptr, 0, "Invalid Coordinate Order - no identifiers found"},
    };
    for (const auto &c : cases) {
        PointColumns columns;
        const Status s = convert::parseCoordinateOrder(c.text, columns);
        if (c.letters) {
            ASSERT_TRUE(s.ok()) << c.text;
            EXPECT_EQ(columns.letters, c.letters);
            EXPECT_EQ(columns.delimiter, c.delimiter) << c.text;
        } else {
            EXPECT_FALSE(s.ok()) << c.text;
            EXPECT_EQ(s.message, c.message) << c.text;
        }
    }
    EXPECT_EQ(convert::commonPointFormats().size(), 16u);
    for (const auto &text : convert::commonPointFormats()) {
        PointColumns columns;
        EXPECT_TRUE(convert::parseCoordinateOrder(text, columns).ok()) << text;
    }
}

TEST(TextPointLine, FieldsKeepTheirPlace) {
    struct Case {
        const char *order;
        const char *line;
        PointNames names;
        bool point;
        const char *name;
        double northing, easting, elevation;
        const char *description;
    };
    const auto N = PointNames::Numeric;
    const auto A = PointNames::Alphanumeric;
    const Case cases[] = {
        {"P,N,E,Z,D", "12,,100.5,200.25,Road", N, true, "12", 0.0, 100.5, 200.25, "Road"},
        {"P,N,E,Z,D", "12,1,2,3,Road, with comma ", N, true, "12", 1, 2, 3, "Road, with comma"},
        {"P N E Z D", "  7    1.5   2.5  3.5   edge of road", N, true, "7", 1.5, 2.5, 3.5,
         "edge of road"},
        {"P,E,N,Z", "7\t1\t2\t3", N, true, "7", 2, 1, 3, ""}, // tabs as delimiters
        {"P,S,N,E", "7,skip me,1,2", N, true, "7", 1, 2, 0, ""},
        {"N,E,Z", "1,2,3", N, true, "", 1, 2, 3, ""},
        {"P,N,E,Z,D", "T3,1,2,3,x", A, true, "T3", 1, 2, 3, "x"},
        {"P,N,E,Z,D", "T3,1,2,3,x", N, false, "", 0, 0, 0, ""}, // numeric files need numbers
        {"P,N,E,Z,D", "Point,Northing,Easting,Elev,Desc", A, false, "", 0, 0, 0, ""},
        {"P,N,E,Z,D", "SETUP SN      1000", A, false, "", 0, 0, 0, ""},
        {"P,N,E,Z", "5,nan,1,2", N, false, "", 0, 0, 0, ""}, // never a coordinate
    };
    for (const auto &c : cases) {
        PointColumns columns;
        ASSERT_TRUE(convert::parseCoordinateOrder(c.order, columns).ok());
        crd::CrdPoint p;
        ASSERT_EQ(convert::readPointLine(c.line, columns, c.names, p), c.point) << c.line;
        if (!c.point)
            continue;
        EXPECT_EQ(p.name, c.name) << c.line;
        EXPECT_DOUBLE_EQ(p.northing, c.northing) << c.line;
        EXPECT_DOUBLE_EQ(p.easting, c.easting) << c.line;
        EXPECT_DOUBLE_EQ(p.elevation, c.elevation) << c.line;
        EXPECT_EQ(p.description, c.description) << c.line;
    }
}

TEST(TextPointsFile, TwoCharacterLinesGiveNoPoints) {
    PointColumns columns;
    ASSERT_TRUE(convert::parseCoordinateOrder("P,N,E,Z,D", columns).ok());
    std::istringstream in("12\n34\r\n5,\n");
    convert::TextPointsRead read;
    ASSERT_TRUE(convert::readTextPoints(in, columns, PointNames::Numeric, read).ok());
    EXPECT_TRUE(read.points.empty());
    EXPECT_EQ(read.lines, 0);
}

TEST(TextPointsFile, PointsWithoutNumbersFollowTheHighestName) {
    std::vector<crd::CrdPoint> points(3);
    points[1].name = "5";
    convert::numberUnnamedPoints(points, "41");
    EXPECT_EQ(points[0].name, "42");
    EXPECT_EQ(points[1].name, "5");
    EXPECT_EQ(points[2].name, "43");
}

class TextPointSamples : public ScratchFolderTest {};

TEST_F(TextPointSamples, ImportWithTheirCountsAndCoordinates) {
    TRAMLINE_REQUIRE_SAMPLES();
    struct Case {
        const char *file;
        const char *order;
        long read, stored; // lines that are points; distinct names stored
        const char *name;
        double northing, easting, elevation;
        const char *description;
    };
    const Case cases[] = {
        {"topo0.asc", "P,N,E,Z,D", 1311, 1311, "1", 538542.57, 1455644.371, 681.31, "I"},
        {"samepnts.asc", "P,N,E,Z,D", 8, 8, "3", -0.957425, 1.65831, -0.57735, "corner"},
        // 71 rows of "id, E, N, H, code" among a free-text preamble; names repeat.
        {"leica_tcr_705", "P,E,N,Z,D", 71, 0, "T3", 998.503, 1001.766, 96.475, "WALL04 --------"},
    };
    for (const auto &c : cases) {
        const auto crdPath = dir / (std::string(c.file) + ".crd");
        ScriptedInteraction ui;
        crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
        ASSERT_TRUE(file.open(crdPath, crd::Create::Always, 1));
        PointColumns columns;
        ASSERT_TRUE(convert::parseCoordinateOrder(c.order, columns).ok());
        convert::TextImportSummary summary;
        ASSERT_TRUE(convert::importTextPointsFile(samplePath(std::string("delimited/") + c.file),
                                                  file, columns, ui, summary)
                        .ok());
        EXPECT_EQ(summary.pointsStored, c.read) << c.file;
        if (c.stored) {
            EXPECT_EQ(file.recordCount(), c.stored) << c.file;
        }
        EXPECT_EQ(ui.messages.back(), "Read in " + std::to_string(c.read) + " points.");
        crd::CrdPoint p;
        ASSERT_TRUE(file.readPoint(c.name, p)) << c.file;
        EXPECT_DOUBLE_EQ(p.northing, c.northing) << c.file;
        EXPECT_DOUBLE_EQ(p.easting, c.easting) << c.file;
        EXPECT_DOUBLE_EQ(p.elevation, c.elevation) << c.file;
        EXPECT_EQ(p.description, c.description) << c.file;
    }
}

TEST(TextPointExport, FourOrdersDelimitersAndDecimals) {
    crd::CrdPoint p;
    p.set(2000.0, 1000.0, 50.0, "12", "Road");
    struct Case {
        const char *order;
        char delimiter;
        int decimals;
        const char *line;
    };
    const Case cases[] = {
        {"Pt# North East Elev Desc", ' ', 3, "12 1000.000 2000.000 50.000 Road\n"},
        {"PENZD", ',', 1, "12,2000.0,1000.0,50.0,Road\n"},
        {"North East Elev Desc", ',', 0, "1000,2000,50,Road\n"},
        {"E,N,Z,D", ' ', 2, "2000.00 1000.00 50.00 Road\n"},
    };
    for (const auto &c : cases) {
        convert::TextExportOptions options;
        ASSERT_TRUE(convert::exportColumnsFrom(c.order, options.columns)) << c.order;
        options.delimiter = c.delimiter;
        options.decimals = c.decimals;
        EXPECT_EQ(convert::formatPointLine(p, options), c.line);
    }
    convert::ExportColumns columns;
    EXPECT_FALSE(convert::exportColumnsFrom("PNZ", columns));
    EXPECT_EQ(convert::defaultRange("1", "1312"), "1-1312");
}

TEST_F(TextPointSamples, ExportReadsBackAndKeepsTheRange) {
    ScriptedInteraction ui;
    crd::CoordinateFile file(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(file.open(dir / "a.crd", crd::Create::Always, 1));
    for (int i = 1; i <= 20; ++i) {
        crd::CrdPoint p;
        p.set(i * 10.0, i * 100.0, i, std::to_string(i), "d" + std::to_string(i));
        ASSERT_TRUE(file.writePoint(p));
    }
    long written = 0;
    convert::TextExportOptions options;
    ASSERT_TRUE(
        convert::exportTextPointsFile(file, dir / "out.txt", options, "5-9", ui, written).ok());
    EXPECT_EQ(written, 5);
    EXPECT_EQ(ui.messages.back(), "File " + (dir / "out.txt").string() + " successfully written.");
    EXPECT_EQ(slurp(dir / "out.txt").substr(0, 35), "5,500.00000,50.00000,5.00000,d5\n6,6");

    crd::CoordinateFile copy(crd::CrdContext{&ui, {}, {}});
    ASSERT_TRUE(copy.open(dir / "b.crd", crd::Create::Always, 1));
    PointColumns columns;
    ASSERT_TRUE(convert::parseCoordinateOrder("P,N,E,Z,D", columns).ok());
    convert::TextImportSummary summary;
    ASSERT_TRUE(convert::importTextPointsFile(dir / "out.txt", copy, columns, ui, summary).ok());
    crd::CrdPoint p;
    ASSERT_TRUE(copy.readPoint("7", p));
    EXPECT_DOUBLE_EQ(p.northing, 700.0);
    EXPECT_EQ(p.description, "d7");
    EXPECT_FALSE(copy.readPoint("10", p, crd::PointSearch::Exact, crd::Verbosity::Quiet));

    EXPECT_FALSE(convert::exportTextPointsFile(file, dir / "no" / "such" / "out.txt", options, "",
                                               ui, written)
                     .ok());
    EXPECT_EQ(ui.messages.back(), "Error: unable to write file");
}

} // namespace
} // namespace tramline::test
