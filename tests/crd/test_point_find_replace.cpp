// Find and replace over points, cell by cell as the grid shows them.
#include "crd/point_find_replace.h"
#include "crd_test_support.h"

using namespace tramline::crd;
using namespace crdtest;

namespace {

// 1, 2 and 10: names, northings 1000/1100/1200, eastings 2000/2100/2200,
// elevations 10/11/12, descriptions IRON ROD, NAIL, IRON PIPE.
std::vector<CrdPoint> threePoints() {
    std::vector<CrdPoint> points(3);
    points[0].set(2000.0, 1000.0, 10.0, "1", "IRON ROD");
    points[1].set(2100.0, 1100.0, 11.0, "2", "NAIL");
    points[2].set(2200.0, 1200.0, 12.0, "10", "IRON PIPE");
    return points;
}

std::string table(CoordinateFile &crd) {
    std::vector<CrdPoint> points;
    EXPECT_TRUE(readAllPoints(crd, points));
    std::string out;
    for (const auto &p : points) {
        for (PointField f : pointColumns(CoordinateOrder::NorthingEasting))
            out += pointFieldText(p, f) + "|";
        out += "\n";
    }
    return out;
}

TEST(PointFind, CellAfterTheCurrentOneWrappingOnce) {
    const auto points = threePoints();
    using O = CoordinateOrder;
    struct Case {
        const char *what;
        O order;
        int row, column;
        std::optional<PointCell> hit;
    };
    const Case cases[] = {
        {"NAIL", O::NorthingEasting, 2, 4, PointCell{1, 4}}, // from the last cell: the first
        {"IRON", O::NorthingEasting, 2, 4, PointCell{0, 4}},
        {"IRON", O::NorthingEasting, 0, 4, PointCell{2, 4}},
        {"ROD", O::NorthingEasting, 0, 4, PointCell{0, 4}}, // the current cell comes last
        {"1", O::NorthingEasting, 2, 4, PointCell{0, 0}},
        {"1", O::NorthingEasting, 0, 0, PointCell{0, 1}},
        {"1000.", O::NorthingEasting, 2, 4, PointCell{0, 1}},
        {"1000.", O::EastingNorthing, 2, 4, PointCell{0, 2}},
        {"12.0000", O::NorthingEasting, 0, 0, PointCell{2, 3}},
        {"iron", O::NorthingEasting, 2, 4, std::nullopt}, // case counts
        {"", O::NorthingEasting, 2, 4, std::nullopt},
    };
    for (const auto &c : cases)
        EXPECT_EQ(findInPoints(points, c.order, c.what, c.row, c.column), c.hit)
            << c.what << " from " << c.row << "," << c.column;
    EXPECT_EQ(findInPoints({}, CoordinateOrder::NorthingEasting, "1", 0, 0), std::nullopt);
}

class PointReplaceTest : public CrdTest {
protected:
    void SetUp() override {
        CrdTest::SetUp();
        ASSERT_TRUE(crd.open(file("site.crd"), Create::Always, kFormatAlphanumeric));
        for (const auto &p : threePoints())
            ASSERT_TRUE(crd.writePoint(p));
        ASSERT_TRUE(crd.addNote("1", "found"));
        before = table(crd);
    }
    CoordinateFile crd{context};
    std::string before;
};

TEST_F(PointReplaceTest, ReplaceAllInTheChosenFields) {
    using F = PointField;
    struct Case {
        const char *find, *with;
        std::vector<PointField> fields;
        long count;
        const char *after; // null: nothing changed
        std::vector<std::string> messages;
    };
    const Case cases[] = {
        {"IRON",
         "STEEL",
         {},
         2,
         "1|1000.0000|2000.0000|10.0000|STEEL ROD|\n2|1100.0000|2100.0000|11.0000|NAIL|\n"
         "10|1200.0000|2200.0000|12.0000|STEEL PIPE|\n",
         {}},
        // A renamed point is not met again under its new name.
        {"1",
         "11",
         {F::Name},
         2,
         "2|1100.0000|2100.0000|11.0000|NAIL|\n11|1000.0000|2000.0000|10.0000|IRON ROD|\n"
         "110|1200.0000|2200.0000|12.0000|IRON PIPE|\n",
         {}},
        {".0000",
         ".5000",
         {F::Elevation, F::Easting},
         6,
         "1|1000.0000|2000.5000|10.5000|IRON ROD|\n2|1100.0000|2100.5000|11.5000|NAIL|\n"
         "10|1200.0000|2200.5000|12.5000|IRON PIPE|\n",
         {}},
        {"00",
         "X",
         {F::Northing},
         0,
         nullptr,
         {"Error: 1X0.XX is not a number", "Error: 11X.XX is not a number",
          "Error: 12X.XX is not a number"}},
        {"2", "1", {F::Name}, 0, nullptr, {"Error: point 1 already exists"}},
        {"R", "R", {}, 0, nullptr, {}}, // no change is no replacement
        {"nothing", "x", {}, 0, nullptr, {}},
    };
    for (const auto &c : cases) {
        SetUp();
        ui.messages.clear();
        PointReplace replace;
        replace.find = c.find;
        replace.replace = c.with;
        replace.fields = c.fields;
        EXPECT_EQ(replaceInPoints(crd, replace, ui), c.count) << c.find;
        EXPECT_EQ(table(crd), c.after ? c.after : before) << c.find;
        EXPECT_EQ(ui.messages, c.messages) << c.find;
        EXPECT_TRUE(ui.questions.empty()) << c.find;
        TearDown();
    }
}

TEST_F(PointReplaceTest, NotesFollowARenamedPoint) {
    PointReplace replace{"1", "7", {PointField::Name}};
    EXPECT_EQ(replaceInPoints(crd, replace, ui), 2);
    EXPECT_EQ(crd.notes("7"), std::vector<std::string>{"found"});
    EXPECT_TRUE(crd.notes("1").empty());
}

TEST_F(PointReplaceTest, ReplaceAsksForEachCell) {
    struct Case {
        CoordinateOrder order;
        PointReplace replace;
        std::vector<std::string> replies;
        long count;
        std::vector<std::string> questions;
        const char *after;
    };
    const std::string q = "Search and Replace: Replace in row ";
    const Case cases[] = {
        {CoordinateOrder::NorthingEasting,
         {"IR", "XR", {PointField::Description}},
         {"No", "Yes"},
         1,
         {q + "1 column 5?", q + "3 column 5?"},
         "1|1000.0000|2000.0000|10.0000|IRON ROD|\n2|1100.0000|2100.0000|11.0000|NAIL|\n"
         "10|1200.0000|2200.0000|12.0000|XRON PIPE|\n"},
        // The column number follows the order on display.
        {CoordinateOrder::NorthingEasting,
         {"2000", "2001", {PointField::Easting}},
         {"Yes"},
         1,
         {q + "1 column 3?"},
         "1|1000.0000|2001.0000|10.0000|IRON ROD|\n2|1100.0000|2100.0000|11.0000|NAIL|\n"
         "10|1200.0000|2200.0000|12.0000|IRON PIPE|\n"},
        {CoordinateOrder::EastingNorthing,
         {"2000", "2001", {PointField::Easting}},
         {"Yes"},
         1,
         {q + "1 column 2?"},
         "1|1000.0000|2001.0000|10.0000|IRON ROD|\n2|1100.0000|2100.0000|11.0000|NAIL|\n"
         "10|1200.0000|2200.0000|12.0000|IRON PIPE|\n"},
        // Cancel stops at once.
        {CoordinateOrder::NorthingEasting,
         {"IRON", "X", {}},
         {"Cancel"},
         0,
         {q + "1 column 5?"},
         nullptr},
    };
    for (const auto &c : cases) {
        SetUp();
        ui = tramline::ScriptedInteraction();
        for (const auto &r : c.replies)
            ui.reply(r);
        PointReplace replace = c.replace;
        replace.order = c.order;
        replace.confirmEach = true;
        EXPECT_EQ(replaceInPoints(crd, replace, ui), c.count) << c.replace.find;
        EXPECT_EQ(ui.questions, c.questions) << c.replace.find;
        EXPECT_EQ(table(crd), c.after ? c.after : before) << c.replace.find;
        TearDown();
    }
}

} // namespace
