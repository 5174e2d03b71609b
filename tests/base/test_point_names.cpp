#include "base/point_names.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace tramline;

TEST(PointNames, Order) {
    struct Case {
        const char *a, *b;
        int sign;
    };
    const Case cases[] = {
        {"2", "10", -1},
        {"A2", "A10", -1},
        {"a2", "A2", 0},
        {"10", "9", 1},
        {"B1", "A9", 1},
        {"1A", "1B", -1},
        {"", "1", -1},
        {"", "", 0},
        {"100", "100", 0},
        {"CP", "cp", 0},
        {"12345678901234567890", "9", 1},
        // Plain numbers: by value, whatever their length.
        {"99", "100", -1},
        {"0", "10", -1},
        {"1000000", "999999", 1},
        {"123456789012345678", "123456789012345677", 1},
        // Leading zeros: equal values move on, the whole names decide.
        {"A01", "A1", -1},
        {"007", "7", -1},
        {"10", "010", -1},
        // A '.' further on makes the numbers decimal.
        {"1.5", "1.10", 1},
        {"1.10", "1.9", -1},
        {"2.0", "2A", -1},
        {"2", "2.0", -1},
        // '_' (from '-' and ',') sorts before letters, as lower case does.
        {"A_1", "AB", -1},
        {"A_1", "A1", 1},
        {"A[", "AB", -1},
        // Number against letter: the characters decide.
        {"A1", "AB", -1},
        {"1", "A", -1},
        {"Z9", "10", 1},
    };
    for (const auto &c : cases) {
        const int r = comparePointNames(c.a, c.b);
        EXPECT_EQ((r > 0) - (r < 0), c.sign) << c.a << " vs " << c.b;
        const int back = comparePointNames(c.b, c.a);
        EXPECT_EQ((back > 0) - (back < 0), -c.sign) << c.b << " vs " << c.a;
    }
    std::vector<std::string> names = {"10", "A10", "2", "A2", "1", "B"};
    std::sort(names.begin(), names.end(), [](const std::string &x, const std::string &y) {
        return comparePointNames(x, y) < 0;
    });
    EXPECT_EQ(names, (std::vector<std::string>{"1", "2", "10", "A2", "A10", "B"}));
}

TEST(PointNames, Lists) {
    PointList list;
    ASSERT_TRUE(list.parse("1-5, 7,A10,B9-B1"));
    for (const char *in : {"1", "3", "5", "7", "a10", "B1", "B5", "B9"})
        EXPECT_TRUE(list.contains(in)) << in;
    for (const char *out : {"6", "8", "A1", "B10", "10", ""})
        EXPECT_FALSE(list.contains(out)) << out;
    EXPECT_FALSE(list.parse("1,,2"));
    EXPECT_FALSE(list.parse("1-"));
    EXPECT_FALSE(list.parse(""));
}
