// The history file byte for byte, and reading it back.
#include "crd_test_support.h"

#include "crd/history_file.h"

using namespace tramline::crd;
using namespace crdtest;

namespace {

class History : public CrdTest {
protected:
    void addCString(Bytes &b, const std::string &s) {
        b.insert(b.end(), s.begin(), s.end());
        b.push_back(0);
    }
    void addU16(Bytes &b, unsigned v) {
        b.push_back(static_cast<unsigned char>(v & 0xff));
        b.push_back(static_cast<unsigned char>(v >> 8));
    }
    void addU32(Bytes &b, std::uint32_t v) {
        for (int i = 0; i < 4; ++i)
            b.push_back(static_cast<unsigned char>(v >> (8 * i)));
    }
    Bytes mark() {
        Bytes b;
        addCString(b, "CRD HISTORY V2");
        return b;
    }
};

TEST_F(History, EntriesByteForByte) {
    const auto path = file("site.his");
    HistoryFile history(&ui);
    ASSERT_TRUE(history.openForAppend(path));
    history.setSecondText("amy");
    CrdPoint before, after;
    after.set(1.5, 2.5, 3.5, "12", "IP");
    ASSERT_TRUE(history.append(nullptr, &after, 16, "raw.rw5", 1000));
    before = after;
    after.elevation = 4.0;
    ASSERT_TRUE(history.append(&before, &after, 16, "raw.rw5", 1003)); // no stamp within 5 s
    ASSERT_TRUE(history.append(&after, nullptr, 8, "", 1010));
    ASSERT_TRUE(history.append(nullptr, &after, 85, "", 2000)); // undo: stamped only if none yet
    // Entries that write nothing.
    ASSERT_TRUE(history.append(&before, &after, 255, "", 3000));
    ASSERT_TRUE(history.append(&before, &after, 16, "", 3000, 0));
    ASSERT_TRUE(history.append(nullptr, nullptr, 16, "", 3000));
    ASSERT_TRUE(history.append(&after, &after, 16, "", 3000));
    history.close();

    Bytes expected = mark();
    addCString(expected, "12");
    addU16(expected, 250 | 0x100 | 0x200 | 0x400 | 0x1000);
    expected.push_back(16);
    addCString(expected, "raw.rw5");
    addU32(expected, 1000);
    addCString(expected, "amy");
    addCString(expected, "IP"); // description
    addCString(expected, "");   // point code
    addDouble(expected, 1.5);
    addDouble(expected, 2.5);
    addDouble(expected, 3.5);

    addCString(expected, "12");
    addU16(expected, 0x80 | 0x200 | 0x400 | 0x800 | 0x1000 | 0x2000);
    expected.push_back(16);
    addDouble(expected, 4.0);

    addCString(expected, "12");
    addU16(expected, 0x1 | 0x100 | 0x200 | 0x1000 | 0x2000);
    expected.push_back(8);
    addU32(expected, 1010);

    addCString(expected, "12");
    addU16(expected, 250 | 0x200 | 0x1000 | 0x2000);
    expected.push_back(85);
    addCString(expected, "IP");
    addCString(expected, "");
    addDouble(expected, 1.5);
    addDouble(expected, 2.5);
    addDouble(expected, 4.0);
    EXPECT_EQ(readBytes(path), expected);

    std::vector<HistoryEntry> entries;
    ASSERT_TRUE(readHistoryFile(path, entries));
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[1].text, "raw.rw5"); // repeated from the entry before
    EXPECT_EQ(entries[1].secondText, "amy");
    EXPECT_EQ(entries[1].time, 1000u); // the stamp before it
    EXPECT_FALSE(entries[1].stamped);
    EXPECT_EQ(entries[1].elevation, 4.0);
    EXPECT_EQ(entries[3].operation, 85);
    EXPECT_EQ(entries[3].time, 1010u);

    setenv("TZ", "UTC", 1);
    tzset();
    EXPECT_EQ(describeHistoryEntry(entries[0]),
              "Thu Jan  1 00:16:40 1970  Input-Edit Point  12: N 2.5000 E 1.5000 Z 3.5000 "
              "description \"IP\" (raw.rw5)");
    EXPECT_EQ(describeHistoryEntry(entries[2]),
              "Thu Jan  1 00:16:50 1970  Delete Points  12: removed");
}

TEST_F(History, ChangeMask) {
    CrdPoint a, b, unnamed;
    a.set(1, 2, 3, "A", "d", "c");
    struct Case {
        const char *what;
        std::function<void(CrdPoint &)> change;
        unsigned mask;
    };
    const Case cases[] = {
        {"nothing", [](CrdPoint &) {}, 0},
        {"name", [](CrdPoint &p) { p.name = "B"; }, 4},
        {"description", [](CrdPoint &p) { p.description = "x"; }, 8},
        {"code", [](CrdPoint &p) { p.code = "x"; }, 16},
        {"easting and elevation",
         [](CrdPoint &p) {
             p.easting = 9;
             p.elevation = 9;
         },
         32 | 128},
        {"northing", [](CrdPoint &p) { p.northing = 9; }, 64},
    };
    for (const auto &c : cases) {
        b = a;
        c.change(b);
        EXPECT_EQ(historyChangeMask(&a, &b), c.mask) << c.what;
    }
    EXPECT_EQ(historyChangeMask(&a, nullptr), 1u);
    EXPECT_EQ(historyChangeMask(&a, &unnamed), 1u);
    EXPECT_EQ(historyChangeMask(nullptr, &a), 250u);
    EXPECT_EQ(historyChangeMask(&unnamed, &a), 250u);
    EXPECT_EQ(historyChangeMask(nullptr, nullptr), 0u);
}

TEST_F(History, BadFilesAndCutEntries) {
    writeBytes(file("bad.his"), Bytes{'C', 'R', 'X', ' ', 'H', 'I', 'S', 'T'});
    HistoryFile history(&ui);
    EXPECT_FALSE(history.openForAppend(file("bad.his")));
    EXPECT_FALSE(history.openForAppend(file("no/such/folder.his")));
    EXPECT_EQ(ui.messages,
              (std::vector<std::string>{
                  "\nCRD HISTORY FAILED: " + file("bad.his").string() + " not valid.\n",
                  "\nCRD History file, " + file("no/such/folder.his").string() +
                      ", could not be created!\n"}));

    Bytes bytes = mark();
    addCString(bytes, "7");
    addU16(bytes, 0x1);
    addCString(bytes, "8");
    addU16(bytes, 0x40); // northing promised, cut short
    bytes.push_back(1);
    std::vector<HistoryEntry> entries;
    EXPECT_FALSE(parseHistory(std::string(bytes.begin(), bytes.end()), entries));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "7");
}

// A full disk while the file was made leaves it empty or cut inside its
// mark: it is started again (with a note), not refused for ever.
TEST_F(History, EmptyOrCutFileIsStartedAgain) {
    const Bytes whole = mark();
    for (const std::size_t kept : {std::size_t{0}, std::size_t{8}, whole.size() - 1}) {
        SCOPED_TRACE(kept);
        ui.messages.clear();
        writeBytes(file("site.his"), Bytes(whole.begin(), whole.begin() + static_cast<long>(kept)));
        HistoryFile history(&ui);
        ASSERT_TRUE(history.openForAppend(file("site.his")));
        history.close();
        EXPECT_EQ(readBytes(file("site.his")), whole);
        ASSERT_EQ(ui.messages.size(), 1u);
        EXPECT_NE(ui.messages[0].find("started again"), std::string::npos);
    }
}

// Codes in the gaps of the table have no name, so a reader shows the number.
TEST(HistoryOperations, GapsHaveNoName) {
    for (int none : {0, 88, 92, 96, 106, 225, 247, 255})
        EXPECT_EQ(historyOperationName(none), nullptr) << none;
}

} // namespace
