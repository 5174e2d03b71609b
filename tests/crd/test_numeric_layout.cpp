// The numeric layout byte for byte, and reading it back.
#include "crd_test_support.h"

#include "crd/coordinate_file.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"

using namespace tramline::crd;
using namespace crdtest;

namespace {

Bytes newNumericHeader(double highest = 0.0) {
    Bytes b;
    addDouble(b, highest);
    addDouble(b, 0.0);
    addDouble(b, 2009.0415);
    addText(b, "", 32);
    return b;
}

class NumericLayout : public CrdTest {
protected:
    void SetUp() override {
        CrdTest::SetUp();
        path = file("site.crd");
        ASSERT_TRUE(crd.open(path, Create::Always, kFormatNumeric));
    }
    bool put(const std::string &name, double e, double n, double z, const std::string &desc = "") {
        CrdPoint p;
        p.set(e, n, z, name, desc);
        return crd.writePoint(p);
    }

    std::filesystem::path path;
    CoordinateFile crd{context};
};

TEST_F(NumericLayout, NewFileIsOneHeaderRecordDatedToday) {
    EXPECT_EQ(readBytes(path), newNumericHeader());
    EXPECT_EQ(crd.format(), kFormatNumeric);
    EXPECT_EQ(crd.highestName(), "1");
    EXPECT_EQ(crd.lowestName(), "1");
    EXPECT_EQ(crd.headerTexts().date, "2009.0415");
    EXPECT_EQ(crd.headerTexts().number, "0.000");
    EXPECT_EQ(crd.nameWidth(), 7);
}

TEST_F(NumericLayout, PointFiveFillsTheGapWithEmptySlots) {
    ASSERT_TRUE(put("5", 2000.5, 1000.25, 12.5, "IP"));
    Bytes expected = newNumericHeader(5.0);
    append(expected, numericRecord(0, 0, 0, "")); // left to the file system
    for (int i = 2; i <= 4; ++i)
        append(expected, numericRecord(0, 0, 0, " ")); // filler records
    append(expected, numericRecord(1000.25, 2000.5, 12.5, "IP"));
    EXPECT_EQ(readBytes(path), expected);
    EXPECT_EQ(crd.highestName(), "5");
    CrdPoint p;
    for (const char *empty : {"1", "2", "4"})
        EXPECT_FALSE(crd.readPoint(empty, p, PointSearch::Exact, Verbosity::Quiet)) << empty;
    EXPECT_EQ(crd.lastError(), kPointNotFound);
}

TEST_F(NumericLayout, FillerRunsInBatchesPastTen) {
    // 25 records of filler: three batches; the bytes show no seams.
    ASSERT_TRUE(put("2", 1, 1, 1));
    ASSERT_TRUE(put("30", 3, 3, 3));
    const Bytes bytes = readBytes(path);
    ASSERT_EQ(bytes.size(), 31u * 56);
    Bytes expected = numericRecord(0, 0, 0, "");
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin() + 3 * 56)); // zeros
    expected = numericRecord(0, 0, 0, " ");
    for (int r = 4; r < 30; ++r)
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin() + r * 56)) << r;
}

TEST_F(NumericLayout, RecordRules) {
    struct Case {
        double e, n, z;
        std::string desc;
        double storedZ;
        std::string storedDesc;
        double readZ;
        bool warned;
    };
    const std::string d32(32, 'x');
    const std::string x30(30, 'x');
    const std::string accented = x30 + std::string("\xC3\xA9");
    const Case cases[] = {
        {0, 0, 0, "origin", 1e-6, "origin", 0.0, false},      // not an empty slot
        {5, 6, 98765432.1, "", 0.0, "", 0.0, false},          // no elevation
        {0, 0, 98765432.1, "", 1e-6, "", 0.0, false},         // both: still a point
        {0, 1, 1e-6, "", 1e-6, "", 1e-6, false},              // 1e-6 is real off the origin
        {1, 2, 3, d32, 3, d32.substr(0, 31), 3, true},        // cut with a warning
        {1, 2, 3, accented, 3, x30, 3, true},                 // never inside a character
        {1, 2, 3, "tab\tbell\a", 3, "tab\tbell\a", 3, false}, // control characters kept
        {1, 2, 3, std::string("cut\0here", 8), 3, "cut", 3, false},
    };
    for (const auto &c : cases) {
        ui.messages.clear();
        CrdPoint p;
        p.easting = c.e;
        p.northing = c.n;
        p.elevation = c.z;
        p.name = "3";
        p.description = c.desc;
        ASSERT_TRUE(crd.writePoint(p));
        const Bytes bytes = readBytes(path);
        Bytes record(bytes.begin() + 3 * 56, bytes.begin() + 4 * 56);
        EXPECT_EQ(record, numericRecord(c.n, c.e, c.storedZ, c.storedDesc)) << c.desc;
        EXPECT_EQ(!ui.messages.empty(), c.warned);
        if (c.warned) {
            EXPECT_EQ(ui.messages.back(),
                      "\nWarning: Truncating description that contains too many characters.");
        }
        CrdPoint back;
        ASSERT_TRUE(crd.readPoint("3", back));
        EXPECT_EQ(back.elevation, c.readZ);
        EXPECT_EQ(back.description, c.storedDesc);
    }
}

TEST_F(NumericLayout, NameRulesOnWrite) {
    struct Case {
        const char *name;
        int error;
        const char *message;
    };
    const std::string tooLong(300, '7');
    const Case cases[] = {
        {"007", 0, nullptr},
        {"7A", kNameNotNumeric,
         "\nError: pt# 7A invalid for current CRD format of numeric only point numbers."},
        {"1.5", kNameNotNumeric, nullptr},
        {"-3", kNameNotNumeric, nullptr},
        {tooLong.c_str(), kNameNotNumeric, nullptr},
        {"0", kNameTooLow, "\nError: Point number must be greater than 0."},
        {"100000", kNameTooHigh, "\nError: Point number must be less than 100000."},
        {"99999", 0, nullptr},
    };
    for (const auto &c : cases) {
        ui.messages.clear();
        CrdPoint p;
        p.set(1, 2, 3, c.name);
        EXPECT_EQ(crd.writePoint(p), c.error == 0) << c.name;
        EXPECT_EQ(crd.lastError(), c.error) << c.name;
        if (c.message) {
            ASSERT_EQ(ui.messages.size(), 1u);
            EXPECT_EQ(ui.messages[0], c.message);
        }
    }
    CrdPoint p;
    ASSERT_TRUE(crd.readPoint("7", p));
    EXPECT_EQ(p.name, "7");
}

TEST_F(NumericLayout, ReadingWithDirections) {
    ASSERT_TRUE(put("2", 2, 2, 2));
    ASSERT_TRUE(put("5", 5, 5, 5));
    ASSERT_TRUE(put("6", 6, 6, 6));
    ASSERT_TRUE(put("9", 9, 9, 9));
    struct Case {
        const char *name;
        int direction;
        const char *found; // null: not found
        int error;
    };
    const Case cases[] = {
        {"5", 0, "5", 0},
        {"3", 0, nullptr, kPointNotFound},
        {"3", 1, "5", 0},
        {"3", -1, "2", 0},
        {"50", -1, "9", 0},
        {"50", 0, nullptr, kPointNotFound},
        {"50", 1, nullptr, kPointNotFound},
        {"0", 1, "2", 0},
        {"0", 0, nullptr, kNameTooLow},
        {"-4", -1, nullptr, kNameTooLow},
        {"1", -1, nullptr, kPointNotFound},
        {"7", 1, "9", 0},
    };
    for (const auto &c : cases) {
        CrdPoint p;
        EXPECT_EQ(crd.readPoint(c.name, p, static_cast<PointSearch>(c.direction), Verbosity::Quiet),
                  c.found != nullptr)
            << c.name << " " << c.direction;
        EXPECT_EQ(crd.lastError(), c.error) << c.name << " " << c.direction;
        if (c.found) {
            EXPECT_EQ(p.name, c.found);
        }
    }
}

TEST_F(NumericLayout, ReadMessagesUnlessQuiet) {
    ASSERT_TRUE(put("2", 2, 2, 2));
    CrdPoint p;
    EXPECT_FALSE(crd.readPoint("8", p));
    EXPECT_EQ(ui.messages,
              (std::vector<std::string>{"\nRequested point number greater than highest in file.",
                                        "\nRequested point# 8 has no coordinate stored."}));
    ui.messages.clear();
    EXPECT_FALSE(crd.readPoint("0", p));
    EXPECT_EQ(ui.messages, std::vector<std::string>{"\nPoint numbers must be >= 1"});
    ui.messages.clear();
    EXPECT_FALSE(crd.readPoint("1", p, PointSearch::Exact, Verbosity::Quiet));
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(NumericLayout, WalkSkipsEmptySlotsBothWays) {
    for (const char *n : {"3", "4", "8"})
        ASSERT_TRUE(put(n, 1, 1, 1));
    std::vector<std::string> forward, backward;
    CrdPoint p;
    for (crd.setCurrentIndex(-1); crd.readNext(p);)
        forward.push_back(p.name);
    EXPECT_EQ(crd.lastError(), kPointNotFound);
    for (crd.setCurrentIndex(crd.recordCount()); crd.readNext(p, -1);)
        backward.push_back(p.name);
    EXPECT_EQ(forward, (std::vector<std::string>{"3", "4", "8"}));
    EXPECT_EQ(backward, (std::vector<std::string>{"8", "4", "3"}));
}

TEST_F(NumericLayout, WriteReturnsThePreviousPoint) {
    ASSERT_TRUE(put("4", 1, 2, 3, "old"));
    CrdPoint p, previous;
    p.set(7, 8, 9, "4", "new");
    ASSERT_TRUE(crd.writePoint(p, Verbosity::Messages, &previous));
    EXPECT_EQ(previous.name, "4");
    EXPECT_EQ(previous.description, "old");
    EXPECT_EQ(previous.easting, 1.0);
    p.set(7, 8, 9, "3");
    ASSERT_TRUE(crd.writePoint(p, Verbosity::Messages, &previous));
    EXPECT_TRUE(previous.name.empty()); // an empty slot: a new point
}

} // namespace
