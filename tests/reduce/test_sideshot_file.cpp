// sideshot.tmp holds the same list whether the report shows the sideshots
// (the list kept in memory) or not (the list written as the pass runs);
// the listing in rawedit.tmp, written as the pass runs, reads in the report
// as it does without a working folder (the listing kept in memory).
#include "processing_fixture.h"

#include <algorithm>
#include <filesystem>

using namespace tramline;
using namespace tramline::reduce;
namespace fs = std::filesystem;

namespace {

class SideshotFile : public test::ProcessingRun {};

// Enough shots for the list to pass the block in which it is written out,
// with the last line's description telling whether the tail arrived.
std::string manyShots(int count) {
    std::string job = "SP,PN1,N 1000.0000,E 1000.0000,EL100.0000,--START\n"
                      "SP,PN2,N 1100.0000,E 1000.0000,EL100.0000,--BS\n"
                      "OC,OP1,N ,E ,EL,--\nBK,OP1,BP2,BS,BC0.0000\nLS,HI1.500,HR1.800\n";
    for (int i = 0; i < count; ++i)
        appendFormat(job, "SS,OP1,FP%d,AR%d.%02d00,ZE89.3000,SD%d.000,--%s\n", 1000 + i, i % 360,
                     i % 60, 5 + i % 50, i + 1 == count ? "LAST" : "TOPO");
    return job;
}

TEST_F(SideshotFile, SameTextWhetherReportedOrNot) {
    struct Case {
        int shots;
    };
    // A few shots stay under the block; thirty thousand make more than one.
    for (const Case c : {Case{3}, Case{30000}}) {
        std::string files[2];
        for (const bool reported : {true, false}) {
            SetUp();
            options.reportSideshots = reported;
            const ProcessResult r = process(manyShots(c.shots));
            ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
            files[reported] = test::slurp(options.workingFolder / "sideshot.tmp");
            EXPECT_EQ(contains(tab(r, "No Adjust"), "\nSideshots\n\n"), reported) << c.shots;
        }
        EXPECT_EQ(files[0], files[1]) << c.shots;
        EXPECT_NE(files[0].find("LAST\n"), std::string::npos) << c.shots;
        EXPECT_EQ(std::count(files[0].begin(), files[0].end(), '\n'), c.shots);
    }
}

TEST_F(SideshotFile, ListingSameFromFileAsInMemory) {
    for (const int shots : {3, 30000}) {
        std::string listings[2];
        for (const bool inFolder : {false, true}) {
            SetUp();
            options.workingFolder = inFolder ? run.scratch.path / "work" : fs::path();
            const ProcessResult r = process(manyShots(shots));
            ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
            listings[inFolder] = tab(r, "Unadjusted Data");
            if (!inFolder)
                continue;
            const std::string onDisk = test::slurp(options.workingFolder / "rawedit.tmp");
            EXPECT_TRUE(listings[inFolder].starts_with(onDisk)) << shots;
            EXPECT_NE(onDisk.find("LAST\n"), std::string::npos) << shots;
        }
        EXPECT_EQ(listings[0], listings[1]) << shots;
    }
}

} // namespace
