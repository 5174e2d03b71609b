// The checks a traverse run makes on its own results: the search for one
// bad angle, and the warning when an adjustment moves points further than
// the closure gives reason to.
#include "processing_fixture.h"

#include <cmath>

using namespace tramline;
using namespace tramline::reduce;

namespace {

class TraverseChecks : public test::ProcessingRun {};

// A 100 by 100 square run clockwise from 1 (east, north, west, south) and
// closed by an angle to the mark 100 south of 1. `angles` are the turned
// angles at 2, 3 and 4; `firstSide` the length measured from 1 to 2.
std::string square(const char *angle2, const char *angle3, const char *angle4,
                   const char *firstSide) {
    const char *angles[] = {angle2, angle3, angle4};
    std::string job = "SP,PN1,N 0.0000,E 0.0000,EL0.0000,--START\n"
                      "SP,PN100,N -100.0000,E 0.0000,EL0.0000,--MARK\n"
                      "OC,OP1,N ,E ,EL,--\nBK,OP1,BP100,BS,BC0.0000\n";
    job += format("TR,OP1,FP2,AR270.0000,ZE90.0000,SD%s,--\n", firstSide);
    for (int s = 2; s <= 4; ++s)
        job += format("OC,OP%d,N ,E ,EL,--\nBK,OP%d,BP%d,BS,BC0.0000\n"
                      "TR,OP%d,FP%d,AR%s,ZE90.0000,SD100.000,--\n",
                      s, s, s - 1, s, s % 4 + 1, angles[s - 2]);
    job += "OC,OP1,N ,E ,EL,--\nBK,OP1,BP4,BS,BC0.0000\n"
           "AB,OP1,FP100,AR180.0000,ZE90.0000,SD100.000,--\n";
    return job;
}

// One bad angle leaves its station where both directions of the traverse
// agree. A length error on the first side moves them apart by itself; with
// a minute's error at 3 the closure is about 0.038, so the station is
// accepted while they stay within a tenth of it (about 0.0038) and refused
// beyond. The error spread over every angle points at no station.
TEST_F(TraverseChecks, FindBadAngle) {
    struct Row {
        const char *name;
        const char *angle2, *angle3, *angle4, *firstSide;
        const char *verdict;
    };
    const char *found3 = "Bad Angle at Setup\nOccupy Point 3, Backsight Point 2\n";
    const char *found2 = "Bad Angle at Setup\nOccupy Point 2, Backsight Point 1\n";
    const char *notFound = "Find Bad Angle\nBad angle not found\n";
    const Row rows[] = {
        {"one bad angle at 3", "90.0000", "90.0100", "90.0000", "100.000", found3},
        {"one bad angle at 2", "89.5900", "90.0000", "90.0000", "100.000", found2},
        {"just inside a tenth", "90.0000", "90.0100", "90.0000", "100.0035", found3},
        {"just outside a tenth", "90.0000", "90.0100", "90.0000", "100.0045", notFound},
        {"spread over every angle", "90.0020", "90.0020", "90.0020", "100.000", notFound},
        {"spread, opposite sense", "89.5940", "89.5940", "89.5940", "100.000", notFound},
    };
    for (const auto &row : rows) {
        SetUp();
        options.method = AdjustMethod::AngleBalance;
        options.startPoint = options.endPoint = "1";
        const ProcessResult r = process(square(row.angle2, row.angle3, row.angle4, row.firstSide));
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << row.name << ": " << r.error;
        const std::string balance = tab(r, "Angle Balance");
        EXPECT_TRUE(contains(balance, row.verdict)) << row.name << "\n" << balance;
        TearDown();
    }
    SetUp();
}

// Two sides, north 100 then at azimuth 30 for 100, closed on a point given
// with a chosen error. Crandall keeps the directions and changes only the
// two lengths, so the middle point moves along the first side by
// (-e.north + e.east / tan 30): a small closure can move it further than
// the closure itself. The warning comes when that exceeds 1.1 x the
// closure, or 0.77 while the closure is under 0.7.
TEST_F(TraverseChecks, ShiftWarning) {
    struct Row {
        double errorNorth, errorEast;
        const char *maxAdjustment;
        bool warns;
    };
    const Row rows[] = {
        {0.0, 0.44, "Max adjustment: 0.762", false},  // under 0.77
        {0.0, 0.45, "Max adjustment: 0.779", true},   // over 0.77
        {-1.65, 0.1, "Max adjustment: 1.823", true},  // closure 1.653: over 1.818
        {-1.75, 0.1, "Max adjustment: 1.923", false}, // closure 1.753: under 1.928
        {0.3, 0.0, "Max adjustment: 0.300", false},   // along the first side: no lever
    };
    const double endNorth = 100.0 + 100.0 * std::cos(M_PI / 6.0);
    const double endEast = 100.0 * std::sin(M_PI / 6.0);
    for (const auto &row : rows) {
        SetUp();
        options.method = AdjustMethod::Crandall;
        options.startPoint = "1";
        options.endPoint = "3";
        options.closingPoint = {"3", endNorth - row.errorNorth, endEast - row.errorEast,
                                std::nullopt};
        const ProcessResult r = process("SP,PN1,N 0.0000,E 0.0000,EL,--\n"
                                        "OC,OP1,N ,E ,EL,--\n"
                                        "TR,OP1,FP2,AZ0.0000,ZE90.0000,HD100.000,--\n"
                                        "OC,OP2,N ,E ,EL,--\n"
                                        "TR,OP2,FP3,AZ30.0000,ZE90.0000,HD100.000,--\n");
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        const std::string crandall = tab(r, "Crandall");
        EXPECT_TRUE(contains(crandall, row.maxAdjustment)) << crandall;
        EXPECT_EQ(contains(crandall, "Warning: adjustment moved points by up to "), row.warns)
            << row.maxAdjustment;
        TearDown();
    }
    SetUp();
}

} // namespace
