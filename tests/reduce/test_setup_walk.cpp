// The set-up walk seen from a second client: every reduced shot arrives
// with the set-up it was measured from, as a network adjustment needs it.
#include "base/angles.h"
#include "process_run.h"
#include "reduce/setup_walk.h"
#include "walk_recorder.h"

#include "../support/raw_support.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tramline;
using namespace tramline::reduce;

namespace {

using tramline::test::readRawText;

TEST(SetupWalk, EveryShotArrivesWithItsSetup) {
    const raw::RawFile file = readRawText("SP,PN1,N 1000,E 1000,EL10,--\n"
                                          "SP,PN9,N 1000,E 900,EL10,--\n"
                                          "OC,OP1,N ,E ,EL,--\n"     // line 3
                                          "BK,OP1,BP9,BS,BC0.0000\n" // west: 270
                                          "LS,HI1.500,HR2.000\n"
                                          "TR,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--\n"
                                          "OC,OP2,N ,E ,EL,--\n" // line 7
                                          "BK,OP2,BP1,BS,BC0.0000\n"
                                          "LS,HR1.000\n" // HI carries over
                                          "SS,OP2,FP3,AL30.3000,ZE90.0000,SD50.000,--\n");
    test::WalkRecorder c;
    ScriptedInteraction ui;
    const WalkOutcome out = walkSetups(file, ProcessOptions{}, 0.0, c, ui);
    ASSERT_EQ(out.status, WalkOutcome::Status::Done) << out.error;
    struct Expected {
        const char *occupied, *backsight, *foresight;
        double orientation, angle, azimuth, horizontal, hi, hr;
        long setupLine, line;
    };
    const Expected expected[] = {
        {"1", "9", "2", 270.0, 90.0, 0.0, 100.0, 1.5, 2.0, 3, 6},
        {"2", "1", "3", 180.0, 30.5, 149.5, 50.0, 1.5, 1.0, 7, 10},
    };
    ASSERT_EQ(c.rows.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        const auto &e = expected[i];
        const auto &r = c.rows[i];
        EXPECT_EQ(r.occupied, e.occupied) << i;
        EXPECT_EQ(r.backsight, e.backsight) << i;
        EXPECT_EQ(r.foresight, e.foresight) << i;
        EXPECT_NEAR(r.orientation, e.orientation, 1e-9) << i;
        EXPECT_NEAR(r.angle, e.angle, 1e-9) << i;
        EXPECT_NEAR(std::remainder(r.azimuth - e.azimuth, 360.0), 0.0, 1e-9) << i;
        EXPECT_NEAR(r.horizontal, e.horizontal, 1e-9) << i;
        EXPECT_EQ(r.hi, e.hi) << i;
        EXPECT_EQ(r.hr, e.hr) << i;
        EXPECT_EQ(r.setupLine, e.setupLine) << i;
        EXPECT_EQ(r.line, e.line) << i;
    }
}

// A shot whose occupied point is not the open set-up's is a miswritten
// record: it is left out with the backsight rule's message as a warning,
// never computed from the wrong station.
TEST(SetupWalk, ShotFromAnotherOccupiedPointIsLeftOut) {
    const raw::RawFile file = readRawText("SP,PN1,N 1000,E 1000,EL10,--\n"
                                          "SP,PN5,N 0,E 0,EL10,--\n"
                                          "OC,OP1,N ,E ,EL,--\n"
                                          "SS,OP1,FP2,AZ90.0000,ZE90.0000,SD100.000,--\n"
                                          "SS,OP5,FP3,AZ90.0000,ZE90.0000,SD100.000,--\n" // line 5
                                          "SS,OP1,FP4,AZ0.0000,ZE90.0000,SD100.000,--\n"
                                          // no occupied point written: the set-up's
                                          "SS,OP,FP6,AZ180.0000,ZE90.0000,SD100.000,--\n");
    test::WalkRecorder c;
    ScriptedInteraction ui;
    ASSERT_EQ(walkSetups(file, ProcessOptions{}, 0.0, c, ui).status, WalkOutcome::Status::Done);
    ASSERT_EQ(c.rows.size(), 3u);
    EXPECT_EQ(c.rows[0].foresight, "2");
    EXPECT_EQ(c.rows[1].foresight, "4");
    EXPECT_EQ(c.rows[2].foresight, "6");
    EXPECT_EQ(c.rows[2].occupied, "1");
    EXPECT_EQ(c.warnings,
              std::vector<std::string>{"Error: occupied pt# 5 does not match 1 on line# 5"});
}

TEST(SetupWalk, ShotFromAnotherOccupiedPointIsNotStored) {
    test::ProcessRun run;
    const ProcessResult r = run.run("SP,PN1,N 1000,E 1000,EL10,--\n"
                                    "OC,OP1,N ,E ,EL,--\n"
                                    "SS,OP7,FP3,AZ90.0000,ZE90.0000,SD100.000,--\n",
                                    ProcessOptions{});
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_FALSE(run.point("3"));
    EXPECT_TRUE(test::ProcessRun::reports(r, "Error: occupied pt# 7 does not match 1 on line# 3"));
}

} // namespace

// The walk reports each record as it passes, so that a long run can show
// how far it is; a cancelled walk stops reporting.
TEST(SetupWalk, ReportsProgressRecordByRecord) {
    const raw::RawFile file = readRawText("SP,PN1,N 1000,E 1000,EL10,--\n"
                                          "SP,PN9,N 1000,E 900,EL10,--\n"
                                          "OC,OP1,N ,E ,EL,--\n"
                                          "BK,OP1,BP9,BS,BC0.0000\n"
                                          "TR,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--\n");
    struct Case {
        int cancelAfterIdles;
        std::size_t calls;
    };
    const Case cases[] = {{0, file.nodes.size()}, {3, 3}};
    for (const Case &c : cases) {
        std::vector<std::pair<std::size_t, std::size_t>> seen;
        ProcessOptions options;
        options.progress = [&seen](std::size_t done, std::size_t total) {
            seen.emplace_back(done, total);
        };
        test::WalkRecorder recorder;
        ScriptedInteraction ui;
        ui.cancelAfterIdles = c.cancelAfterIdles;
        walkSetups(file, options, 0.0, recorder, ui);
        ASSERT_EQ(seen.size(), c.calls) << c.cancelAfterIdles;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            EXPECT_EQ(seen[i].first, i);
            EXPECT_EQ(seen[i].second, file.nodes.size());
        }
    }
}
