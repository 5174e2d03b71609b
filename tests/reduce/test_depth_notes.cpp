// Depth notes ("--DZ,PN<point>,DZ<depth>"): soundings and pipe inverts
// shot on the surface and lowered by the depth measured there.
#include "processing_fixture.h"

using namespace tramline;
using namespace tramline::reduce;

namespace {

class DepthNotes : public test::ProcessingRun {};

TEST_F(DepthNotes, PointLoweredByTheDepth) {
    struct Row {
        const char *name;
        const char *notes; // after the shot to 10
        const char *point;
        double elevation;
        const char *reported;
    };
    const Row rows[] = {
        {"shot point", "--DZ,PN10,DZ3.25\n", "10", 105.0 - 3.25,
         "\n10        Adjusted Elev: 101.750, Depth: 3.250"},
        {"control point", "--DZ,PN1,DZ0.4\n", "1", 100.0 - 0.4,
         "\n1         Adjusted Elev: 99.600, Depth: 0.400"},
        {"two soundings add up", "--DZ,PN10,DZ1.0\n--DZ,PN10,DZ0.5\n", "10", 105.0 - 1.5,
         "Adjusted Elev: 103.500, Depth: 0.500"},
        {"negative depth raises", "--DZ,PN10,DZ-2\n", "10", 107.0,
         "Adjusted Elev: 107.000, Depth: -2.000"},
        {"unknown point changes nothing", "--DZ,PN99,DZ3\n", "10", 105.0, ""},
    };
    for (const auto &row : rows) {
        SetUp();
        const ProcessResult r = process(std::string("SP,PN1,N 0,E 0,EL100.0000,--\n"
                                                    "OC,OP1,N ,E ,EL,--\nLS,HI1.500,HR1.500\n"
                                                    "SS,OP1,FP10,AZ0.0000,CE5.000,HD10.000,--\n") +
                                        row.notes);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << row.name << ": " << r.error;
        EXPECT_NEAR(point(row.point)->elevation, row.elevation, 1e-9) << row.name;
        EXPECT_NEAR(point(row.point)->northing, row.point == std::string("1") ? 0.0 : 10.0, 1e-9)
            << row.name << ": depths leave the position";
        const std::string report = tab(r, "No Adjust");
        if (*row.reported) {
            EXPECT_TRUE(contains(report, std::string("\nDepth Adjustments") + "\n"))
                << row.name << "\n"
                << report;
        }
        EXPECT_TRUE(contains(report, row.reported)) << row.name << "\n" << report;
        TearDown();
    }
    SetUp();
}

// A later shot from the lowered point starts at the lowered elevation.
TEST_F(DepthNotes, LaterSetUpUsesTheLoweredElevation) {
    const ProcessResult r = process("SP,PN1,N 0,E 0,EL100.0000,--\n"
                                    "OC,OP1,N ,E ,EL,--\nLS,HI1.500,HR1.500\n"
                                    "SS,OP1,FP10,AZ0.0000,CE5.000,HD10.000,--\n"
                                    "--DZ,PN10,DZ2.0\n"
                                    "OC,OP10,N ,E ,EL,--\nLS,HI1.000,HR1.000\n"
                                    "SS,OP10,FP11,AZ90.0000,CE1.000,HD10.000,--\n");
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_NEAR(point("11")->elevation, 105.0 - 2.0 + 1.0, 1e-9);
}

} // namespace
