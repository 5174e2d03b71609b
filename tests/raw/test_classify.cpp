#include "raw/classify.h"

#include <gtest/gtest.h>

#include <vector>

using namespace tramline::raw;

namespace {

constexpr auto U = JobRecords::Unrecognised;
constexpr auto R = JobRecords::Recognised;

struct ClassifyCase {
    const char *line;
    JobRecords jobRecords;
    int kind;
    std::vector<std::string> fields;
};

// Every record form, the three height forms, both OC codes, bearings, and
// the ways a record fails the strict positional reading.
const ClassifyCase kCases[] = {
    {"--", U, kEmptyNote, {}},
    {"--Crew: J. Marsh", U, kNote, {"Crew: J. Marsh"}},
    {"---", U, kNote, {"-"}},
    {"JB,NMJOB1,DT11-18-2026,TM08:15:00", R, kJob, {"JOB1", "11-18-2026", "08:15:00"}},
    {"JB,NMJOB1,DT11-18-2026,TM08:15:00", U, kUnrecognised, {}},
    {"JB,NMJOB1,TM08:15:00", R, kUnrecognised, {}},
    {"LS,HI5.120", U, kHeightsHi, {"5.120"}},
    {"LS,HI5.120,HR6.000", U, kHeightsHiHr, {"5.120", "6.000"}},
    {"LS,HR6.000", U, kHeightsHr, {"6.000"}},
    {"LS,HR6.000,HI5.120", U, kHeightsHr, {"6.000"}}, // trailing fields are not read
    {"LS,XX1", U, kUnrecognised, {}},
    {"OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD",
     U,
     kOccupy,
     {"1", "5000.0000", "5000.0000", "100.0000", "IRON ROD"}},
    {"OC,PN1,N 5000.0000,E 5000.0000,EL100.0000,--IRON ROD",
     U,
     kOccupy,
     {"1", "5000.0000", "5000.0000", "100.0000", "IRON ROD"}},
    {"OC,OP2,N ,E ,EL,--", U, kOccupy, {"2", "", "", "", ""}},
    {"OC,OP1,E 5000.0000,N 5000.0000,EL100.0000,--", U, kUnrecognised, {}}, // order matters
    {"BK,OP1,BP2,BS45.3000,BC0.0000", U, kBacksight, {"1", "2", "45.3000", "0.0000"}},
    {"BK,OP1,BP,BS45.3000", U, kUnrecognised, {}},
    {"SP,PN7,N 1.0,E 2.0,EL3.0,--MON, BRASS",
     U,
     kStorePoint,
     {"7", "1.0", "2.0", "3.0", "MON, BRASS"}},
    {"SP,PN7,N 1.0,E 2.0,EL3.0", U, kUnrecognised, {}},
    {"SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--EP",
     U,
     kObservation,
     {"SS", "1", "2", "90.0000", "90.0000", "100.000", "EP"}},
    {"CL+AB,OP1,FP2,AR90.0000,VA0.0000,HD100.000,--",
     U,
     kObservation,
     {"CL+AB", "1", "2", "90.0000", "0.0000", "100.000", ""}},
    {"TR,OP1,FP2,BRN45.3000E,ZE90.0000,SD100.000,--",
     U,
     kObservation,
     {"TR", "1", "2", "N45.3000E", "90.0000", "100.000", ""}},
    {"FD,OP1,FP2,AR90.0000,CE1.250,SD100.000,--a,b,c",
     U,
     kObservation,
     {"FD", "1", "2", "90.0000", "1.250", "100.000", "a,b,c"}},
    {"SS,OP1,FP2,AR90.0000,ZE90.0000,SD100.000", U, kUnrecognised, {}}, // no trailing note
    {"SS,FP2,OP1,AR90.0000,ZE90.0000,SD100.000,--", U, kUnrecognised, {}},
    {"SS,OP1,FP2,XX90.0000,ZE90.0000,SD100.000,--", U, kUnrecognised, {}},
    {"XX,OP1,FP2,AR90.0000,ZE90.0000,SD100.000,--", U, kUnrecognised, {}},
    {"BP,PN1,LA45.1,LN-93.2,EL250.0,AG1,PA2,AT3,--BASE",
     U,
     kBasePointNote,
     {"1", "45.1", "-93.2", "250.0", "1", "2", "3", "BASE"}},
    {"BP,PN1,LA45.1,LN-93.2,EL250.0,AG1,PA2,AT3,SR4",
     U,
     kBasePointSr,
     {"1", "45.1", "-93.2", "250.0", "1", "2", "3", "4"}},
    {"BP,PN1,LA45.1,LN-93.2,EL250.0,--BASE", U, kUnrecognised, {}},
    {"GPS,PN9,LA44.123456789,LN-93.123456789,EL250.1234,--CP",
     U,
     kGps,
     {"9", "44.123456789", "-93.123456789", "250.1234", "CP"}},
    {"G0,00:00:00 02-01-2026 Vector", U, kGps0, {"00:00:00 02-01-2026 Vector"}},
    {"G1,BP1,PN2,DX1.0,DY2.0,DZ3.0", U, kGps1, {"1", "2", "1.0", "2.0", "3.0"}},
    {"G2,VX1e-6,VY2e-6,VZ3e-6", U, kGps2, {"1e-6", "2e-6", "3e-6"}},
    {"G3,XY1,XZ2,YZ3", U, kGps3, {"1", "2", "3"}},
    {"G3,XY1,YZ3", U, kUnrecognised, {}},
    {"MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0", U, kMode, {"0", "2", "1.00000000", "0", "0", "0"}},
    {"MO,AD0,UN2", U, kUnrecognised, {}},
    {"", U, kUnrecognised, {}},
    {"NAME,Loop A", U, kUnrecognised, {}},
    {"\xff\xfe\x01garbage", U, kUnrecognised, {}},
};

TEST(ClassifyRawLine, EveryForm) {
    RawFields fields;
    for (const auto &c : kCases) {
        const int kind = ClassifyRawLine(c.line, c.jobRecords, fields);
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
    ClassifyRawLine("SP,PN7,N 1.0,E 2.0,EL3.0,--X", JobRecords::Unrecognised, fields);
    EXPECT_EQ(ClassifyRawLine("LS,HR1.5", JobRecords::Unrecognised, fields), kHeightsHr);
    EXPECT_EQ(fields[1], "");
}

} // namespace
