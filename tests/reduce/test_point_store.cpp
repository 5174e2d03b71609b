// Processing leaves its trace in the coordinate file's history: store
// points under "Point Store", shots under "Sideshot", and the traverse
// points a rule moved under that rule's code.
#include "base/format.h"
#include "crd/history_file.h"
#include "process_run.h"
#include "reduce/point_store.h"

#include <gtest/gtest.h>

#include <map>

using namespace tramline;
using namespace tramline::reduce;

namespace {

// A loop that misses its start by 0.3 north, with a sideshot from 3.
const char *kLoop = "SP,PN1,N 1000,E 1000,EL10,--\n"
                    "OC,OP1,N ,E ,EL,--\n"
                    "TR,OP1,FP2,AZ90.0000,ZE90.0000,HD100.000,--\n"
                    "OC,OP2,N ,E ,EL,--\n"
                    "TR,OP2,FP3,AZ0.0000,ZE90.0000,HD100.300,--\n"
                    "OC,OP3,N ,E ,EL,--\n"
                    "SS,OP3,FP30,AZ45.0000,ZE90.0000,HD10.000,--\n"
                    "TR,OP3,FP4,AZ270.0000,ZE90.0000,HD100.000,--\n"
                    "OC,OP4,N ,E ,EL,--\n"
                    "TR,OP4,FP1,AZ180.0000,ZE90.0000,HD100.000,--\n";

TEST(PointStore, EveryStoredPointHasItsHistoryEntry) {
    struct Case {
        AdjustMethod method;
        std::map<std::string, int> operations; ///< point -> op code of its entry
    };
    const Case cases[] = {
        {AdjustMethod::None, {{"1", 20}, {"2", 21}, {"3", 21}, {"30", 21}, {"4", 21}}},
        {AdjustMethod::Compass, {{"1", 20}, {"2", 28}, {"3", 28}, {"30", 21}, {"4", 28}}},
        {AdjustMethod::Transit, {{"1", 20}, {"2", 27}, {"3", 27}, {"30", 21}, {"4", 27}}},
        {AdjustMethod::Crandall, {{"1", 20}, {"2", 29}, {"3", 29}, {"30", 21}, {"4", 29}}},
    };
    for (const auto &c : cases) {
        test::ProcessRun run;
        run.coordinates->setHistoryKeeping(true);
        ProcessOptions options;
        options.method = c.method;
        options.startPoint = options.endPoint = "1";
        const ProcessResult r = run.run(kLoop, options);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        const auto historyPath = run.coordinates->historyPath();
        run.coordinates->close();
        std::vector<crd::HistoryEntry> entries;
        ASSERT_TRUE(crd::parseHistory(test::slurp(historyPath), entries));
        std::map<std::string, int> operations;
        for (const auto &e : entries)
            operations[e.newName.empty() ? e.name : e.newName] = e.operation;
        EXPECT_EQ(operations, c.operations) << static_cast<int>(c.method);
    }
}

// Without history keeping the run writes no history file.
TEST(PointStore, NoHistoryWhenTheFileKeepsNone) {
    test::ProcessRun run;
    ASSERT_EQ(run.run(kLoop, ProcessOptions{}).status, ProcessResult::Status::Done);
    EXPECT_FALSE(std::filesystem::exists(run.coordinates->historyPath()));
}

// Points go to the file in blocks (in name order when every name is one the
// file keeps as given); where the blocks fall changes nothing: a name stored
// twice keeps its later position, its second history entry records the
// change from the first, and a bad name is reported by its line.
TEST(PointStore, BlocksLeaveTheSameFileAndHistory) {
    struct Given {
        const char *name;
        double north;
        bool control = false;
    };
    struct Case {
        std::vector<Given> points;
        std::vector<std::string> listing; ///< "name north" of the names asked for
        std::vector<std::string> warnings;
        long stored;
    };
    const Case cases[] = {
        // A bad name: written in run order.
        {{{"1", 10.0, true}, {"7", 20.0}, {"", 30.0}, {"8", 40.0}, {"7", 50.0}},
         {"1 10.0", "7 50.0", "8 40.0"},
         {"\nFailed to store point \non line 3."},
         4},
        // Interleaved numbers, as traverse and sideshot points come: written
        // in name order, equal names (case apart) still the last one winning,
        // a name too long reported by its own line.
        {{{"1000001", 10.0, true},
          {"ABCDEFGHIJK", 15.0},
          {"2", 20.0},
          {"A1", 25.0},
          {"1000002", 30.0},
          {"10", 40.0},
          {"2", 50.0},
          {"a1", 55.0},
          {"3", 60.0}},
         {"2 50.0", "3 60.0", "10 40.0", "A1 55.0", "1000001 10.0", "1000002 30.0"},
         {"\nFailed to store point ABCDEFGHIJK\non line 2."},
         8},
        // Numbers only, sorted by value: the repeated name keeps its run order.
        {{{"1000001", 10.0, true},
          {"2", 20.0},
          {"1000002", 30.0},
          {"10", 40.0},
          {"2", 50.0},
          {"3", 60.0},
          {"1", 70.0}},
         {"1 70.0", "2 50.0", "3 60.0", "10 40.0", "1000001 10.0", "1000002 30.0"},
         {},
         7},
    };
    struct Outcome {
        std::vector<std::string> listing;
        std::vector<std::string> history; ///< name, operation, flags per entry
        std::vector<std::string> warnings;
        long stored = 0;
    };
    auto store = [&](const Case &c, size_t block) {
        test::ProcessRun run;
        run.coordinates->setHistoryKeeping(true);
        PassResult pass;
        long line = 0;
        for (const Given &g : c.points) {
            ComputedPoint p;
            p.point.name = g.name;
            p.point.north = g.north;
            p.point.east = 1.0;
            p.line = ++line;
            p.control = g.control;
            pass.points.push_back(p);
        }
        Outcome out;
        const StoreResult r = storePoints(pass, *run.coordinates, {}, 28, block);
        out.stored = r.stored;
        out.warnings = r.warnings;
        for (const char *name : {"1", "2", "3", "7", "8", "10", "A1", "1000001", "1000002"})
            if (const auto p = run.point(name))
                out.listing.push_back(std::string(name) + " " + format("%.1f", p->northing));
        const auto historyPath = run.coordinates->historyPath();
        run.coordinates->close();
        std::vector<crd::HistoryEntry> entries;
        EXPECT_TRUE(crd::parseHistory(test::slurp(historyPath), entries));
        for (const auto &e : entries)
            out.history.push_back(format("%s %d %u", e.name.c_str(), e.operation, e.flags));
        return out;
    };
    for (const Case &c : cases) {
        const Outcome whole = store(c, 100);
        EXPECT_EQ(whole.listing, c.listing);
        EXPECT_EQ(whole.stored, c.stored);
        EXPECT_EQ(whole.warnings, c.warnings);
        ASSERT_EQ(whole.history.size(), static_cast<size_t>(c.stored));
        for (const size_t block : {1u, 2u, 3u}) {
            const Outcome part = store(c, block);
            EXPECT_EQ(part.listing, whole.listing) << block;
            EXPECT_EQ(part.history, whole.history) << block;
            EXPECT_EQ(part.warnings, whole.warnings) << block;
            EXPECT_EQ(part.stored, whole.stored) << block;
        }
    }
}

} // namespace
