#include "base/angles.h"
#include "reduce/traverse_adjustment.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tramline;
using namespace tramline::reduce;

namespace {

struct Course {
    const char *to;
    double azimuth; ///< decimal degrees
    double length;
};

std::vector<TraverseSide> sidesFrom(const char *start, const std::vector<Course> &courses) {
    std::vector<TraverseSide> sides;
    std::string from = start;
    for (const auto &c : courses) {
        TraverseSide s;
        s.from = from;
        s.to = c.to;
        s.horizontal = s.slope = c.length;
        s.dNorth = c.length * std::cos(radians(c.azimuth));
        s.dEast = c.length * std::sin(radians(c.azimuth));
        sides.push_back(s);
        from = c.to;
    }
    return sides;
}

TraversePoint endOf(const TraversePoint &start, const std::vector<TraverseSide> &sides) {
    TraversePoint p = start;
    for (const auto &s : sides) {
        p.north += s.dNorth;
        p.east += s.dEast;
        p.elevation += s.dElevation;
    }
    return p;
}

// Course notes' transit-rule example of a transit-tape survey (six courses
// by azimuth, metres): closures 16.81 and 18.08, the latitude factor
// 0.00579 and the first latitude correction 2.86 are published.
TEST(TraverseAdjustment, PublishedTransitExample) {
    auto dms = [](int d, int m) { return d + m / 60.0; };
    const TraversePoint a{"A", 1000.0, 1000.0, 0.0, false, ""};
    const auto sides = sidesFrom("A", {{"B", dms(5, 30), 495.85},
                                       {"C", dms(46, 2), 850.62},
                                       {"D", dms(112, 22), 855.45},
                                       {"E", dms(167, 35), 1020.87},
                                       {"F", dms(263, 44), 1117.26},
                                       {"A", dms(304, 51), 660.08}});
    const Closure closure = computeClosure(endOf(a, sides), a, sides);
    EXPECT_NEAR(closure.north, 16.81, 0.01);
    EXPECT_NEAR(closure.east, 18.08, 0.01);
    const LinearAdjustment adj = adjustTraverse(a, sides, closure, LinearRule::Transit, false);
    ASSERT_TRUE(adj.ok);
    EXPECT_NEAR(adj.points[0].northCorrection, 2.86, 0.005);
    EXPECT_NEAR(adj.points[0].northCorrection / sides[0].dNorth, 0.00579, 0.000005);
    EXPECT_NEAR(adj.points.back().point.north, 1000.0, 1e-9);
    EXPECT_NEAR(adj.points.back().point.east, 1000.0, 1e-9);
    EXPECT_TRUE(adj.warning.empty()); // no point moves further than the closure itself
}

// Every rule puts the end on the closing point; Crandall changes only the
// lengths of the sides, never their directions.
TEST(TraverseAdjustment, RulesCloseAndCrandallKeepsDirections) {
    const TraversePoint start{"1", 5000.0, 5000.0, 100.0, true, ""};
    auto sides = sidesFrom("1", {{"2", 24.62, 453.3},
                                 {"3", 62.37, 523.2},
                                 {"4", 127.12, 487.6},
                                 {"5", 197.44, 460.1},
                                 {"6", 251.95, 494.8},
                                 {"1", 297.01, 490.6}});
    sides[2].dNorth += 0.04; // a small error in one side
    sides[4].dEast -= 0.03;
    for (auto &s : sides) {
        s.hasElevation = true;
        s.dElevation = 0.01;
    }
    const Closure closure = computeClosure(endOf(start, sides), start, sides);
    for (LinearRule rule : {LinearRule::Transit, LinearRule::Compass, LinearRule::Crandall}) {
        const LinearAdjustment adj = adjustTraverse(start, sides, closure, rule, true);
        ASSERT_TRUE(adj.ok);
        EXPECT_NEAR(adj.points.back().point.north, start.north, 1e-9);
        EXPECT_NEAR(adj.points.back().point.east, start.east, 1e-9);
        EXPECT_NEAR(adj.points.back().point.elevation, start.elevation,
                    1e-9); // vertical error spread
        EXPECT_TRUE(adj.warning.empty());
        if (rule == LinearRule::Crandall)
            for (size_t i = 0; i < sides.size(); ++i) {
                const double before = std::atan2(sides[i].dEast, sides[i].dNorth);
                const double after = std::atan2(sides[i].dEast - adj.points[i].eastCorrection,
                                                sides[i].dNorth - adj.points[i].northCorrection);
                EXPECT_NEAR(after, before, 1e-12) << i;
            }
    }
}

TEST(TraverseAdjustment, ExactClosureAndTooFewSides) {
    const TraversePoint start{"1", 0, 0, 0, false, ""};
    const auto sides = sidesFrom("1", {{"2", 90.0, 100.0}, {"1", 270.0, 100.0}});
    const Closure c = computeClosure(endOf(start, sides), start, sides);
    EXPECT_TRUE(c.exact || c.horizontal < 1e-12);
    Closure exact = c;
    exact.north = exact.east = exact.horizontal = 0.0;
    exact.exact = true;
    EXPECT_EQ(precisionLine(exact), "Closure Precision: 1 in 9999999");
    Closure rough = c;
    rough.exact = false;
    rough.precision = 12345.67;
    EXPECT_EQ(precisionLine(rough), "Closure Precision: 1 in 12345.7");
    const std::vector<TraverseSide> one(sides.begin(), sides.begin() + 1);
    const LinearAdjustment adj = adjustTraverse(start, one, c, LinearRule::Compass, false);
    EXPECT_FALSE(adj.ok);
    EXPECT_EQ(adj.error, "Error: only 1 traverse sides found.");
}

TEST(TraverseAdjustment, AngularErrorFoldsIntoHalfCircle) {
    struct Case {
        double reference, measured, error;
    };
    const Case cases[] = {
        {359.9990, 0.0, -0.0010}, {0.0, 359.9990, 0.0010}, {10.0, 9.5, 0.5},
        {180.0, 0.0, 180.0},      {90.0, 270.5, 179.5},
    };
    for (const auto &c : cases)
        EXPECT_NEAR(angularError(c.reference, c.measured), c.error, 1e-9)
            << c.reference << " " << c.measured;
    // A huge difference comes back at once (a loop would take for ever).
    EXPECT_LE(std::fabs(angularError(1e300, 0.0)), 180.0);
    EXPECT_NEAR(angularError(3600.0 * 1e6 + 10.0, 0.0), 10.0, 1e-3);
}

} // namespace
