// The SDR adjustments a collector leaves in "--HZADJ:" and "--VERTADJ:"
// notes: read only when every number is there.
#include "reduce/point_computation.h"

#include <gtest/gtest.h>

using namespace tramline::reduce;

namespace {

TEST(SdrNotes, HorizontalAdjustmentNeedsSixNumbers) {
    struct Case {
        const char *note;
        bool read;
        double rotation, scale; ///< the fifth and sixth numbers when read
    };
    const Case cases[] = {
        {"HZADJ:100,200,1.5,-2.5,0.25,1.0001", true, 0.25, 1.0001},
        {"HZADJ:100,200,1.5,-2.5,0.25,1.0001,trailing", true, 0.25, 1.0001},
        {"HZADJ:100,200,1.5,-2.5,0.25", false, 0, 0},
        {"HZADJ:100,200,x,-2.5,0.25,1", false, 0, 0},
        {"VERTADJ:100,200,1.5,-2.5,0.25,1", false, 0, 0},
    };
    for (const auto &c : cases) {
        const auto adj = parseHorizontalAdjustment(c.note);
        ASSERT_EQ(adj.has_value(), c.read) << c.note;
        if (!adj)
            continue;
        EXPECT_DOUBLE_EQ(adj->originNorth, 100.0) << c.note;
        EXPECT_DOUBLE_EQ(adj->originEast, 200.0) << c.note;
        EXPECT_DOUBLE_EQ(adj->deltaNorth, 1.5) << c.note;
        EXPECT_DOUBLE_EQ(adj->deltaEast, -2.5) << c.note;
        EXPECT_DOUBLE_EQ(adj->rotation, c.rotation) << c.note;
        EXPECT_DOUBLE_EQ(adj->scale, c.scale) << c.note;
    }
}

TEST(SdrNotes, VerticalAdjustmentNeedsFiveNumbers) {
    const auto adj = parseVerticalAdjustment("VERTADJ:10,20,0.5,0.001,-0.002");
    ASSERT_TRUE(adj);
    EXPECT_DOUBLE_EQ(adj->heightConstant, 0.5);
    EXPECT_DOUBLE_EQ(adj->slopeNorth, 0.001);
    EXPECT_DOUBLE_EQ(adj->slopeEast, -0.002);
    EXPECT_FALSE(parseVerticalAdjustment("VERTADJ:10,20,0.5,0.001"));
    EXPECT_FALSE(parseVerticalAdjustment("HZADJ:10,20,0.5,0.001,-0.002"));
}

} // namespace
