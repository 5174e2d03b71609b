// A damaged file is read but never written into; a crash journal is undone
// on the next open.
#include "crd_test_support.h"

#include "crd/crd_errors.h"
#include "crd/crd_io_morvane.h"
#include "crd/layout_check.h"
#include "crd/move_journal.h"

using namespace tramline::crd;
using namespace crdtest;

namespace {

using LayoutCheckTest = CrdTest;

Bytes numericFile(int records, std::size_t cut) {
    Bytes b = numericRecord(records, 0, 2009.0415, "");
    for (int i = 1; i <= records; ++i)
        append(b, numericRecord(i, i, i, "P"));
    b.resize(b.size() - cut);
    return b;
}

Bytes alphaFile(std::initializer_list<const char *> names, const std::string &mark) {
    Bytes b = alphaHeader("04/15/2009", "", mark);
    double n = 0;
    for (const char *name : names) {
        n += 1;
        append(b, alphaRecord(n, n, n, "", name));
    }
    return b;
}

TEST_F(LayoutCheckTest, DamagedFilesAreRefusedForWritingOnly) {
    const struct {
        const char *what;
        Bytes bytes;
        long long stray;
        long outOfOrder, doubled;
    } cases[] = {
        {"numeric, whole", numericFile(3, 0), 0, 0, 0},
        {"numeric, cut inside a record", numericFile(3, 20), 36, 0, 0},
        {"alphanumeric, whole", alphaFile({"1", "2", "10", "A2"}, "New CRD Format2"), 0, 0, 0},
        {"alphanumeric, cut",
         [] {
             Bytes b = alphaFile({"1", "2"}, "New CRD Format2");
             b.pop_back();
             return b;
         }(),
         65, 0, 0},
        {"alphanumeric, out of order", alphaFile({"1", "10", "2", "3"}, "New CRD Format2"), 0, 1,
         0},
        {"alphanumeric, doubled", alphaFile({"1", "2", "2", "3"}, "New CRD Format2"), 0, 0, 1},
        {"first revision, unsorted by design", alphaFile({"B", "A"}, "New CRD Format"), 0, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const auto path = file("site.crd");
        writeBytes(path, c.bytes);
        MemoryStore memory(c.bytes);
        const LayoutCheck check = checkLayout(memory);
        EXPECT_EQ(check.strayBytes, c.stray);
        EXPECT_EQ(check.outOfOrder, c.outOfOrder);
        EXPECT_EQ(check.doubled, c.doubled);
        const bool whole = c.stray == 0 && c.outOfOrder == 0 && c.doubled == 0;
        EXPECT_EQ(check.problems.empty(), whole);

        CrdIOMorvane io(context);
        EXPECT_EQ(io.open(path, CrdAccess::Update), whole);
        if (!whole) {
            EXPECT_EQ(io.lastError(), kDamagedFile);
            EXPECT_EQ(readBytes(path), c.bytes); // not a byte written
        }
        io.close();
        EXPECT_TRUE(io.open(path, CrdAccess::ReadOnly)) << "readers still get at the points";
    }
}

// A journal left by a killed update puts the old bytes back on the next
// open, for a writer and for a reader alike; a journal that was never
// finished means the file was not yet touched.
TEST_F(LayoutCheckTest, AnInterruptedMoveIsUndoneOnOpen) {
    const auto path = file("site.crd");
    const Bytes before = alphaFile({"1", "3", "5"}, "New CRD Format2");
    for (const CrdAccess access : {CrdAccess::Update, CrdAccess::ReadOnly}) {
        writeBytes(path, before);
        {
            FileOpenResult result{};
            auto store = FileStore::openForUpdate(path, result);
            ASSERT_TRUE(store);
            ASSERT_TRUE(beginMove(journalPathFor(path), *store, 104));
            // Half a move: the tail shifted by one record, the new one not yet written.
            const Bytes torn = alphaFile({"1", "1", "3", "5"}, "New CRD Format2");
            store->writeAt(0, torn.data(), torn.size() - 30);
        }
        CrdIOMorvane io(context);
        ASSERT_TRUE(io.open(path, access));
        io.close();
        EXPECT_EQ(readBytes(path), before);
        EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
    }
    // An unfinished journal (cut short) is dropped; the file stays.
    writeBytes(path, before);
    {
        FileOpenResult result{};
        auto store = FileStore::openForUpdate(path, result);
        ASSERT_TRUE(beginMove(journalPathFor(path), *store, 0));
    }
    std::filesystem::resize_file(journalPathFor(path),
                                 std::filesystem::file_size(journalPathFor(path)) - 1);
    CrdIOMorvane io(context);
    ASSERT_TRUE(io.open(path, CrdAccess::Update));
    EXPECT_EQ(readBytes(path), before);
    EXPECT_FALSE(std::filesystem::exists(journalPathFor(path)));
}

} // namespace
