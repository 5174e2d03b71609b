// The angle balance: the correction of each angle, the corrected angles in
// their written forms, and traverses by azimuths and bearings, whose every
// direction stands on its own and must take all the corrections before it.
#include "base/angles.h"
#include "process_run.h"
#include "reduce/angle_balance.h"

#include <gtest/gtest.h>

using namespace tramline;
using namespace tramline::reduce;
using raw::HorizontalKind;

namespace {

constexpr double kTenSeconds = 10.0 / 3600.0;

TEST(AngleBalance, CorrectedAngleInItsWrittenForm) {
    struct Case {
        HorizontalKind kind;
        double angle, correction;
        int turns;
        const char *expected;
    };
    const Case cases[] = {
        {HorizontalKind::AR, 90.0, kTenSeconds, 1, "AR90.0010"},
        {HorizontalKind::None, 90.0, kTenSeconds, 1, "AR90.0010"}, // angle right by default
        {HorizontalKind::AL, 90.0, kTenSeconds, 1, "AL89.5950"},   // turned the other way
        {HorizontalKind::DL, 10.0, -kTenSeconds, 1, "DL10.0010"},
        {HorizontalKind::DR, 10.0, -kTenSeconds, 1, "DR9.5950"},
        {HorizontalKind::AZ, 45.0, kTenSeconds, 3, "AZ45.0030"},  // k-th direction, k turns
        {HorizontalKind::AZ, 0.0, -kTenSeconds, 1, "AZ359.5950"}, // through north
        {HorizontalKind::NE, 45.0, kTenSeconds, 2, "N45.0020E"},
        {HorizontalKind::SE, 45.0, kTenSeconds, 1, "S44.5950E"}, // azimuth 135 grows
        {HorizontalKind::SW, 45.0, kTenSeconds, 1, "S45.0010W"},
        {HorizontalKind::NW, 45.0, kTenSeconds, 1, "N44.5950W"},
        {HorizontalKind::NE, 0.0, -kTenSeconds, 1, "N0.0010W"}, // across the meridian
    };
    for (const auto &c : cases)
        EXPECT_EQ(correctedAngle(c.kind, c.angle, c.correction, c.turns,
                                 AngleUnit::DegreesMinutesSeconds),
                  c.expected)
            << raw::horizontalKindName(c.kind) << " " << c.angle;
    EXPECT_EQ(correctedAngle(HorizontalKind::AR, 90.0, 0.9, 1, AngleUnit::Gons), "AR101.0000");
}

// A square loop 1-2-3-4-1 of 100-unit sides whose k-th direction is off by
// k times ten seconds, as when each set-up's orientation carries the
// error of the last; the closing shot to mark 9 (due north) is off by 40".
std::string loop(bool bearings) {
    const char *directions[][2] = {{"AZ90.0010", "BRS89.5950E"},
                                   {"AZ0.0020", "BRN0.0020E"},
                                   {"AZ270.0030", "BRN89.5930W"},
                                   {"AZ180.0040", "BRS0.0040W"},
                                   {"AZ0.0040", "BRN0.0040E"}};
    const char *points[] = {"1", "2", "3", "4", "1"};
    std::string job = "SP,PN1,N 1000,E 1000,EL10,--\nSP,PN9,N 2000,E 1000,EL10,--\n";
    const char *next[] = {"2", "3", "4", "1"};
    for (int k = 0; k < 4; ++k)
        job += std::string("OC,OP") + points[k] + ",N ,E ,EL,--\nTR,OP" + points[k] + ",FP" +
               next[k] + "," + directions[k][bearings] + ",ZE90.0000,HD100.000,--\n";
    job += std::string("OC,OP1,N ,E ,EL,--\nAB,OP1,FP9,") + directions[4][bearings] +
           ",ZE90.0000,HD1000.000,--\n";
    return job;
}

// The loops processed: the closure before the balance shows the
// rotation, the one after it none, and the balanced closing direction
// matches the reference.
// A gon file's tab speaks gons throughout, a ddd.mmss file's ddd.mmss.
TEST(AngleBalance, TheTabSpeaksTheFilesAngleUnit) {
    struct Case {
        AngleUnit unit;
        const char *azimuths, *error;
    };
    const Case cases[] = {
        {AngleUnit::DegreesMinutesSeconds,
         "Reference Closing Azimuth: 90.0000  "
         "Measured Closing Azimuth: 90.0020",
         "Angular Error: -0.0020 for 0 traverse sides"},
        {AngleUnit::Gons,
         "Reference Closing Azimuth: 100.0000  "
         "Measured Closing Azimuth: 100.0062",
         "Angular Error: -0.0062 for 0 traverse sides"},
    };
    for (const auto &c : cases) {
        raw::RawFile file;
        file.units.angle = c.unit;
        const std::string t = angleBalanceText(90.0, 90.0 + 2 * kTenSeconds, file, {}, {});
        EXPECT_NE(t.find(c.azimuths), std::string::npos) << t;
        EXPECT_NE(t.find(c.error), std::string::npos) << t;
    }
}

TEST(AngleBalance, AzimuthAndBearingLoopsCloseAfterTheBalance) {
    for (const bool bearings : {false, true}) {
        test::ProcessRun run;
        ProcessOptions options;
        options.method = AdjustMethod::AngleBalance;
        options.startPoint = options.endPoint = "1";
        const ProcessResult r = run.run(loop(bearings), options);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        const std::string balance = test::ProcessRun::tab(r, "Angle Balance");
        const std::string after = test::ProcessRun::tab(r, "Closure Results (After Angle Balance)");
        EXPECT_NE(balance.find("Angular Error: -0.0040 for 4 traverse sides"), std::string::npos)
            << balance;
        EXPECT_NE(after.find("Hz Dist Error   : 0.00000"), std::string::npos) << after;
        const auto p = run.point("3");
        ASSERT_TRUE(p);
        EXPECT_NEAR(p->northing, 1100.0, 1e-6) << bearings;
        EXPECT_NEAR(p->easting, 1100.0, 1e-6) << bearings;
    }
}

} // namespace
