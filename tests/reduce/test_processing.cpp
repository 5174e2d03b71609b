// Whole runs through processing: hand-computed coordinates, the errors that
// stop a run, the questions it asks and the warnings it lists.
#include "geodesy/projection.h"
#include "geodesy/zones.h"
#include "processing_fixture.h"

#include <algorithm>
#include <filesystem>

using namespace tramline;
using namespace tramline::reduce;
namespace fs = std::filesystem;

namespace {

class Processing : public test::ProcessingRun {};

// Azimuths of whole degrees and level shots: coordinates a surveyor checks
// by hand, to the fourth decimal.
TEST_F(Processing, HandComputedTraverse) {
    const std::string job = "SP,PN1,N 1000.0000,E 2000.0000,EL50.0000,--START\n"
                            "OC,OP1,N ,E ,EL,--\n"
                            "LS,HI5.000,HR5.000\n"
                            "TR,OP1,FP2,AZ90.0000,ZE90.0000,SD100.000,--A\n"
                            "OC,OP2,N ,E ,EL,--\n"
                            "BK,OP2,BP1,BS,BC0.0000\n"
                            "LS,HI5.000,HR6.000\n"
                            "TR,OP2,FP3,AR90.0000,ZE90.0000,SD200.000,--B\n" // azimuth 0: due north
                            "SS,OP2,FP10,DR30.0000,ZE60.0000,SD100.000,--C\n"  // azimuth 120
                            "SS,OP2,FP11,BRS60.0000W,ZE90.0000,HD50.000,--D\n" // azimuth 240
                            "SS,OP2,FP12,AL90.0000,CE-2.500,HD40.000,--E\n";   // azimuth 180
    const ProcessResult r = process(job);
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    struct Expected {
        const char *name;
        double north, east, elevation;
    };
    const Expected expected[] = {
        {"1", 1000.0, 2000.0, 50.0},
        {"2", 1000.0, 2100.0, 50.0},
        {"3", 1200.0, 2100.0, 49.0},
        {"10", 1000.0 - 86.6025403784 * 0.5, 2100.0 + 86.6025403784 * 0.8660254038,
         50.0 + 50.0 + 5.0 - 6.0},
        {"11", 1000.0 - 25.0, 2100.0 - 43.3012701892, 50.0 + 5.0 - 6.0},
        {"12", 960.0, 2100.0, 50.0 + 5.0 - 2.5 - 6.0},
    };
    for (const auto &e : expected) {
        const auto p = point(e.name);
        ASSERT_TRUE(p) << e.name;
        EXPECT_NEAR(p->northing, e.north, 0.00005) << e.name;
        EXPECT_NEAR(p->easting, e.east, 0.00005) << e.name;
        EXPECT_NEAR(p->elevation, e.elevation, 0.00005) << e.name;
    }
    EXPECT_EQ(r.report.title(), "Process No Adjust Results");
    const std::string listing = tab(r, "Unadjusted Data");
    EXPECT_NE(listing.find("Traverse Lines  : 2\nSideshot Traverses: 0\nSideShots       : 3\nStore "
                           "Points    : 1\n"),
              std::string::npos)
        << listing;
}

TEST_F(Processing, ErrorsStopWithTheirTextAndStoreNothing) {
    struct Case {
        const char *name;
        std::string job;
        AdjustMethod method;
        std::string error;
    };
    const Case cases[] = {
        {"no backsight", "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nBK,OP1,BP,BS,BC0\n",
         AdjustMethod::None, "Error: no backsight point specified on line# 3"},
        {"backsight on itself", "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nBK,OP1,BP1,BS,BC0\n",
         AdjustMethod::None,
         "Error: backsight record 1 on line# 3\nhas identical occupied and backsight pt#'s"},
        {"angle right without orientation",
         "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nSS,OP1,FP2,AR1,ZE90,SD1,--\n",
         AdjustMethod::None, "Error: no backsight point specified on line# 3"},
        {"one traverse side",
         "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nTR,OP1,FP2,AZ90,ZE90,SD10,--\n",
         AdjustMethod::Compass, "Error: only 1 traverse sides found."},
        {"incomplete set",
         "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E "
         ",EL,--\nBD,OP1,FP2,AR0,ZE90,SD1,--\nFD,OP1,FP3,AR1,ZE90,SD1,--\n",
         AdjustMethod::None, "Error: incomplete direct-reverse set"},
        {"no angle balance shot",
         "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nTR,OP1,FP2,AZ90,ZE90,SD10,--\nOC,OP2,N ,E "
         ",EL,--\n"
         "TR,OP2,FP1,AZ270,ZE90,SD10,--\n",
         AdjustMethod::AngleBalance, "Error: no angle balance shot found"},
        // A value that is no number stops the run at its own record, not at
        // the later one that misses the point it would have given.
        {"a distance that is no number",
         "SP,PN1,N 0,E 0,EL0,--\nSP,PN9,N 10,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nBK,OP1,BP9,BS,BC0\n"
         "SS,OP1,FP2,AR90,ZE90,SD1O.5,--\nOC,OP2,N ,E ,EL,--\n",
         AdjustMethod::None, "Error: bad value 1O.5 on line# 5"},
        {"a store point easting that is no number",
         "SP,PN1,N 0,E 0,EL0,--\nSP,PN2,N 5,E 1x,EL0,--\nOC,OP2,N ,E ,EL,--\n", AdjustMethod::None,
         "Error: bad value 1x on line# 2"},
    };
    for (const auto &c : cases) {
        SetUp();
        options.method = c.method;
        options.startPoint = "1";
        options.endPoint = c.method == AdjustMethod::Compass ? "2" : "1";
        options.closingPoint = {};
        if (c.method == AdjustMethod::Compass)
            options.closingPoint = {"2", 0.0, 10.0, std::nullopt};
        const ProcessResult r = process(c.job);
        EXPECT_EQ(r.status, ProcessResult::Status::Failed) << c.name;
        EXPECT_EQ(r.error, c.error) << c.name;
        EXPECT_FALSE(point("1")) << c.name << ": nothing is written when the run fails";
    }
}

// Fuzzing found an occupy line too short to name its point throwing out of
// the pass; now it is an occupy of no point, which the user is asked about.
TEST_F(Processing, ShortOccupyLineIsNoCrash) {
    const ProcessResult r = process("SR,;\n1,FP2\nOC,A\n");
    EXPECT_EQ(r.status, ProcessResult::Status::ReturnToEditor);
    EXPECT_EQ(r.error, "No coordinate stored for Occupied Point \non line# 3");
}

TEST_F(Processing, MissingOccupiedPointIsAskedFor) {
    const std::string job = "OC,OP5,N ,E ,EL,--\nSS,OP5,FP6,AZ0,ZE90,SD10,--\n";
    ui.reply("100|200|10|ENTERED");
    ProcessResult r = process(job);
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_EQ(ui.questions.at(0), "Occupy Point");
    EXPECT_EQ(ui.messages.at(0), "No coordinate stored for Occupied Point 5\non line# 1");
    EXPECT_NEAR(point("6")->northing, 110.0, 1e-9);

    // Refused entries, then back to the editor: the file keeps what it had.
    SetUp();
    crd::CrdPoint keep;
    keep.set(1, 2, 3, "99", "KEEP");
    ASSERT_TRUE(run.coordinates->writePoint(keep));
    ui.reply("|200||");
    ui.reply("<cancel>");
    r = process(job);
    EXPECT_EQ(r.status, ProcessResult::Status::ReturnToEditor);
    EXPECT_NE(std::find(ui.messages.begin(), ui.messages.end(), "Error: missing Northing"),
              ui.messages.end());
    EXPECT_TRUE(point("99"));
    EXPECT_FALSE(point("6"));
}

TEST_F(Processing, StorePointChecksAndPointProtect) {
    const std::string job =
        "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nSS,OP1,FP2,AZ0,ZE90,SD10,--\n"
        "SP,PN2,N 5,E 5,EL0,--LATER\nSP,PN1,N 0,E 0,EL0,--SAME\n";
    ui.reply("Continue &Processing");
    ProcessResult r = process(job);
    ASSERT_EQ(r.status, ProcessResult::Status::Done);
    EXPECT_EQ(ui.questions.at(0).rfind(
                  "Store Point Check: Warning: Store Point records found after Measurement", 0),
              0u);
    EXPECT_EQ(ui.questions.size(), 1u); // equal coordinates are no conflict
    EXPECT_DOUBLE_EQ(point("2")->northing, 5.0);

    // Turned into notes: the shot's position stands.
    SetUp();
    ui.reply("&Change Store Point Records into Notes");
    r = process(job);
    EXPECT_TRUE(r.rawChanged);
    EXPECT_EQ(file.nodes[3].text, "--SP2,N 5.0000,E 5.0000,EL0.0000,--LATER");
    EXPECT_DOUBLE_EQ(point("2")->northing, 10.0);

    // Points already in the coordinate file: asked, and Report goes back.
    SetUp();
    crd::CrdPoint old;
    old.set(9, 9, 9, "2", "OLD");
    run.coordinates->writePoint(old);
    ui.reply("Continue &Processing");
    ui.reply("&Report");
    r = process(job);
    EXPECT_EQ(r.status, ProcessResult::Status::ReturnToEditor);
    EXPECT_NE(tab(r, "Point Protect").find("ForeSight Point: 2 Line: 3"), std::string::npos)
        << tab(r, "Point Protect");
    EXPECT_DOUBLE_EQ(point("2")->northing, 9.0);
}

TEST_F(Processing, WarningsAndNotes) {
    const std::string job = "SP,PN1,N 0,E 0,EL100,--\nSP,PN2,N 100,E 0,EL100,--\n"
                            "OC,OP1,N ,E ,EL,--\nBK,OP1,BP2,BS0.0002,BC0\nLS,HI5,HR5\n"
                            "SS,OP1,FP3,AR90.0000,ZE90.0000,SD10,--\n"
                            "--Elevation: 2D\n"
                            "SS,OP1,FP4,AR10.6100,ZE90.0000,SD10,--\n"
                            "SS,OP1,FP1,AR0,ZE90,SD10,--\n"
                            "LS,HI-98765432.1\n";
    options.pointNotes = true;
    const ProcessResult r = process(job);
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    const std::string text = tab(r, "No Adjust");
    for (const char *w :
         {"Warning: backsight record on line# 4 azimuth different than backsight coordinate by "
          "0.0002",
          "Warning: Calculate Elevations turned off by 'Elevation: 2D' note in raw file at line 7",
          "Warning: Bad horizontal angle: 10.6100 at row: 8 (Not dd.mmss format)",
          "Error: occupied pt# 1 same as foresight on line# 9"})
        EXPECT_NE(text.find(w), std::string::npos) << w << "\n" << text;
    EXPECT_EQ(text.find("Instrument Height"),
              std::string::npos); // the unset height is not validated
    EXPECT_DOUBLE_EQ(point("3")->elevation, 100.0);
    EXPECT_DOUBLE_EQ(point("4")->elevation,
                     0.0); // after the 2D note: none, which the store keeps as 0
    EXPECT_EQ(run.coordinates->notes("3"), (std::vector<std::string>{"LINE:6,FILE:job.rw5"}));
    EXPECT_TRUE(fs::exists(run.scratch.path / "work" / "rawedit.tmp"));
    EXPECT_TRUE(fs::exists(run.scratch.path / "work" / "warnings.tmp"));
}

// On a transverse Mercator's central meridian the grid factor is the
// projection's own (0.9996 for UTM); height above the ellipsoid shrinks it
// by the earth's radius in feet.
TEST_F(Processing, CombinedScaleFactorPerSetup) {
    geodesy::CoordinateSystem system;
    ASSERT_TRUE(geodesy::zoneSystem(geodesy::CoordinateSystemFamily::Utm,
                                    geodesy::zoneName(geodesy::CoordinateSystemFamily::Utm, 33), {},
                                    system));
    geodesy::Projection projection;
    ASSERT_TRUE(projection.open(system));
    options.combinedScaleFactor = true;
    options.projection = &projection;
    const ProcessResult r =
        process("MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                "SP,PN1,N 5000000.0000,E 500000.0000,EL0.0000,--CM\n"
                "SP,PN2,N 5000000.0000,E 500000.0000,EL1000.0000,--CM HIGH\n"
                "OC,OP1,N ,E ,EL,--\nSS,OP1,FP10,AZ90.0000,ZE90.0000,SD100.000,--\n"
                "OC,OP2,N ,E ,EL,--\nSS,OP2,FP20,AZ0.0000,ZE90.0000,SD100.000,--\n");
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    EXPECT_NEAR(point("10")->easting - 500000.0, 99.96, 1e-7);
    const double high = 0.9996 * 20906000.0 / (20906000.0 + 1000.0 * 3.280833333333);
    EXPECT_NEAR(point("20")->northing - 5000000.0, 100.0 * high, 1e-7);
    EXPECT_NE(tab(r, "Report Header")
                  .find("Calculate Combined Scale Factor for Each Measurement: ON\nGeoid: None\n"),
              std::string::npos);
}

TEST_F(Processing, BacksightAzimuthWithinOneSecondIsNoWarning) {
    for (const auto &[bs, warns] :
         std::vector<std::pair<const char *, bool>>{{"0.00005", false}, {"0.0002", true}}) {
        SetUp();
        const ProcessResult r =
            process(std::string("SP,PN1,N 0,E 0,EL0,--\nSP,PN2,N 100,E 0,EL0,--\n"
                                "OC,OP1,N ,E ,EL,--\nBK,OP1,BP2,BS") +
                    bs + ",BC0\n");
        EXPECT_EQ(tab(r, "No Adjust").find("azimuth different") != std::string::npos, warns) << bs;
    }
}

} // namespace

// A face set is turned from its own backsight (its BD/BR target), which
// need not be the set-up's BK point: point 3 lies due east of 1, the BK
// point 2 due north, so a set reading 90° right of 3 aims due south.
TEST_F(Processing, DirectReverseSetIsOrientedOnItsOwnBacksight) {
    struct Case {
        const char *setBacksight;
        double north, east; // of point 5
        const char *warning;
    };
    const Case cases[] = {
        {"3", 900.0, 1000.0,
         "Warning: direct-reverse set on line# 6 oriented on its own backsight 3, not on 2"},
        {"2", 1000.0, 1100.0, nullptr}, // the BK point itself: nothing to say
        {"4", 1000.0, 1100.0,
         "Warning: direct-reverse set on line# 6: no coordinate stored for its backsight 4, "
         "oriented on 2"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.setBacksight);
        SetUp();
        const std::string bs = c.setBacksight;
        const std::string job = "SP,PN1,N 1000,E 1000,EL0,--\nSP,PN2,N 1100,E 1000,EL0,--\n"
                                "SP,PN3,N 1000,E 1100,EL0,--\n"
                                "OC,OP1,N ,E ,EL,--\nBK,OP1,BP2,BS,BC0\n"
                                "BD,OP1,FP" +
                                bs +
                                ",AR0,ZE90,SD50.000,--\n"
                                "FD,OP1,FP5,AR90,ZE90,SD100.000,--\n"
                                "FR,OP1,FP5,AR270,ZE270,SD100.000,--\n"
                                "BR,OP1,FP" +
                                bs + ",AR180,ZE270,SD50.000,--\n";
        const ProcessResult r = process(job);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
        const auto p = point("5");
        ASSERT_TRUE(p);
        EXPECT_NEAR(p->northing, c.north, 1e-6);
        EXPECT_NEAR(p->easting, c.east, 1e-6);
        const std::string text = tab(r, "No Adjust");
        if (c.warning)
            EXPECT_TRUE(contains(text, c.warning)) << text;
        else
            EXPECT_FALSE(contains(text, "direct-reverse set on line#")) << text;
    }
}
