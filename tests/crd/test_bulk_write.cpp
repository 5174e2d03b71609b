// The bulk write must leave exactly the file that writing the same points
// one at a time leaves.
#include "crd_test_support.h"

#include "crd/crd_io_morvane.h"
#include "crd/file_kinds.h"

#include <random>

using namespace tramline::crd;
using namespace crdtest;

namespace {

// Counts the bytes written, to show how often records move.
class CountingStore : public MemoryStore {
public:
    using MemoryStore::MemoryStore;
    bool writeAt(std::uint64_t offset, const void *data, std::size_t size) override {
        written += size;
        return MemoryStore::writeAt(offset, data, size);
    }
    std::size_t written = 0;
};

std::vector<CrdPoint> randomPoints(std::mt19937 &random, int count, const std::string &alphabet,
                                   int maxLength) {
    std::vector<CrdPoint> points;
    for (int i = 0; i < count; ++i) {
        std::string name;
        const int length = 1 + static_cast<int>(random() % static_cast<unsigned>(maxLength));
        for (int j = 0; j < length; ++j)
            name += alphabet[random() % alphabet.size()];
        CrdPoint p;
        p.set(random() % 1000, random() % 1000, i % 7 == 0 ? 98765432.1 : i, name,
              i % 11 == 0 ? std::string(40, 'x') : "p" + std::to_string(i));
        points.push_back(p);
    }
    return points;
}

// One write of a sequence: points in bulk, or one at a time in both stores.
struct Step {
    std::vector<CrdPoint> points;
    bool oneByOne = false;
};

// The same start, then the points one by one in one store and step by step
// (in bulk where the step says so) in the other; both the bytes and the
// messages must agree.
std::size_t expectSameAsOneByOne(const Bytes &start, const std::vector<Step> &steps) {
    tramline::ScriptedInteraction singleUi, bulkUi;
    CrdContext singleContext, bulkContext;
    singleContext.messages = &singleUi;
    bulkContext.messages = &bulkUi;
    CrdIOMorvane single(singleContext), bulk(bulkContext);
    auto singleStore = std::make_unique<MemoryStore>(start);
    auto bulkStore = std::make_unique<CountingStore>(start);
    const MemoryStore *singleBytes = singleStore.get();
    const CountingStore *bulkBytes = bulkStore.get();
    EXPECT_TRUE(single.openStore(std::move(singleStore), CrdAccess::Update));
    EXPECT_TRUE(bulk.openStore(std::move(bulkStore), CrdAccess::Update));

    for (const Step &step : steps) {
        std::vector<int> singleErrors;
        long singleWritten = 0;
        for (const auto &p : step.points) {
            singleWritten += single.writePoint(p, Verbosity::Messages, nullptr) ? 1 : 0;
            singleErrors.push_back(single.lastError());
        }
        std::vector<int> bulkErrors;
        if (step.oneByOne) {
            for (const auto &p : step.points) {
                bulk.writePoint(p, Verbosity::Messages, nullptr);
                bulkErrors.push_back(bulk.lastError());
            }
        } else {
            EXPECT_EQ(bulk.writePoints(step.points, Verbosity::Messages, &bulkErrors),
                      singleWritten);
        }
        EXPECT_EQ(bulkErrors, singleErrors);
    }
    EXPECT_EQ(bulkUi.messages, singleUi.messages);
    EXPECT_TRUE(bulkBytes->bytes() == singleBytes->bytes());
    EXPECT_EQ(bulk.highestName(), single.highestName());
    EXPECT_EQ(bulk.lowestName(), single.lowestName());
    return bulkBytes->written;
}

std::size_t expectSameAsOneByOne(const Bytes &start, const std::vector<CrdPoint> &points) {
    return expectSameAsOneByOne(start, std::vector<Step>{{points}});
}

std::vector<CrdPoint> numbered(int first, int last) {
    std::vector<CrdPoint> points;
    for (int n = first; n <= last; ++n) {
        CrdPoint p;
        p.set(n, 2.0 * n, 100.0, std::to_string(n), "N");
        points.push_back(p);
    }
    return points;
}

Bytes existingAlphaFile(std::mt19937 &random) {
    CrdIOMorvane io;
    auto store = std::make_unique<MemoryStore>(alphaHeader("01/01/2020", "T"));
    const MemoryStore *bytes = store.get();
    EXPECT_TRUE(io.openStore(std::move(store), CrdAccess::Update));
    for (const auto &p : randomPoints(random, 300, "0123456789AB", 4))
        io.writePoint(p, Verbosity::Quiet, nullptr);
    return bytes->bytes();
}

TEST(CrdBulkWrite, SameBytesAsOneByOne) {
    std::mt19937 random(7);
    const Bytes empty = alphaHeader("01/01/2020", "T");
    const Bytes existing = existingAlphaFile(random);
    struct Case {
        const char *what;
        const Bytes &start;
        std::string alphabet;
        int maxLength, count;
        bool merged; // each record moves once: bytes written stay near the file's size
    };
    const Case cases[] = {
        {"into an empty file", empty, "0123456789ABZ_", 5, 2000, true},
        {"over existing points, with duplicates", existing, "0123456789AB", 4, 1500, true},
        {"names with '.' (one by one underneath)", existing, "019A.", 4, 300, false},
        {"bad names among good ones", empty, "AB -,\t", 11, 400, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const std::size_t written =
            expectSameAsOneByOne(c.start, randomPoints(random, c.count, c.alphabet, c.maxLength));
        if (c.merged) {
            EXPECT_LT(written, 2 * (c.start.size() + 66u * static_cast<unsigned>(c.count)));
        }
    }
}

// A run of bulk writes on one open file, as a large job stores its points
// block by block: a later block checks only what the earlier ones did not
// leave in order, and still finds its names in the middle of the file, and a
// single write in between (a name with '.') makes it check everything again.
TEST(CrdBulkWrite, BlocksInARowSameAsOneByOne) {
    std::mt19937 random(5);
    const Bytes empty = alphaHeader("01/01/2020", "T");
    CrdPoint dotted;
    dotted.set(1.0, 2.0, 3.0, "250.5", "DOT");
    struct Case {
        const char *what;
        std::vector<Step> steps;
    };
    const Case cases[] = {
        {"appending, then over the middle",
         {{numbered(1, 400)}, {numbered(401, 800)}, {numbered(300, 500)}}},
        {"random blocks",
         {{randomPoints(random, 300, "0123456789AB", 4)},
          {randomPoints(random, 300, "0123456789AB", 4)}}},
        {"a name with '.' written between blocks",
         {{numbered(1, 400)}, {{dotted}, true}, {numbered(200, 600)}}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        expectSameAsOneByOne(empty, c.steps);
    }
}

TEST(CrdBulkWrite, NumericSameBytesAsOneByOne) {
    std::mt19937 random(11);
    Bytes start;
    addDouble(start, 0.0);
    addDouble(start, 0.0);
    addDouble(start, 2020.0101);
    addText(start, "", 32);
    expectSameAsOneByOne(start, randomPoints(random, 500, "0123456789", 4));
}

TEST(CrdBulkWrite, FullDiskLeavesTheFileAsItWas) {
    std::mt19937 random(3);
    const Bytes start = existingAlphaFile(random);
    auto store = std::make_unique<MemoryStore>(start);
    MemoryStore *bytes = store.get();
    bytes->setCapacity(start.size() + 10 * 66); // room for 10 more records only
    CrdIOMorvane io;
    ASSERT_TRUE(io.openStore(std::move(store), CrdAccess::Update));
    std::vector<int> errors;
    EXPECT_EQ(io.writePoints(randomPoints(random, 50, "CDEFG", 3), Verbosity::Quiet, &errors), 0);
    EXPECT_EQ(io.lastError(), 23);
    EXPECT_TRUE(bytes->bytes() == start);
}

// Found by fuzzing: a record of no bytes reads into no buffer at all.
TEST(MemoryStore, EmptyReadsAndWritesNeedNoBuffer) {
    MemoryStore store(std::vector<unsigned char>{1, 2, 3});
    EXPECT_EQ(store.readAt(1, nullptr, 0), 0);
    EXPECT_TRUE(store.writeAt(1, nullptr, 0));
    EXPECT_EQ(store.bytes(), (std::vector<unsigned char>{1, 2, 3}));
}

} // namespace
