#include "base/angles.h"
#include "base/format.h"
#include "reduce/direct_reverse.h"

#include "../support/raw_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

using namespace tramline;
using namespace tramline::reduce;

namespace {

using tramline::test::readRawText;

// A set in ddd.mmss with six decimals (tenths of a second and below).
std::string faceSet(double bd, double fd, double fr, double br, double zd, double zr, double dd,
                    double dr, const char *fs = "3") {
    auto a = [](double deg) { return format("%.6f", packDms(deg, 4)); };
    std::string out;
    out += format("BD,OP2,FP1,AR%s,ZE%s,SD100.000,--\n", a(bd).c_str(), a(90.0).c_str());
    out += format("FD,OP2,FP%s,AR%s,ZE%s,SD%.4f,--IP\n", fs, a(fd).c_str(), a(zd).c_str(), dd);
    out += format("FR,OP2,FP%s,AR%s,ZE%s,SD%.4f,--IP\n", fs, a(fr).c_str(), a(zr).c_str(), dr);
    out += format("BR,OP2,FP1,AR%s,ZE%s,SD100.000,--\n", a(br).c_str(), a(270.0).c_str());
    return out;
}

TEST(DirectReverse, ReducesOneSetToTheMeanShot) {
    // Collimation error +4" and index error +4": the means cancel both.
    const double c = 4.0 / 3600.0;
    const auto file = readRawText(
        "--start\n" +
        faceSet(10.0 + c, 100.0 + c, 280.0 - c, 190.0 - c, 88.0 + c, 272.0 + c, 150.002, 149.998) +
        "--end\n");
    const DirectReverseResult r = reduceDirectReverse(file, "job.rw5");
    ASSERT_TRUE(r.ok) << r.error;
    ASSERT_EQ(r.sets.size(), 1u);
    const ReducedSet &s = r.sets[0];
    EXPECT_NEAR(s.horizontalAngle, 90.0, 1e-6);
    EXPECT_NEAR(s.turnedDifference, 0.0, 1e-3);
    EXPECT_NEAR(s.backsightDifference, 8.0, 1e-3); // twice the collimation error
    EXPECT_NEAR(s.vertical, 88.0, 1e-6);           // index error cancels
    EXPECT_NEAR(s.verticalDifference, 8.0, 1e-3);
    EXPECT_NEAR(s.distance, 150.0, 1e-9);
    EXPECT_TRUE(r.warnings.empty());
    // The four records became one shot, in the set's place.
    ASSERT_EQ(r.reduced.nodes.size(), 3u);
    const auto &shot = r.reduced.nodes[1].observation;
    EXPECT_EQ(shot.type, "SS");
    EXPECT_EQ(shot.occupied, "2");
    EXPECT_EQ(shot.foresight, "3");
    EXPECT_EQ(shot.horizontalKind, raw::HorizontalKind::AR);
    EXPECT_NEAR(unpackDms(shot.horizontal), 90.0, 1e-9);
    EXPECT_NEAR(unpackDms(shot.verticalAngle), 2.0, 1e-9);
    EXPECT_EQ(shot.description, "IP");
    EXPECT_NE(r.report.find("Reduced records for 1 direct-reverse sets."), std::string::npos);
    EXPECT_EQ(r.report.rfind("\nRaw File: job.rw5\n\nReduced Sets\n", 0), 0u);
}

// The circle's wrap at north must not put a mean at south or make two
// nearly equal angles look 360 degrees apart.
TEST(DirectReverse, WrapAroundNorth) {
    const double tiny = 0.0001;
    struct Case {
        double bd, fd, fr, br;
        double angle, turnedSeconds;
    };
    const Case cases[] = {
        {360.0 - tiny, 90.0, 270.0, 180.0 + tiny, 90.0, 0.72}, // backsight mean at north
        {0.0, tiny, 180.0 - tiny, 180.0, 0.0, 0.72},           // turned 0.0001 vs 359.9999
        {350.0, 10.0, 190.0, 170.0, 20.0, 0.0},
    };
    for (const auto &c : cases) {
        const DirectReverseResult r =
            reduceDirectReverse(readRawText(faceSet(c.bd, c.fd, c.fr, c.br, 90, 270, 10, 10)), "j");
        ASSERT_TRUE(r.ok);
        const double a = r.sets[0].horizontalAngle;
        EXPECT_NEAR(std::min(a, 360.0 - a), std::min(c.angle, 360.0 - c.angle), 2e-6) << c.bd;
        EXPECT_NEAR(r.sets[0].turnedDifference, c.turnedSeconds, 0.01) << c.bd;
    }
}

TEST(DirectReverse, Warnings) {
    DirectReverseTolerances tol; // 0.02, 15", 15"
    struct Case {
        std::string set;
        std::vector<std::string> warnings;
    };
    const double s = 1.0 / 3600.0;
    const Case cases[] = {
        {faceSet(0, 90, 270, 180, 90, 270, 10.0, 10.03),
         {"Warning: Pt 3 direct-reverse Foresight Distance more than 0.0200 different"}},
        {faceSet(0, 90, 270 + 20 * s, 180, 90, 270, 10, 10),
         {"Warning: Pt 3 direct-reverse horizontal turned angles more than 15.0 seconds different",
          "Warning: Pt 3 direct-reverse Foresight Hz angles more than 15.0 seconds different"}},
        {faceSet(0, 90, 270 + 20 * s, 180 + 20 * s, 90, 270, 10, 10),
         {"Warning: Pt 3 direct-reverse Backsight Hz angles more than 15.0 seconds different",
          "Warning: Pt 3 direct-reverse Foresight Hz angles more than 15.0 seconds different"}},
        {faceSet(0, 90, 270, 180, 90, 270 + 16 * s, 10, 10),
         {"Warning: Pt 3 direct-reverse vert angles more than 15.0 seconds different"}},
        {faceSet(0, 90, 270, 180, 90, 270 + 14 * s, 10, 10.019), {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(reduceDirectReverse(readRawText(c.set), "j", tol).warnings, c.warnings) << c.set;
}

TEST(DirectReverse, ZeroReverseDistanceKeepsTheDirectOne) {
    const auto r =
        reduceDirectReverse(readRawText(faceSet(0, 90, 270, 180, 90, 270, 12.345, 0.0)), "j");
    EXPECT_DOUBLE_EQ(r.sets[0].distance, 12.345);
}

TEST(DirectReverse, IncompleteSetsStop) {
    for (const char *text :
         {"BD,OP2,FP1,AR0,ZE90,SD1,--\nFD,OP2,FP3,AR90,ZE90,SD1,--\nFR,OP2,FP3,AR270,ZE270,SD1,--"
          "\n",
          "BD,OP2,FP1,AR0,ZE90,SD1,--\nFD,OP2,FP3,AR90,ZE90,SD1,--\nSS,OP2,FP9,AR1,ZE90,SD1,--\n"
          "FR,OP2,FP3,AR270,ZE270,SD1,--\nBR,OP2,FP1,AR180,ZE270,SD1,--\n",
          "BD,OP2,FP1,AR0,ZE90,SD1,--\nBD,OP2,FP1,AR0,ZE90,SD1,--\nFD,OP2,FP3,AR90,ZE90,SD1,--\n"
          "FR,OP2,FP3,AR270,ZE270,SD1,--\nBR,OP2,FP1,AR180,ZE270,SD1,--\n"}) {
        const auto r = reduceDirectReverse(readRawText(text), "j");
        EXPECT_FALSE(r.ok) << text;
        EXPECT_EQ(r.error, "Error: incomplete direct-reverse set");
    }
}

TEST(DirectReverse, TraversePointsAndMeansOfRepeatedSets) {
    const std::string text =
        faceSet(0, 90, 270, 180, 90, 270, 10, 10) +
        faceSet(0, 90 + 2.0 / 3600, 270 + 2.0 / 3600, 180, 90, 270, 10.01, 10.01) +
        "OC,OP3,N ,E ,EL,--\n";
    const auto r = reduceDirectReverse(readRawText(text), "j");
    ASSERT_EQ(r.sets.size(), 2u);
    EXPECT_EQ(r.reduced.nodes[0].observation.type, "TR"); // 3 is occupied later
    const auto means = r.report.substr(r.report.find("\nMeans\n"));
    // Two sets 2" apart: sample standard deviation 1.4".
    EXPECT_NE(means.find("  2         3            2      90.0001      1.4"), std::string::npos)
        << means;
    EXPECT_TRUE(hasDirectReverseSets(readRawText(text)));
    EXPECT_FALSE(hasDirectReverseSets(readRawText("SS,OP1,FP2,AR0,ZE90,SD1,--\n")));
}

} // namespace
