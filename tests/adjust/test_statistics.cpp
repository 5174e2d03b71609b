// What the solve says about a network beyond its coordinates: redundancy,
// s0, ellipses, the suspects of data snooping, the chi-square table and the
// failures a user meets.
#include "adjust/lsq_report.h"
#include "adjust/lsq_run.h"
#include "adjust/statistics.h"
#include "network_test_support.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace tramline::adjust {
namespace {

LsqData parse(const std::string &text) {
    LsqData data;
    std::istringstream in(text);
    EXPECT_TRUE(readLsq(in, data).ok());
    return data;
}

LsqData quadrilateral() {
    LsqData data;
    EXPECT_TRUE(loadLsq(std::string(TRAMLINE_TEST_DATA) + "/adjust/quadrilateral.lsq", data).ok());
    return data;
}

TEST(NetworkStatistics, RedundancySumsToDegreesOfFreedom) {
    const LsqRun run = runLeastSquares(quadrilateral(), {});
    ASSERT_TRUE(run.status.ok());
    EXPECT_EQ(run.solution.degreesOfFreedom, 20 - 6);
    testing::expectRedundancyIdentities(run);
}

TEST(NetworkStatistics, SnoopingNamesTheBlunderedDistanceFirst) {
    const std::string name = "Ghilani21_1_DistanceAngle_fix";
    LsqData data;
    if (!testing::loadNetwork(name, data))
        GTEST_SKIP() << "no published networks at " << testing::networksDir();
    const LsqRun run = runLeastSquares(data, {});
    ASSERT_TRUE(run.status.ok());
    ASSERT_FALSE(run.statistics.suspects.empty());
    const std::string worst =
        suspectSentence(run.network, run.statistics, run.statistics.suspects.front());
    EXPECT_EQ(worst.rfind("Suspect: distance 3-4, residual -31.", 0), 0u) << worst;
    // Worst first.
    for (std::size_t k = 1; k < run.statistics.suspects.size(); ++k)
        EXPECT_GE(
            std::fabs(run.statistics
                          .observations[static_cast<std::size_t>(run.statistics.suspects[k - 1])]
                          .standardized),
            std::fabs(
                run.statistics.observations[static_cast<std::size_t>(run.statistics.suspects[k])]
                    .standardized));
}

TEST(NetworkStatistics, ABlunderAddedToACleanNetworkIsTheOnlySuspect) {
    LsqData data = quadrilateral();
    ASSERT_TRUE(runLeastSquares(data, {}).statistics.suspects.empty());
    data.observations[6].value += 0.08; // DIST C-D, 16 sigma
    const LsqRun run = runLeastSquares(data, {});
    ASSERT_TRUE(run.status.ok());
    ASSERT_FALSE(run.statistics.suspects.empty());
    EXPECT_EQ(run.statistics.suspects.front(), 6);
    // Residuals are adjusted minus observed: a distance observed too long is negative.
    EXPECT_LT(run.statistics.observations[6].residual, 0.0);
}

TEST(NetworkStatistics, EllipseAxesAndAzimuth) {
    struct Case {
        double qnn, qee, qne, major, minor, azimuth;
    } cases[] = {
        {4, 1, 0, 2, 1, 0},                              // long north-south
        {1, 4, 0, 2, 1, 90},                             // long east-west
        {2.5, 2.5, 1.5, 2, 1, 45},                       // north-east
        {2.5, 2.5, -1.5, 2, 1, 135}, {1, 1, 0, 1, 1, 0}, // a circle
    };
    for (const auto &c : cases) {
        const Ellipse e = ellipseOf(c.qnn, c.qee, c.qne);
        EXPECT_NEAR(e.semiMajor, c.major, 1e-12);
        EXPECT_NEAR(e.semiMinor, c.minor, 1e-12);
        EXPECT_NEAR(e.azimuth, c.azimuth, 1e-9);
    }
}

TEST(LeastSquaresReport, ChiSquareTableKeepsItsOwnEntries) {
    struct Case {
        int r;
        bool present;
        double lower, upper;
    } cases[] = {{0, false, 0, 0},        {1, true, 0.0039, 3.84},  {2, true, 0.1026, 5.99},
                 {15, true, 7.26, 25},    {16, true, 7.56, 26.3},   {20, true, 10.85, 31.41},
                 {29, true, 17.6, 41.42}, {30, true, 18.45, 43.77}, {31, false, 0, 0},
                 {-3, false, 0, 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.r);
        const auto b = chiSquareBounds(c.r);
        ASSERT_EQ(b.has_value(), c.present);
        if (b) {
            EXPECT_EQ(b->first, c.lower);
            EXPECT_EQ(b->second, c.upper);
        }
    }
}

TEST(LeastSquaresReport, MatchesTheGoldenListing) {
    const LsqRun run = runLeastSquares(quadrilateral(), {});
    ASSERT_TRUE(run.status.ok());
    std::ifstream in(std::string(TRAMLINE_TEST_DATA) + "/adjust/quadrilateral.least-squares.txt");
    std::stringstream golden;
    golden << in.rdbuf();
    EXPECT_EQ(run.leastSquares, golden.str());
}

TEST(LeastSquaresReport, NoChiSquareLineWithoutRedundancy) {
    // Two distances to one point from two control points: r = 0.
    const LsqRun run = runLeastSquares(
        parse("CP,1,0,0\nCP,2,0,100\nAP,3,50,50\nDIST,1,3,70.71068,0.01\nDIST,2,3,70.71068,0.01\n"),
        {});
    ASSERT_TRUE(run.status.ok()) << run.status.message;
    EXPECT_EQ(run.solution.degreesOfFreedom, 0);
    EXPECT_EQ(run.leastSquares.find("Chi-Square"), std::string::npos);
    EXPECT_NE(run.leastSquares.find("Reference Standard Deviation: 0.000"), std::string::npos);
    EXPECT_NEAR(run.solution.north[2], 50.0, 1e-4);
}

TEST(LeastSquaresSolve, FailuresSayWhatIsWrong) {
    struct Case {
        const char *file;
        int maxIterations;
        const char *says;
    } cases[] = {
        // One distance cannot place point 2: a datum defect, named.
        {"CP,1,0,0\nAP,2,0,10\nDIST,1,2,10,0.01\n", 10,
         "Error: datum defect: the observations do not determine 2"},
        // An azimuth between control points alone leaves 3 free.
        {"CP,1,0,0\nCP,2,0,10\nAP,3,5,5\nAZ,1,2,90,1\nDIST,1,3,7,0.01\n", 10, "do not determine 3"},
        // Far approximations need more iterations than allowed.
        {"CP,1,0,0\nCP,2,0,100\nAP,3,80,20\nDIST,1,3,70.71068,0.01\nDIST,2,3,70.71068,0.01\n", 2,
         "Least Squares method failed to converge"},
        {"CP,1,0,0\nAP,2,0,0\nDIST,1,2,10,0.01\nAZ,1,2,10,1\n", 10, "same place"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        Network network;
        ASSERT_TRUE(buildNetwork(parse(c.file), network).ok());
        Solution s;
        SolveOptions options;
        options.maxIterations = c.maxIterations;
        const Status st = solveNetwork(network, s, options);
        EXPECT_FALSE(st.ok());
        EXPECT_NE(st.message.find(c.says), std::string::npos) << st.message;
        EXPECT_EQ(st.message.find("nan"), std::string::npos);
    }
}

TEST(LeastSquaresSolve, ErrorFreeObservationsGiveTheTrueCoordinatesBack) {
    // Observations computed from the adjusted quadrilateral itself: the solve
    // must return those coordinates from approximations a metre off.
    const LsqRun first = runLeastSquares(quadrilateral(), {});
    ASSERT_TRUE(first.status.ok());
    LsqData exact = quadrilateral();
    const auto &s = first.solution;
    for (std::size_t i = 0; i < exact.observations.size(); ++i) {
        auto &o = exact.observations[i];
        const double v = s.residual[i];
        o.value += o.kind == ObservationKind::Distance ? v : v * 180.0 / 3.14159265358979323846;
    }
    for (auto &p : exact.adjust) {
        p.north += 1.0;
        p.east -= 1.0;
    }
    const LsqRun again = runLeastSquares(exact, {});
    ASSERT_TRUE(again.status.ok());
    for (std::size_t p = 0; p < s.north.size(); ++p) {
        EXPECT_NEAR(again.solution.north[p], s.north[p], 1e-6);
        EXPECT_NEAR(again.solution.east[p], s.east[p], 1e-6);
    }
    EXPECT_LT(again.solution.s0, 0.01);
}

} // namespace
} // namespace tramline::adjust
