#include "base/format.h"
#include "base/units.h"
#include "base/unset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

using namespace tramline;

TEST(Format, LongOutputIsWhole) {
    const std::string big(1000, 'x');
    EXPECT_EQ(format("<%s>", big.c_str()).size(), 1002u);
    EXPECT_EQ(format("SD%.4f", 12.34567), "SD12.3457");
    std::string s = "a";
    appendFormat(s, "%d,%s", 5, "b");
    EXPECT_EQ(s, "a5,b");
}

// appendFixed writes most values through integers; printf is the judge,
// above all next to rounding ties, where a scaled value can round the
// other way than the exact one.
TEST(Format, AppendFixedWritesWhatPrintfWrites) {
    auto printf = [](double v, int decimals, int width) {
        char buffer[512];
        std::snprintf(buffer, sizeof buffer, "%*.*f", width, decimals, v);
        return std::string(buffer);
    };
    auto fixed = [](double v, int decimals, int width) {
        std::string out = "<";
        appendFixed(out, v, decimals, width);
        return out.substr(1);
    };
    const double edges[] = {
        0.0,     -0.0,     1e-320,   -1e-320, 0.125, -0.125,  2.5,       0.5,
        1.00005, -1.00005, 12.34565, 1e15,    -1e15, 9.99995, 123.45675, 4503599627370495.5,
        1e300,   -0.00004, -0.00005};
    for (const double v : edges)
        for (int decimals = 0; decimals <= 10; ++decimals)
            EXPECT_EQ(fixed(v, decimals, 0), printf(v, decimals, 0)) << v << " " << decimals;
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int i = 0; i < 200000; ++i) {
        const int decimals = i % 10;
        const double v = unit(random) * std::pow(10.0, int(random() % 14) - 3);
        ASSERT_EQ(fixed(v, decimals, 12), printf(v, decimals, 12)) << v << " " << decimals;
        // The ties themselves and their neighbours.
        const double tie = (double(random() % 100000000) + 0.5) / std::pow(10.0, decimals);
        for (const double t : {tie, std::nextafter(tie, 0.0), std::nextafter(tie, 1e300), -tie})
            ASSERT_EQ(fixed(t, decimals, 0), printf(t, decimals, 0)) << t << " " << decimals;
    }
    EXPECT_EQ(fixed(NAN, 4, 0), printf(NAN, 4, 0));
    EXPECT_EQ(fixed(-INFINITY, 2, 6), printf(-INFINITY, 2, 6));
}

TEST(Format, ParseNumber) {
    struct Case {
        const char *text;
        bool ok;
        double value;
    };
    const Case cases[] = {
        {"12.5", true, 12.5}, {" -3 ", true, -3.0}, {"1e3", true, 1000.0}, {"", false, 0},
        {"12a", false, 0},    {"nan", false, 0},    {"inf", false, 0},     {"0x10", false, 0},
        {"1,5", false, 0},    {"  ", false, 0},
    };
    for (const auto &c : cases) {
        double v = -1;
        EXPECT_EQ(parseNumber(c.text, v), c.ok) << c.text;
        if (c.ok) {
            EXPECT_DOUBLE_EQ(v, c.value) << c.text;
        }
    }
}

TEST(Units, FactorsAndCodes) {
    EXPECT_DOUBLE_EQ(unitsPerMetre(LinearUnit::InternationalFeet), 1.0 / 0.3048);
    EXPECT_DOUBLE_EQ(unitsPerMetre(LinearUnit::UsSurveyFeet), 3937.0 / 1200.0);
    EXPECT_NEAR(convertLength(1000.0, LinearUnit::UsSurveyFeet, LinearUnit::InternationalFeet),
                1000.002, 1e-6);
    LinearUnit u;
    EXPECT_TRUE(linearUnitFromCode(2, u));
    EXPECT_EQ(u, LinearUnit::UsSurveyFeet);
    EXPECT_FALSE(linearUnitFromCode(3, u));
    EXPECT_TRUE(isUnset(kUnset));
    EXPECT_TRUE(isUnset(kUnsetPositive));
    EXPECT_FALSE(isUnset(-98765432.0));
}
