#include "base/angles.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tramline;

namespace {

struct DmsCase {
    double dms;
    double degrees;
};

// Packed values and their decimal degrees, including the carries that
// floating point makes awkward (10.6000 is 60 minutes).
TEST(Angles, UnpackDms) {
    const DmsCase cases[] = {
        {0.0, 0.0},
        {45.3000, 45.5},
        {45.3015, 45.0 + 30.0 / 60 + 15.0 / 3600},
        {359.5959, 359.0 + 59.0 / 60 + 59.0 / 3600},
        {10.6000, 11.0},            // 60 minutes read as a whole degree
        {10.0060, 10.0 + 1.0 / 60}, // 60 seconds read as a minute
        {-10.3000, -10.5},
        {-0.3000, -0.5}, // the sign of a value under one degree
        {90.0, 90.0},
        {12.34565, 12.0 + 34.0 / 60 + 56.5 / 3600}, // tenths of a second
    };
    for (const auto &c : cases)
        EXPECT_NEAR(unpackDms(c.dms), c.degrees, 1e-12) << c.dms;
}

TEST(Angles, PackIsTheInverseOfUnpack) {
    for (double d = -359.9; d < 360.0; d += 0.0137) {
        EXPECT_NEAR(unpackDms(packDms(d)), d, 1e-9) << d;
    }
}

TEST(Angles, ValidityTestLetsExactlySixtyPass) {
    struct Case {
        double dms;
        bool valid;
    };
    const Case cases[] = {
        {0.0, true},        {359.5959, true}, {360.0, true},     {-360.0, true},
        {10.6000, true},    {10.0060, true},  {10.6060, true}, // exactly 60 passes
        {10.6100, false},   {10.0061, false}, {10.9900, false},  {360.0001, false},
        {-360.0001, false}, {NAN, false},     {INFINITY, false}, {-45.3060, true},
        {-45.6100, false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(isValidDms(c.dms), c.valid) << c.dms;
}

TEST(Angles, FormatCarriesRoundedSeconds) {
    struct Case {
        double degrees;
        int decimals;
        const char *text;
    };
    const Case cases[] = {
        {45.5, 4, "45.3000"},
        {359.0 + 59.0 / 60 + 59.6 / 3600, 4,
         "360.0000"}, // 59.6 s rounds up through the minute and degree
        {10.0 + 14.0 / 60 + 59.9999 / 3600, 4, "10.1500"},
        {12.0 + 34.0 / 60 + 56.5 / 3600, 5, "12.34565"},
        {-10.5, 4, "-10.3000"},
        {0.0, 4, "0.0000"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(formatDms(c.degrees, c.decimals), c.text) << c.degrees;
}

TEST(Angles, GonsAndDegrees) {
    EXPECT_DOUBLE_EQ(degreesToGons(90.0), 100.0);
    EXPECT_DOUBLE_EQ(gonsToDegrees(100.0), 90.0);
    EXPECT_DOUBLE_EQ(degreesToGons(360.0), 400.0);
    EXPECT_NEAR(kSecondsPerRadian, degrees(1.0) * 3600.0, 0.01);
}

TEST(Angles, NormalizeDegrees) {
    EXPECT_DOUBLE_EQ(normalizeDegrees(-0.5), 359.5);
    EXPECT_DOUBLE_EQ(normalizeDegrees(360.0), 0.0);
    EXPECT_DOUBLE_EQ(normalizeDegrees(725.0), 5.0);
    EXPECT_GE(normalizeDegrees(-1e-18), 0.0);
    EXPECT_LT(normalizeDegrees(-1e-18), 360.0);
}

} // namespace

// Fuzzing found huge values overflowing the integer arithmetic.
TEST(Angles, HugeValuesDoNotOverflow) {
    for (double v : {8.92e23, -1e300, 1e8, double(INFINITY), double(NAN)}) {
        EXPECT_FALSE(isValidDms(v));
        (void)unpackDms(v);
        (void)packDms(v);
        (void)formatDms(v);
    }
}
