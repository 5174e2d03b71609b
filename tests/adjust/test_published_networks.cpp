// Every published textbook network beside the clone, solved once: its
// published coordinates (0.1 mm) and standard errors (0.01 mm), the
// redundancy numbers that share out its degrees of freedom, and the
// selected inverse against the dense N^-1 of the debug listing (a wrong
// recurrence sign, a permutation applied the wrong way round or an entry
// read from the wrong column shows there).
#include "adjust/lsq_run.h"
#include "network_test_support.h"

#include <cmath>
#include <gtest/gtest.h>

namespace tramline::adjust {
namespace {

using testing::expectedAnswer;
using testing::publishedNetworks;

TEST(PublishedNetworks, ReproduceTheAnswerAndItsStatistics) {
    const auto names = publishedNetworks();
    if (names.empty())
        GTEST_SKIP() << "no published networks at " << testing::networksDir();
    for (const auto &name : names) {
        SCOPED_TRACE(name);
        LsqData data;
        ASSERT_TRUE(testing::loadNetwork(name, data));
        LsqRunOptions options;
        options.debug = true;
        const LsqRun run = runLeastSquares(data, options);
        ASSERT_TRUE(run.status.ok()) << run.status.message;
        const Network &network = run.network;
        const Solution &s = run.solution;
        const auto expected = expectedAnswer(name);
        ASSERT_FALSE(expected.empty());
        for (const auto &[point, e] : expected) {
            SCOPED_TRACE(point);
            const int p = network.find(point);
            ASSERT_GE(p, 0);
            const auto i = static_cast<std::size_t>(p);
            EXPECT_NEAR(s.north[i], e.north, 1e-4);
            EXPECT_NEAR(s.east[i], e.east, 1e-4);
            EXPECT_NEAR(s.northStdErr(network, p), e.sNorth, 1e-5);
            EXPECT_NEAR(s.eastStdErr(network, p), e.sEast, 1e-5);
        }
        testing::expectRedundancyIdentities(run);

        // The debug listing prints the last dense N^-1; the cofactors must be its entries.
        const auto at = run.debug.rfind("\nN^-1 Matrix\n");
        ASSERT_NE(at, std::string::npos);
        std::istringstream rows(run.debug.substr(at + 13));
        for (int i = 0; i < network.unknowns; ++i)
            for (int j = 0; j < network.unknowns; ++j) {
                double dense = 0;
                rows >> dense;
                if (i / 2 == j / 2) { // the blocks of one point are always in the pattern
                    EXPECT_NEAR(s.cofactorAt(i, j), dense, 1e-8 + 1e-6 * std::fabs(dense));
                }
            }
    }
}

} // namespace
} // namespace tramline::adjust
