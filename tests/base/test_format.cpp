#include "base/format.h"
#include "base/units.h"
#include "base/unset.h"

#include <gtest/gtest.h>

using namespace tramline;

TEST(Format, LongOutputIsWhole) {
    const std::string big(1000, 'x');
    EXPECT_EQ(format("<%s>", big.c_str()).size(), 1002u);
    EXPECT_EQ(format("SD%.4f", 12.34567), "SD12.3457");
    std::string s = "a";
    appendFormat(s, "%d,%s", 5, "b");
    EXPECT_EQ(s, "a5,b");
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
