// Renaming points, editing one field, Add Point: what a user may change
// and what the store refuses, in both layouts.
#include "crd/history_file.h"
#include "crd/point_edit.h"
#include "crd/point_rename.h"
#include "crd_test_support.h"

using namespace tramline::crd;
using namespace crdtest;

namespace {

class PointEdits : public CrdTest {
protected:
    // 1 "IRON ROD" with the note "found", 2 "NAIL", and in alphanumeric
    // files A_1.
    void makeFile(CoordinateFile &crd, int format) {
        ASSERT_TRUE(crd.open(file("site.crd"), Create::Always, format));
        CrdPoint p;
        p.set(2000.0, 1000.0, 10.0, "1", "IRON ROD");
        ASSERT_TRUE(crd.writePoint(p));
        p.set(2100.0, 1100.0, 11.0, "2", "NAIL");
        ASSERT_TRUE(crd.writePoint(p));
        if (format == kFormatAlphanumeric) {
            p.set(2200.0, 1200.0, 12.0, "A_1", "");
            ASSERT_TRUE(crd.writePoint(p));
        }
        ASSERT_TRUE(crd.addNote("1", "found"));
    }
    static std::string names(CoordinateFile &crd) {
        std::vector<CrdPoint> points;
        EXPECT_TRUE(readAllPoints(crd, points));
        std::string out;
        for (const auto &p : points)
            out += (out.empty() ? "" : ",") + p.name;
        return out;
    }
};

TEST_F(PointEdits, RenameCarriesNotesAndRefusesWhatItMust) {
    struct Case {
        int format;
        const char *from, *to;
        std::string message; // empty: renamed
        const char *namesAfter;
        const char *noteHolder; // the point that has the note "found" afterwards
    };
    const Case cases[] = {
        {kFormatAlphanumeric, "1", "5", "", "2,5,A_1", "5"},
        {kFormatAlphanumeric, "1", "b-9", "", "2,A_1,B_9", "B_9"},
        {kFormatAlphanumeric, "1", " 1 ", "", "1,2,A_1", "1"}, // its own name
        {kFormatAlphanumeric, "1", "2", "Error: point 2 already exists", "1,2,A_1", "1"},
        {kFormatAlphanumeric, "1", "a-1", "Error: point a-1 already exists", "1,2,A_1", "1"},
        {kFormatAlphanumeric, "9", "5", "The specified point was not found.", "1,2,A_1", "1"},
        {kFormatAlphanumeric, "1", "", "Point name must not be blank.", "1,2,A_1", "1"},
        {kFormatAlphanumeric, "1", "ABCDEFGHIJ", "Point name is too long.", "1,2,A_1", "1"},
        {kFormatNumeric, "1", "7", "", "2,7", "7"},
        {kFormatNumeric, "1", "2", "Error: point 2 already exists", "1,2", "1"},
        {kFormatNumeric, "1", "2A", errorText(kNameNotNumeric), "1,2", "1"},
        {kFormatNumeric, "1", "100000", "Point name is numerically too high.", "1,2", "1"},
    };
    for (const auto &c : cases) {
        const std::string label = std::string(c.from) + " -> '" + c.to + "'";
        CoordinateFile crd(context);
        makeFile(crd, c.format);
        CrdPoint renamed;
        const tramline::Status status = renamePoint(crd, c.from, c.to, &renamed);
        EXPECT_EQ(status.message, c.message) << label;
        EXPECT_EQ(names(crd), c.namesAfter) << label;
        EXPECT_EQ(crd.notes(c.noteHolder), std::vector<std::string>{"found"}) << label;
        CrdPoint p;
        ASSERT_TRUE(crd.readPoint("2", p)) << label;
        EXPECT_EQ(p.description, "NAIL") << label; // never overwritten
        if (status) {
            EXPECT_EQ(renamed.name, c.noteHolder) << label;
            EXPECT_EQ(renamed.description, "IRON ROD") << label;
            EXPECT_DOUBLE_EQ(renamed.northing, 1000.0) << label;
            EXPECT_DOUBLE_EQ(renamed.easting, 2000.0) << label;
            EXPECT_DOUBLE_EQ(renamed.elevation, 10.0) << label;
        }
    }
}

TEST_F(PointEdits, RenameIsRecordedWhenHistoryIsKept) {
    CoordinateFile crd(context);
    makeFile(crd, kFormatAlphanumeric);
    crd.setHistoryKeeping(true);
    ASSERT_TRUE(renamePoint(crd, "1", "5").ok());
    EXPECT_FALSE(renamePoint(crd, "2", "5").ok()); // a refusal records nothing
    std::vector<HistoryEntry> entries;
    ASSERT_TRUE(readHistoryFile(crd.historyPath(), entries));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].operation, kHistoryOperationRenumber);
    EXPECT_EQ(entries[0].name, "1");
    EXPECT_EQ(entries[0].newName, "5");
    EXPECT_EQ(entries[0].flags & 0xff, kHistoryName);
}

TEST_F(PointEdits, EditOneField) {
    struct Case {
        PointField field;
        std::string text;
        std::string message; // empty: stored
        std::string shownAfter;
    };
    const Case cases[] = {
        {PointField::Northing, " 1234.5 ", "", "1234.5000"},
        {PointField::Easting, "-2.25", "", "-2.2500"},
        {PointField::Elevation, "", "", "0.0000"}, // no elevation: the store keeps 0
        {PointField::Elevation, "12,5", "Error: 12,5 is not a number", "10.0000"},
        {PointField::Northing, "north", "Error: north is not a number", "1000.0000"},
        {PointField::Northing, " ", "Error:  is not a number",
         "1000.0000"}, // only elevations may go
        {PointField::Description, " spaced out ", "", " spaced out "},
        {PointField::Description, std::string(40, 'D'), "", std::string(31, 'D')},
        {PointField::Name, " 7 ", "", "7"},
        {PointField::Name, "2", "Error: point 2 already exists", "1"},
    };
    for (const auto &c : cases) {
        CoordinateFile crd(context);
        makeFile(crd, kFormatAlphanumeric);
        CrdPoint point, stored;
        ASSERT_TRUE(crd.readPoint("1", point));
        const tramline::Status status = editPointField(crd, point, c.field, c.text, stored);
        EXPECT_EQ(status.message, c.message) << c.text;
        if (status) {
            EXPECT_EQ(pointFieldText(stored, c.field), c.shownAfter) << c.text;
        }
        // What the file holds, read afresh.
        const std::string name = status && c.field == PointField::Name ? stored.name : "1";
        CrdPoint back;
        ASSERT_TRUE(crd.readPoint(name, back)) << c.text;
        EXPECT_EQ(pointFieldText(back, c.field), c.shownAfter) << c.text;
    }
}

TEST_F(PointEdits, AddPointOffersTheNextNumberAndKeepsOthers) {
    struct Case {
        int format;
        std::vector<const char *> stored;
        const char *offered;
    };
    const Case cases[] = {
        {kFormatAlphanumeric, {}, "1"},           {kFormatAlphanumeric, {"3", "9"}, "10"},
        {kFormatAlphanumeric, {"9", "A_1"}, ""},  {kFormatAlphanumeric, {"12345678"}, "12345679"},
        {kFormatAlphanumeric, {"123456789"}, ""}, {kFormatNumeric, {"4"}, "5"},
    };
    for (const auto &c : cases) {
        CoordinateFile crd(context);
        ASSERT_TRUE(crd.open(file("add.crd"), Create::Always, c.format));
        for (const char *name : c.stored) {
            CrdPoint p;
            p.set(1.0, 2.0, 3.0, name, "OLD");
            ASSERT_TRUE(addPoint(crd, p).ok()) << name;
        }
        EXPECT_EQ(nextPointName(crd), c.offered) << c.offered;
        if (c.stored.empty())
            continue;
        CrdPoint again;
        again.set(7.0, 8.0, 9.0, c.stored[0], "NEW");
        EXPECT_EQ(addPoint(crd, again).message,
                  std::string("Error: point ") + c.stored[0] + " already exists");
        CrdPoint back;
        ASSERT_TRUE(crd.readPoint(c.stored[0], back));
        EXPECT_EQ(back.description, "OLD");
    }
}

} // namespace
