#include "../support/test_support.h"
#include "base/angles.h"
#include "base/format.h"
#include "geodesy/projection.h"
#include "geodesy/zones.h"
#include "reduce/processing.h"

#include "../support/raw_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

using namespace tramline;
using namespace tramline::reduce;
namespace fs = std::filesystem;

namespace {

using tramline::test::readRawText;

class Processing : public test::ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        crd::CrdContext context;
        context.messages = &ui;
        coordinates = std::make_unique<crd::CoordinateFile>(context);
        ASSERT_TRUE(coordinates->open(dir / "job.crd"));
        options = ProcessOptions{};
        options.workingFolder = dir / "work";
    }

    ProcessResult process(const std::string &text) {
        file = readRawText(text);
        return processRaw(file, "job.rw5", *coordinates, options, ui);
    }

    std::optional<crd::CrdPoint> point(const std::string &name) {
        crd::CrdPoint p;
        if (!coordinates->readPoint(name, p, tramline::crd::PointSearch::Exact,
                                    tramline::crd::Verbosity::Quiet))
            return std::nullopt;
        return p;
    }

    std::string tab(const ProcessResult &r, const std::string &title) {
        for (const auto &t : r.report.tabs())
            if (t.title == title)
                return t.text;
        return "<no tab " + title + ">";
    }

    ScriptedInteraction ui;
    std::unique_ptr<crd::CoordinateFile> coordinates;
    ProcessOptions options;
    raw::RawFile file;
};

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

// The bundled job: a loop measured with small errors. Every method brings
// the stations back within the errors put into the observations, and the
// adjusted loop closes on its start exactly.
TEST_F(Processing, BundledExampleByEveryMethod) {
    const std::string job =
        test::slurp(fs::path(TRAMLINE_SOURCE_DIR) / "data/examples/closed-traverse.rw5");
    struct Truth {
        const char *name;
        double north, east;
    };
    const Truth truth[] = {{"2", 5412.337, 5188.914}, {"3", 5655.120, 5652.480},
                           {"4", 5360.745, 6041.322}, {"5", 4921.583, 5903.460},
                           {"6", 4768.902, 5432.775}, {"104", 5701.640, 5610.022}};
    for (const auto &info : adjustMethods()) {
        if (!info.built)
            continue;
        const AdjustMethod method = info.method;
        SetUp();
        options.method = method;
        options.startPoint = options.endPoint = "1";
        options.angleBalance = true;
        const ProcessResult r = process(job);
        ASSERT_EQ(r.status, ProcessResult::Status::Done) << static_cast<int>(method) << r.error;
        for (const auto &t : truth) {
            const auto p = point(t.name);
            ASSERT_TRUE(p) << t.name;
            EXPECT_NEAR(p->northing, t.north, 0.05)
                << t.name << " method " << static_cast<int>(method);
            EXPECT_NEAR(p->easting, t.east, 0.05)
                << t.name << " method " << static_cast<int>(method);
        }
        const auto start = point("1");
        EXPECT_DOUBLE_EQ(start->northing, 5000.0); // control is never moved by the shot onto it
        if (method == AdjustMethod::Compass) {
            EXPECT_NE(tab(r, "Compass").find("Compass Closure"), std::string::npos);
            EXPECT_NE(tab(r, "Angle Balance").find("Angular Error: -0.0003 for 6 traverse sides"),
                      std::string::npos)
                << tab(r, "Angle Balance");
            EXPECT_NE(
                tab(r, "Angle Balance").find("Corrected Angles\n1         2         AR64.3327\n"),
                std::string::npos);
            EXPECT_NE(
                tab(r, "Closure Results (Before Angle Balance)").find("Closure Precision: 1 in 97"),
                std::string::npos);
        }
        TearDown();
    }
    SetUp();
}

// A published four-sided lot (bearings N76E 80.40, S36E 46.30, S61W 72.80,
// N38W 68.00 from course notes on the compass rule) entered as raw data:
// the adjusted corners match the published adjusted latitudes and
// departures, accumulated, to their printed precision.
TEST_F(Processing, PublishedCompassLotFromRawData) {
    const std::string job = "SP,PN1,N 0.0000,E 0.0000,EL,--A\n"
                            "OC,OP1,N ,E ,EL,--\nTR,OP1,FP2,BRN76.0000E,ZE90.0000,HD80.400,--B\n"
                            "OC,OP2,N ,E ,EL,--\nTR,OP2,FP3,BRS36.0000E,ZE90.0000,HD46.300,--C\n"
                            "OC,OP3,N ,E ,EL,--\nTR,OP3,FP4,BRS61.0000W,ZE90.0000,HD72.800,--D\n"
                            "OC,OP4,N ,E ,EL,--\nTR,OP4,FP1,BRN38.0000W,ZE90.0000,HD68.000,--A\n";
    options.method = AdjustMethod::Compass;
    options.startPoint = options.endPoint = "1";
    const ProcessResult r = process(job);
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    const struct {
        const char *name;
        double north, east;
    } published[] = {{"2", 19.3653, 78.1055},
                     {"3", 19.3653 - 37.5063, 78.1055 + 27.2678},
                     {"4", 19.3653 - 37.5063 - 35.3716, 78.1055 + 27.2678 - 63.5874}};
    for (const auto &p : published) {
        const auto got = point(p.name);
        ASSERT_TRUE(got);
        EXPECT_NEAR(got->northing, p.north, 0.002) << p.name;
        EXPECT_NEAR(got->easting, p.east, 0.002) << p.name;
    }
}

TEST_F(Processing, ErrorsStopWithTheirTextAndStoreNothing) {
    struct Case {
        const char *name;
        std::string job;
        AdjustMethod method;
        std::string error;
    };
    const Case cases[] = {
        {"backsight of another set-up",
         "SP,PN1,N 0,E 0,EL0,--\nOC,OP1,N ,E ,EL,--\nBK,OP7,BP2,BS,BC0\n", AdjustMethod::None,
         "Error: occupied pt# 7 does not match 1 on line# 3"},
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
    };
    for (const auto &c : cases) {
        SetUp();
        options.method = c.method;
        options.startPoint = "1";
        options.endPoint = c.method == AdjustMethod::Compass ? "2" : "1";
        if (c.method == AdjustMethod::Compass)
            options.closingPoint = {"2", 0.0, 10.0, std::nullopt};
        const ProcessResult r = process(c.job);
        EXPECT_EQ(r.status, ProcessResult::Status::Failed) << c.name;
        EXPECT_EQ(r.error, c.error) << c.name;
        EXPECT_FALSE(point("1")) << c.name << ": nothing is written when the run fails";
        TearDown();
    }
    SetUp();
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
    ASSERT_TRUE(coordinates->writePoint(keep));
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
    coordinates->writePoint(old);
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
    EXPECT_EQ(coordinates->notes("3"), (std::vector<std::string>{"LINE:6,FILE:job.rw5"}));
    EXPECT_TRUE(fs::exists(dir / "work" / "rawedit.tmp"));
    EXPECT_TRUE(fs::exists(dir / "work" / "warnings.tmp"));
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

// A square loop with one angle a minute out: the whole minute is the
// angular error, the balance spreads it, and Find Bad Angle names the
// set-up where it was turned.
TEST_F(Processing, AngleBalanceFindsTheBadAngle) {
    std::string job =
        "SP,PN1,N 0.0000,E 0.0000,EL0.0000,--START\nSP,PN100,N -100.0000,E 0.0000,EL0.0000,--MARK\n"
        "OC,OP1,N ,E "
        ",EL,--\nBK,OP1,BP100,BS,BC0.0000\nTR,OP1,FP2,AR270.0000,ZE90.0000,SD100.000,--\n";
    const char *angles[] = {"90.0000", "90.0100", "90.0000"};
    for (int s = 2; s <= 4; ++s)
        job +=
            format("OC,OP%d,N ,E "
                   ",EL,--\nBK,OP%d,BP%d,BS,BC0.0000\nTR,OP%d,FP%d,AR%s,ZE90.0000,SD100.000,--\n",
                   s, s, s - 1, s, s % 4 + 1, angles[s - 2]);
    job += "OC,OP1,N ,E "
           ",EL,--\nBK,OP1,BP4,BS,BC0.0000\nAB,OP1,FP100,AR180.0000,ZE90.0000,SD100.000,--\n";
    options.method = AdjustMethod::AngleBalance;
    options.startPoint = options.endPoint = "1";
    const ProcessResult r = process(job);
    ASSERT_EQ(r.status, ProcessResult::Status::Done) << r.error;
    const std::string balance = tab(r, "Angle Balance");
    EXPECT_NE(balance.find("Angular Error: -0.0100 for 4 traverse sides"), std::string::npos)
        << balance;
    EXPECT_NE(balance.find("Adjusting Each Angle: -0.0015"), std::string::npos);
    EXPECT_NE(balance.find("3         4         AR90.0045\n"), std::string::npos);
    EXPECT_NE(balance.find("Bad Angle at Setup\nOccupy Point 3, Backsight Point 2"),
              std::string::npos)
        << balance;
    // After the balance the square closes on its angles; 3 and 4 come back
    // to within the remaining linear error of their true places.
    EXPECT_NEAR(point("3")->northing, 100.0, 0.02);
    EXPECT_NEAR(point("4")->easting, 0.0, 0.03);
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
        TearDown();
    }
    SetUp();
}

} // namespace
