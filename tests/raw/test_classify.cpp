#include "raw/classify.h"

#include <gtest/gtest.h>

#include <vector>

using namespace tramline::raw;

namespace {

struct ClassifyCase {
    const char *line;
    int jobFlag;
    int kind;
    std::vector<std::string> fields;
};

// Every record form, the three height forms, both OC codes, bearings, and
// the ways a record fails the strict positional reading.
const ClassifyCase kCases[] = {
    {"--", 0, kEmptyNote, {}},
    {"--Crew: J. Marsh", 0, kNote, {"Crew: J. Marsh"}},
    {"---", 0, kNote, {"-"}},
    {"JB,NMJOB1,DT11-18-2026,TM08:15:00", 1, kJob, {"JOB1", "11-18-2026", "08:15:00"}},
    {"JB,NMJOB1,DT11-18-2026,TM08:15:00", 0, kUnrecognised, {}},
    {"JB,NMJOB1,TM08:15:00", 1, kUnrecognised, {}},
    {"LS,HI5.120", 0, kHeightsHi, {"5.120"}},
    {"LS,HI5.120,HR6.000", 0, kHeightsHiHr, {"5.120", "6.000"}},
    {"LS,HR6.000", 0, kHeightsHr, {"6.000"}},
    {"LS,HR6.000,HI5.120", 0, kHeightsHr, {"6.000"}}, // trailing fields are not read
    {"LS,XX1", 0, kUnrecognised, {}},
    {"OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD",
     0,
     kOccupy,
     {"1", "5000.0000", "5000.0000", "100.0000", "IRON ROD"}},
    {"OC,PN1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD",
     0,
     kOccupy,
     {"1", "5000.0000", "5000.0000", "100.0000", "IRON ROD"}},
    {"OC,OP2,N ,E ,EL,--", 0, kOccupy, {"2", "", "", "", ""}},
    {"OC,OP1,E 5000.0000,N 5000.0000,EL100.0000,--", 0, kUnrecognised, {}}, // order matters
    {"BK,OP1,BP2,BS45.3000,BC0.0000", 0, kBacksight, {"1", "2", "45.3000", "0.0000"}},
    {"BK,OP1,BP,BS45.3000", 0, kUnrecognised, {}},
    {"SP,PN7,N 1.0,E 2.0,EL3.0,--MON, BRASS",
     0,
     kStorePoint,
     {"7", "1.0", "2.0", "3.0", "MON, BRASS"}},
    {"SP,PN7,N 1.0,E 2.0,EL3.0", 0, kUnrecognised, {}},
    {"SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--EP",
     0,
     kObservation,
     {"SS", "1", "2", "90.0000", "90.0000", "100.000", "EP"}},
    {"CL+AB,OP1,FP2,AR90.0000,VA0.0000,HD100.000,--",
     0,
     kObservation,
     {"CL+AB", "1", "2", "90.0000", "0.0000", "100.000", ""}},
    {"TR,OP1,FP2,BRN45.3000E,ZE90.0000,SD100.000,--",
     0,
     kObservation,
     {"TR", "1", "2", "N45.3000E", "90.0000", "100.000", ""}},
    {"FD,OP1,FP2,AR90.0000,CE1.250,SD100.000,--a,b,c",
     0,
     kObservation,
     {"FD", "1", "2", "90.0000", "1.250", "100.000", "a,b,c"}},
    {"SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000", 0, kUnrecognised, {}}, // no trailing note
    {"SS,FP2,OP1,AR90.0000,ZE90.0000,SD100.000,--", 0, kUnrecognised, {}},
    {"SS,OP1,FP2,XX90.0000,ZE90.0000,SD100.000,--", 0, kUnrecognised, {}},
    {"XX,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--", 0, kUnrecognised, {}},
    {"BP,PN1,LA45.1,LN-93.2,EL250.0,AG1,PA2,AT3,--BASE",
     0,
     kBasePointNote,
     {"1", "45.1", "-93.2", "250.0", "1", "2", "3", "BASE"}},
    {"BP,PN1,LA45.1,LN-93.2,EL250.0,AG1,PA2,AT3,SR4",
     0,
     kBasePointSr,
     {"1", "45.1", "-93.2", "250.0", "1", "2", "3", "4"}},
    {"BP,PN1,LA45.1,LN-93.2,EL250.0,--BASE", 0, kUnrecognised, {}},
    {"GPS,PN9,LA44.123456789,LN-93.123456789,EL250.1234,--CP",
     0,
     kGps,
     {"9", "44.123456789", "-93.123456789", "250.1234", "CP"}},
    {"G0,00:00:00 02-01-2026 Vector", 0, kGps0, {"00:00:00 02-01-2026 Vector"}},
    {"G1,BP1,PN2,DX1.0,DY2.0,DZ3.0", 0, kGps1, {"1", "2", "1.0", "2.0", "3.0"}},
    {"G2,VX1e-6,VY2e-6,VZ3e-6", 0, kGps2, {"1e-6", "2e-6", "3e-6"}},
    {"G3,XY1,XZ2,YZ3", 0, kGps3, {"1", "2", "3"}},
    {"G3,XY1,YZ3", 0, kUnrecognised, {}},
    {"MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0", 0, kMode, {"0", "2", "1.00000000", "0", "0", "0"}},
    {"MO,AD0,UN2", 0, kUnrecognised, {}},
    {"", 0, kUnrecognised, {}},
    {"NAME,Loop A", 0, kUnrecognised, {}},
    {"\xff\xfe\x01garbage", 0, kUnrecognised, {}},
};

TEST(ClassifyRawLine, EveryForm) {
    RawFields fields;
    for (const auto &c : kCases) {
        const int kind = ClassifyRawLine(c.line, c.jobFlag, fields);
        EXPECT_EQ(kind, c.kind) << c.line;
        std::vector<std::string> got(fields.begin(),
                                     fields.begin() + static_cast<long>(c.fields.size()));
        EXPECT_EQ(got, c.fields) << c.line;
        for (size_t i = c.fields.size(); i < fields.size(); ++i)
            EXPECT_TRUE(fields[i].empty()) << c.line << " output " << i;
    }
}

TEST(ClassifyRawLine, OutputsFromAPreviousLineAreCleared) {
    RawFields fields;
    ClassifyRawLine("SP,PN7,N 1.0,E 2.0,EL3.0,--X", 0, fields);
    EXPECT_EQ(ClassifyRawLine("LS,HR1.5", 0, fields), kHeightsHr);
    EXPECT_EQ(fields[1], "");
}

} // namespace
