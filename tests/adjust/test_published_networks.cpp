// Every published textbook network beside the clone, solved and compared
// with its published coordinates (0.1 mm) and standard errors (0.01 mm).
#include "adjust/network.h"
#include "adjust/solve.h"
#include "network_test_support.h"

#include <gtest/gtest.h>

namespace tramline::adjust {
namespace {

using testing::expectedAnswer;
using testing::publishedNetworks;

TEST(PublishedNetworks, ReproduceCoordinatesAndStandardErrors) {
    const auto names = publishedNetworks();
    if (names.empty())
        GTEST_SKIP() << "no published networks at " << testing::networksDir();
    for (const auto &name : names) {
        SCOPED_TRACE(name);
        LsqData data;
        ASSERT_TRUE(testing::loadNetwork(name, data));
        Network network;
        ASSERT_TRUE(buildNetwork(data, network).ok());
        Solution s;
        const Status st = solveNetwork(network, s);
        ASSERT_TRUE(st.ok()) << st.message;
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
    }
}

} // namespace
} // namespace tramline::adjust
