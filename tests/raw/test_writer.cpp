#include "raw/classify.h"
#include "raw/reader.h"
#include "raw/writer.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace tramline;
using namespace tramline::raw;

namespace {

// Each writer's exact text, and what the strict classifier makes of it:
// the writers and the classifier must agree on every line written.
TEST(RawWriter, ExactFormsAndTheClassifierAgrees) {
    struct Case {
        std::string line;
        const char *expected;
        int kind;
    };
    const Case cases[] = {
        {writeJob("J", "D", "T"), "JB,NMJ,DTD,TMT\n", kJob},
        {writeMode(LinearUnit::UsSurveyFeet), "MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n", kMode},
        {writeOccupy("1", "5000.0000", "", "", "X"), "OC,OP1,N 5000.0000,E ,EL,--X\n", kOccupy},
        {writeHeights("5.120", "6.000"), "LS,HI5.120,HR6.000\n", kHeightsHiHr},
        {writeInstrumentHeight("5.120"), "LS,HI5.120\n", kHeightsHi},
        {writeRodHeight("6.000"), "LS,HR6.000\n", kHeightsHr},
        {writeBacksight("1", "2", "45.3000", "0.0000"), "BK,OP1,BP2,BS45.3000,BC0.0000\n",
         kBacksight},
        {writeBacksightAzimuth("1", "45.3000"), "BK,OP1,BP,BS45.3000\n", kUnrecognised},
        {writeObservation("SS", "1", "2", HorizontalKind::NE, "45.3000", VerticalKind::ZE,
                          "90.0000", DistanceKind::Slope, "10.000", "EP"),
         "SS,OP1,FP2,BRN45.3000E,ZE90.0000,SD10.000,--EP\n", kObservation},
        {writeObservation("CL+AB", "1", "2", HorizontalKind::SW, "1", VerticalKind::CE, "2",
                          DistanceKind::Horizontal, "3", ""),
         "CL+AB,OP1,FP2,BRS1W,CE2,HD3,--\n", kObservation},
        {writeObservation("FD", "1", "2", HorizontalKind::DL, "1", VerticalKind::VA, "2",
                          DistanceKind::Slope, "3", ""),
         "FD,OP1,FP2,DL1,VA2,SD3,--\n", kObservation},
        {writeStorePoint("7", 1.0, 2.5, -3.25, "MON"), "SP,PN7,N 1.0000,E 2.5000,EL-3.2500,--MON\n",
         kStorePoint},
        {writeGps("9", 44.5, -93.25, 250.0, "CP"),
         "GPS,PN9,LA44.500000000,LN-93.250000000,EL250.0000,--CP\n", kGps},
        {writeBasePoint("8", "1", "2", "3", "B"), "BP,PN8,LA1,LN2,EL3,--B\n", kUnrecognised},
        {writeBasePointExtra("8", "1", "2", "3", "AG1,PA2,AT3,SR4"),
         "BP,PN8,LA1,LN2,EL3,AG1,PA2,AT3,SR4\n", kBasePointSr},
        {writeTraverseName("Loop A"), "NAME,Loop A\n", kUnrecognised},
        {writeElevation("5", 12.0), "EL,PN5,EL12.0000\n", kUnrecognised},
        {writeReferenceAzimuth("1", "2", "45.3000"), "AZ,OP1,FP2,BS45.3000\n", kUnrecognised},
        {writeDataOnOff(), "DO,Data On/Off\n", kUnrecognised},
        {writeCc("a", "b"), "CC,a,b\n", kUnrecognised},
        {writeControlErrors("0.01", "0.02", "0.03", "5"), "CSE,N 0.01,E 0.02,EL0.03,AZ5\n",
         kUnrecognised},
        {writeSetupErrors("1", "2", "3", "4"), "SSE,TE1,IE2,HI3,RD4\n", kUnrecognised},
        {writeMeasurementErrors("1", "2", "3", "4", "5", "6"), "MSE,PE1,RE2,VP3,VR4,DT5,PP6\n",
         kUnrecognised},
        {writeGpsVector("G2", "VX1,VY2,VZ3"), "G2,VX1,VY2,VZ3\n", kGps2},
        {writeNote("Crew"), "--Crew\n", kNote},
    };
    RawFields fields;
    for (const auto &c : cases) {
        EXPECT_EQ(c.line, c.expected);
        const std::string line = c.line.substr(0, c.line.size() - 1);
        EXPECT_EQ(ClassifyRawLine(line, JobRecords::Recognised, fields), c.kind) << line;
    }
}

// What the substring readers of converters find must match the reader.
TEST(RawWriter, SubstringUnitsAgreeWithTheReader) {
    for (LinearUnit unit :
         {LinearUnit::InternationalFeet, LinearUnit::Metres, LinearUnit::UsSurveyFeet}) {
        std::istringstream in(writeMode(unit));
        RawFile file;
        ASSERT_TRUE(readRaw(in, file));
        EXPECT_EQ(file.units.linear, unit);
        EXPECT_EQ(file.units.angle, AngleUnit::DegreesMinutesSeconds);
        EXPECT_TRUE(file.units.linearDeclared);
    }
}

} // namespace
