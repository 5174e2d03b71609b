// The collector's own adjustments carried in "--HZADJ:" and "--VERTADJ:"
// notes: shots land where the plane transformation and the inclined height
// plane put them, and the inverse transformation brings them back.
#include "processing_fixture.h"

#include <cmath>
#include <vector>

using namespace tramline;
using namespace tramline::reduce;

namespace {

constexpr double kToRadians = 3.14159265358979323846 / 180.0;

struct Plane {
    double originNorth, originEast, deltaNorth, deltaEast, rotation, scale;
};

struct Position {
    double north, east;
};

// The transformation as a surveyor states it: about the origin, every
// point turns clockwise by the rotation (like an azimuth) and its distance
// from the origin grows by the scale; then the whole moves by the deltas.
Position transformed(const Plane &t, Position p) {
    const double dn = p.north - t.originNorth, de = p.east - t.originEast;
    const double distance = std::hypot(dn, de) * t.scale;
    const double azimuth = std::atan2(de, dn) + t.rotation * kToRadians;
    return {t.originNorth + t.deltaNorth + distance * std::cos(azimuth),
            t.originEast + t.deltaEast + distance * std::sin(azimuth)};
}

Plane inverse(const Plane &t) {
    return {t.originNorth + t.deltaNorth,
            t.originEast + t.deltaEast,
            -t.deltaNorth,
            -t.deltaEast,
            -t.rotation,
            1.0 / t.scale};
}

// Raw notes keep 64 characters: the figures are chosen to print short and
// exactly, inverse included.
std::string horizontalNote(const Plane &t) {
    return format("--HZADJ:%.10g,%.10g,%.10g,%.10g,%.10g,%.10g\n", t.originNorth, t.originEast,
                  t.deltaNorth, t.deltaEast, t.rotation, t.scale);
}

const Position kSetup{1000.0, 2000.0};
const char *kSetupLines = "SP,PN1,N 1000.0000,E 2000.0000,EL100.0000,--SETUP\n"
                          "OC,OP1,N ,E ,EL,--\nLS,HI0.000,HR0.000\n";

// Level shots by azimuth from the set-up to each target.
std::string shotsTo(const std::vector<Position> &targets) {
    std::string job;
    for (size_t i = 0; i < targets.size(); ++i) {
        const double dn = targets[i].north - kSetup.north, de = targets[i].east - kSetup.east;
        double azimuth = std::atan2(de, dn) / kToRadians;
        if (azimuth < 0)
            azimuth += 360.0;
        job += format("SS,OP1,FP%zu,AZ%s,ZE90.0000,SD%.9f,--\n", 10 + i,
                      test::packedDms(azimuth).c_str(), std::hypot(dn, de));
    }
    return job;
}

class SdrAdjustment : public test::ProcessingRun {};

TEST_F(SdrAdjustment, HorizontalAdjustmentMovesShotsAndItsInverseBringsThemBack) {
    const std::vector<Position> shot = {{1010.0, 2000.0}, {1000.0, 2020.0}, {970.0, 1970.0}};
    const Plane planes[] = {
        {990.0, 2010.0, 5.0, -3.0, 0.0, 1.0},  // deltas only
        {990.0, 2010.0, 0.0, 0.0, 30.0, 1.0},  // a turn about another point than the set-up
        {1000.0, 2000.0, 0.0, 0.0, 90.0, 2.0}, // north turns east, distances double
        {985.5, 2012.25, 12.5, 7.75, -45.0, 0.8},
        {0.0, 0.0, -250.0, 100.0, 0.5, 1.25}, // a grid far away: the origin matters
    };
    for (const Plane &t : planes) {
        SetUp();
        ui.reply("Yes");
        ProcessResult r = process(horizontalNote(t) + kSetupLines + shotsTo(shot));
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        EXPECT_TRUE(contains(tab(r, "Report Header"), "SDR Horiz Adjustment"));
        for (size_t i = 0; i < shot.size(); ++i) {
            const Position expected = transformed(t, shot[i]);
            const auto p = point(std::to_string(10 + i));
            ASSERT_TRUE(p);
            EXPECT_NEAR(p->northing, expected.north, 1e-6)
                << "rotation " << t.rotation << " pt " << i;
            EXPECT_NEAR(p->easting, expected.east, 1e-6)
                << "rotation " << t.rotation << " pt " << i;
        }
        EXPECT_NEAR(point("1")->northing, kSetup.north, 1e-9) << "control is not moved";

        // Shots measured to the moved places, with the inverse adjustment.
        SetUp();
        ui.reply("Yes");
        std::vector<Position> moved;
        for (const auto &p : shot)
            moved.push_back(transformed(t, p));
        r = process(horizontalNote(inverse(t)) + kSetupLines + shotsTo(moved));
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        for (size_t i = 0; i < shot.size(); ++i) {
            const auto p = point(std::to_string(10 + i));
            ASSERT_TRUE(p);
            EXPECT_NEAR(p->northing, shot[i].north, 1e-5) << "rotation " << t.rotation;
            EXPECT_NEAR(p->easting, shot[i].east, 1e-5) << "rotation " << t.rotation;
        }
        TearDown();
    }

    // Declined, the note changes nothing.
    SetUp();
    ui.reply("No");
    const ProcessResult r = process(horizontalNote(planes[2]) + kSetupLines + shotsTo(shot));
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_FALSE(contains(tab(r, "Report Header"), "SDR Horiz Adjustment"));
    EXPECT_NEAR(point("10")->northing, 1010.0, 1e-6);
    EXPECT_NEAR(point("10")->easting, 2000.0, 1e-6);
}

// Elevations on an inclined plane: constant + slope north x (north -
// origin) + slope east x (east - origin), at the shot's place before any
// horizontal adjustment; answered "No", the note changes nothing.
TEST_F(SdrAdjustment, VerticalAdjustmentRaisesByTheInclinedPlane) {
    const std::string note = "--VERTADJ:1000.0,2000.0,0.5,0.01,-0.002\n";
    const std::string shots = "SS,OP1,FP10,AZ0.0000,ZE90.0000,SD10.000,--\n"   // N 1010 E 2000
                              "SS,OP1,FP11,AZ90.0000,ZE90.0000,SD20.000,--\n"  // N 1000 E 2020
                              "SS,OP1,FP12,AZ225.0000,CE-1.000,HD42.426,--\n"; // about 970, 1970
    struct Row {
        const char *answer;
        const char *horizontal; // a horizontal adjustment that moves the points too
        double elevation10, elevation11, elevation12;
    };
    const Row rows[] = {
        {"Yes", "", 100.5 + 0.1, 100.5 - 0.04, 99.0 + 0.5 - 0.3 + 0.06},
        {"No", "", 100.0, 100.0, 99.0},
        {"Yes", "--HZADJ:1000.0,2000.0,400.0,-300.0,90.0,1.0\n", 100.6, 100.46, 99.26},
    };
    for (const auto &row : rows) {
        SetUp();
        if (*row.horizontal)
            ui.reply("Yes");
        ui.reply(row.answer);
        const ProcessResult r = process(std::string(row.horizontal) + note + kSetupLines + shots);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        EXPECT_NEAR(point("10")->elevation, row.elevation10, 1e-6) << row.answer;
        EXPECT_NEAR(point("11")->elevation, row.elevation11, 1e-6) << row.answer;
        EXPECT_NEAR(point("12")->elevation, row.elevation12, 1e-4) << row.answer;
        EXPECT_EQ(contains(tab(r, "Report Header"), "SDR Vertical Adjustment"),
                  std::string(row.answer) == "Yes");
        TearDown();
    }
    SetUp();
}

// A note is used only when every number is there; anything less is not
// even asked about, and the shots stay where they were measured.
TEST_F(SdrAdjustment, IncompleteNotesAreIgnored) {
    const char *notes[] = {
        "--HZADJ:100,200,1.5,-2.5,0.25\n", "--HZADJ:100,200,x,-2.5,0.25,1\n",
        "--VERTADJ:10,20,0.5,0.001\n",
        "--HZADJ:10,20,0.5,0.001,-0.002\n", // five numbers are a vertical note's
    };
    for (const char *note : notes) {
        SetUp();
        const ProcessResult r =
            process(note + std::string(kSetupLines) + shotsTo({{1010.0, 2000.0}}));
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << note << r.error;
        EXPECT_TRUE(ui.questions.empty()) << note;
        EXPECT_NEAR(point("10")->northing, 1010.0, 1e-6) << note;
        EXPECT_NEAR(point("10")->elevation, 100.0, 1e-6) << note;
    }
}

// Elevation differences measured against the plane take it out again: the
// adjusted elevations come back to the set-up's height.
TEST_F(SdrAdjustment, VerticalAdjustmentUndoneByTheOppositeHeights) {
    ui.reply("Yes");
    const ProcessResult r =
        process("--VERTADJ:990.0,1990.0,-0.25,0.002,0.004\n" + std::string(kSetupLines) +
                "SS,OP1,FP10,AZ0.0000,CE0.170,HD10.000,--\n"     // 0.25 - 0.04 - 0.04
                "SS,OP1,FP11,AZ180.0000,CE0.270,HD40.000,--\n"); // 0.25 + 0.06 - 0.04
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_NEAR(point("10")->elevation, 100.0, 1e-9);
    EXPECT_NEAR(point("11")->elevation, 100.0, 1e-9);
}

} // namespace
