// The alphanumeric layout byte for byte: sorted records, names, inserts
// through the move buffer, and the first revision's conversion.
#include "crd_test_support.h"

#include "crd/coordinate_file.h"
#include "crd/crd_errors.h"
#include "crd/crd_io_morvane.h"
#include "crd/file_kinds.h"

using namespace tramline::crd;
using namespace crdtest;

namespace {

class AlphaLayout : public CrdTest {
protected:
    void SetUp() override {
        CrdTest::SetUp();
        path = file("site.crd");
        ASSERT_TRUE(crd.open(path, Create::Always, kFormatAlphanumeric));
    }
    bool put(const std::string &name, double v, const std::string &desc = "") {
        CrdPoint p;
        p.set(v, v + 1, v + 2, name, desc);
        return crd.writePoint(p);
    }
    std::vector<std::string> walk() {
        std::vector<std::string> names;
        CrdPoint p;
        for (crd.setCurrentIndex(-1); crd.readNext(p);)
            names.push_back(p.name);
        return names;
    }

    std::filesystem::path path;
    CoordinateFile crd{context};
};

TEST_F(AlphaLayout, NewFileHeader) {
    EXPECT_EQ(readBytes(path), alphaHeader("04/15/2009", ""));
    EXPECT_EQ(crd.headerTexts().date, "04/15/2009");
    EXPECT_EQ(crd.highestName(), "");
    EXPECT_EQ(crd.nameWidth(), 10);
}

TEST_F(AlphaLayout, RecordsSortedByPointName) {
    for (const char *name : {"A10", "10", "a2", "2", "1"})
        ASSERT_TRUE(put(name, 1.0, name));
    Bytes expected = alphaHeader("04/15/2009", "");
    for (const char *name : {"1", "2", "10", "A2", "A10"})
        append(expected, alphaRecord(2.0, 1.0, 3.0, std::string(name) == "A2" ? "a2" : name, name));
    EXPECT_EQ(readBytes(path), expected);
    EXPECT_EQ(crd.lowestName(), "1");
    EXPECT_EQ(crd.highestName(), "A10");
}

TEST_F(AlphaLayout, NamesAreNormalised) {
    struct Case {
        std::string given, stored;
        int error;
    };
    const Case cases[] = {
        {"a-1", "A_1", 0},
        {"  b,2 \r\n", "B_2", 0},
        {"xyz123456", "XYZ123456", 0},
        {"", "", kNameBlank},
        {"   ", "", kNameBlank},
        {"ABCDEFGHIJ", "", kNameTooLong},
        {std::string(300, 'N'), "", kNameTooLong},
        {"A\x01", "", kNameInvalidCharacter},
        {std::string("A\0B", 3), "", kNameInvalidCharacter},
    };
    for (const auto &c : cases) {
        ui.messages.clear();
        CrdPoint p;
        p.name = c.given;
        EXPECT_EQ(crd.writePoint(p), c.error == 0) << c.given;
        EXPECT_EQ(crd.lastError(), c.error) << c.given;
        if (c.error == kNameBlank) {
            EXPECT_EQ(ui.messages,
                      std::vector<std::string>{"\nInvalid point number: empty string."});
        }
        if (c.error == 0) {
            CrdPoint back;
            ASSERT_TRUE(crd.readPoint(c.given, back)) << c.given; // lookups normalise too
            EXPECT_EQ(back.name, c.stored);
        }
    }
    EXPECT_EQ(walk(), (std::vector<std::string>{"A_1", "B_2", "XYZ123456"}));
}

TEST_F(AlphaLayout, ReplaceInPlaceAndTruncate) {
    ASSERT_TRUE(put("P1", 1.0, "old"));
    ASSERT_TRUE(put("P2", 2.0));
    const std::string d32(32, 'd');
    CrdPoint p, previous;
    p.set(7, 8, 98765432.1, "p1", d32);
    ASSERT_TRUE(crd.writePoint(p, Verbosity::Messages, &previous));
    EXPECT_EQ(previous.name, "P1");
    EXPECT_EQ(previous.description, "old");
    EXPECT_EQ(ui.messages.back(),
              "\nWarning: Truncating description that contains too many characters.");
    Bytes expected = alphaHeader("04/15/2009", "");
    append(expected, alphaRecord(8, 7, 0, d32.substr(0, 31), "P1")); // no elevation: 0.0
    append(expected, alphaRecord(3, 2, 4, "", "P2"));
    EXPECT_EQ(readBytes(path), expected);
}

TEST_F(AlphaLayout, InsertsMoveTheTailThroughASmallBuffer) {
    // The tail moves in steps of 3 records: 10 records, inserted at the
    // front, in the middle and at the end, must come out exactly sorted.
    CrdIOMorvane io(context);
    crd.close();
    ASSERT_TRUE(io.open(path, CrdAccess::Update));
    io.setMoveBufferRecords(3);
    const int order[] = {50, 10, 90, 30, 70, 20, 80, 40, 60, 0, 100, 55, 5};
    for (int v : order) {
        CrdPoint p;
        p.set(v, v, v, "P" + std::to_string(v));
        ASSERT_TRUE(io.writePoint(p, Verbosity::Quiet, nullptr));
    }
    Bytes expected = alphaHeader("04/15/2009", "");
    for (int v : {0, 5, 10, 20, 30, 40, 50, 55, 60, 70, 80, 90, 100})
        append(expected, alphaRecord(v, v, v, "", "P" + std::to_string(v)));
    io.close();
    EXPECT_EQ(readBytes(path), expected);
}

TEST_F(AlphaLayout, ReadingWithDirections) {
    for (const char *name : {"B", "D", "F"})
        ASSERT_TRUE(put(name, 1.0));
    struct Case {
        const char *name;
        int direction;
        const char *found;
    };
    const Case cases[] = {
        {"D", 0, "D"},      {"C", 0, nullptr}, {"C", 1, "D"},     {"C", -1, "B"}, {"A", 1, "B"},
        {"A", -1, nullptr}, {"G", -1, "F"},    {"G", 1, nullptr}, {"E", -1, "D"}, {"f", 0, "F"},
    };
    for (const auto &c : cases) {
        CrdPoint p;
        EXPECT_EQ(crd.readPoint(c.name, p, static_cast<PointSearch>(c.direction), Verbosity::Quiet),
                  c.found != nullptr)
            << c.name << c.direction;
        if (c.found) {
            EXPECT_EQ(p.name, c.found);
        } else {
            EXPECT_EQ(crd.lastError(), kPointNotFound);
        }
    }
    // A found point becomes the walk's current record.
    CrdPoint p;
    ASSERT_TRUE(crd.readPoint("D", p));
    ASSERT_TRUE(crd.readNext(p));
    EXPECT_EQ(p.name, "F");
}

TEST_F(AlphaLayout, FirstRevisionIsSortedOnOpen) {
    crd.close();
    Bytes bytes = alphaHeader("01/02/2003", "JOB", "New CRD Format", 4.5);
    append(bytes, alphaRecord(1, 1, 1, "first", "B"));
    append(bytes, alphaRecord(2, 2, 2, "", "10"));
    append(bytes, alphaRecord(3, 3, 3, "second", "B"));
    append(bytes, alphaRecord(4, 4, 4, "", "2"));
    writeBytes(path, bytes);
    ASSERT_TRUE(crd.open(path));
    Bytes expected = alphaHeader("01/02/2003", "JOB", "New CRD Format2", 4.5);
    append(expected, alphaRecord(4, 4, 4, "", "2"));
    append(expected, alphaRecord(2, 2, 2, "", "10"));
    append(expected, alphaRecord(3, 3, 3, "second", "B")); // later goes in front of equals
    append(expected, alphaRecord(1, 1, 1, "first", "B"));
    EXPECT_EQ(readBytes(path), expected);
    EXPECT_EQ(crd.lowestName(), "2");
    EXPECT_EQ(crd.highestName(), "B");
    EXPECT_EQ(crd.headerTexts().number, "4.500");
    EXPECT_EQ(crd.headerTexts().title, "JOB");
}

// Dotted names take the one-by-one insertion, which scans the list for
// every record: a file of this size never finished opening that way.
TEST_F(AlphaLayout, LargeFirstRevisionWithDottedNamesOpens) {
    crd.close();
    Bytes bytes = alphaHeader("", "", "New CRD Format1");
    std::vector<std::string> names;
    for (int i = 1; i <= 100000; ++i) {
        names.push_back(std::to_string(i) + ".5");
        append(bytes, alphaRecord(i, i, i, "", names.back()));
    }
    writeBytes(path, bytes);
    ASSERT_TRUE(crd.open(path));
    EXPECT_EQ(walk(), names);
}

TEST_F(AlphaLayout, FirstRevisionReadOnlyIsSortedInMemoryOnly) {
    crd.close();
    Bytes bytes = alphaHeader("01/02/2003", "", "New CRD Format1");
    append(bytes, alphaRecord(1, 1, 1, "", "Z"));
    append(bytes, alphaRecord(2, 2, 2, "", "A"));
    writeBytes(path, bytes);
    ASSERT_TRUE(crd.openForReading(path));
    EXPECT_EQ(walk(), (std::vector<std::string>{"A", "Z"}));
    CrdPoint p;
    EXPECT_TRUE(crd.readPoint("Z", p));
    EXPECT_FALSE(crd.writePoint(p));
    EXPECT_EQ(readBytes(path), bytes);
}

TEST_F(AlphaLayout, DetectionNeedsTheWholeMark) {
    crd.close();
    struct Case {
        std::string mark;
        int format;
    };
    const Case cases[] = {{"New CRD Format2", 1}, {"New CRD Format", 1}, {"New CRD", 0}, {"", 0}};
    for (const auto &c : cases) {
        writeBytes(path, alphaHeader("", "", c.mark));
        EXPECT_EQ(detectCrdFormat(path), c.format) << c.mark;
    }
    writeBytes(path, Bytes(70, 0)); // shorter than the alphanumeric header
    EXPECT_EQ(detectCrdFormat(path), 0);
}

} // namespace
