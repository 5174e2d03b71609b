// The observation file: every record written in its exact format, read back
// the same, and each kind of bad line refused with its line number.
#include "adjust/lsq_file.h"
#include "adjust/network.h"

#include <gtest/gtest.h>
#include <sstream>

namespace tramline::adjust {
namespace {

const char *kFile = "CP,1,1000.00000,2000.00000\n"
                    "AP,A2,1100.12346,2100.00000\n"
                    "DIST,1,A2,141.50000,0.00500\n"
                    "ANG,1,A2,1,180.000000,5.00000\n"
                    "AZ,1,A2,45.000278,1.00000\n"
                    "ZVAL,A2,12.34500\n";

TEST(LsqFile, WritesEveryRecordInItsFormatAndReadsItBack) {
    LsqData data;
    std::istringstream in(kFile);
    ASSERT_TRUE(readLsq(in, data).ok());
    EXPECT_EQ(lsqText(data), kFile);
    ASSERT_EQ(data.observations.size(), 3u);
    EXPECT_EQ(data.observations[1].from, "1");
    EXPECT_EQ(data.observations[1].at, "A2");
    EXPECT_EQ(data.observations[2].kind, ObservationKind::Azimuth);
    EXPECT_EQ(data.observations[2].line, 5);
}

TEST(LsqFile, ToleratesBlankLinesCrLfAndLowerCaseKinds) {
    LsqData data;
    std::istringstream in("\r\ncp,1,0,0\r\nap,2,10,0\r\n\r\ndist,1,2,10,0.01\r\n");
    ASSERT_TRUE(readLsq(in, data).ok());
    EXPECT_EQ(data.control.size(), 1u);
    EXPECT_EQ(data.adjust.size(), 1u);
    EXPECT_EQ(data.observations.at(0).line, 5);
}

TEST(LsqFile, RefusesBadLinesWithTheirNumber) {
    struct Case {
        const char *line;
        const char *says;
    } cases[] = {
        {"XX,1,2,3", "does not parse: XX,1,2,3"},
        {"CP,1,abc,0", "does not parse"},
        {"CP,1,0", "does not parse"},
        {"DIST,1,2,10", "does not parse"},
        {"ANG,1,2,3,90,5,7", "does not parse"},
        {"DIST,,2,10,0.01", "does not parse"},
        {"CP,1,nan,0", "does not parse"},
        {"DIST,1,2,10,0", "zero or negative standard error on line 2"},
        {"AZ,1,2,10,-1", "zero or negative standard error on line 2"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        LsqData data;
        std::istringstream in(std::string("CP,1,0,0\n") + c.line + "\n");
        const Status s = readLsq(in, data);
        EXPECT_FALSE(s.ok());
        EXPECT_EQ(s.lineNumber, 2u);
        EXPECT_NE(s.message.find(c.says), std::string::npos) << s.message;
    }
}

TEST(LsqNetwork, RefusesNetworksWithoutADatumOrWithUnknownPoints) {
    struct Case {
        const char *file;
        const char *says;
    } cases[] = {
        {"", "no least-squares data found"},
        {"AP,2,0,0\nAP,3,0,10\nDIST,2,3,10,0.01\n", "no control points"},
        {"CP,1,0,0\nAP,2,0,10\nAP,3,5,5\nDIST,1,2,10,0.01\n", "no observation determines 3"},
        {"CP,1,0,0\nAP,2,0,10\nDIST,1,9,10,0.01\n", "line 3 names unknown point 9"},
        {"CP,1,0,0\nAP,2,0,10\nANG,7,1,2,10,1\n", "names unknown point 7"},
        {"CP,1,0,0\nAP,1,0,10\n", "point 1 is listed twice (line 2)"},
        {"CP,1,0,0\nAP,2,0,10\nDIST,2,2,10,0.01\n", "joins point 2 to itself"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        LsqData data;
        std::istringstream in(c.file);
        ASSERT_TRUE(readLsq(in, data).ok());
        Network network;
        const Status s = buildNetwork(data, network);
        EXPECT_FALSE(s.ok());
        EXPECT_NE(s.message.find(c.says), std::string::npos) << s.message;
    }
}

} // namespace
} // namespace tramline::adjust
