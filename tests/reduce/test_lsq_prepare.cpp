// Prepare: a raw file's shots as least-squares observations with their
// standard errors from the error records (or the defaults).
#include "reduce/lsq_prepare.h"

#include "../support/raw_support.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace tramline;
using namespace tramline::reduce;

namespace {

TEST(LsqPrepare, StandardErrorModel) {
    const ObservationErrors defaults;
    struct Case {
        const char *what;
        double value, expected;
    } cases[] = {
        // sqrt(3^2 + 1.5^2 + 2^2 + 2^2) mm at 1 km with 2 ppm
        {"distance, metres", distanceStdErr(defaults, 1000.0, 1.0), 0.0043875},
        {"distance, US feet", distanceStdErr(defaults, 1000.0, 3.2808333333), 0.0129672},
        // two pointings of 2", two readings of 1"
        {"angle, no lengths", angleStdErr(defaults, 0, 0, 0, 1.0), 3.1623},
        // plus target centring over 100 m sights and instrument centring
        {"angle, 100 m sights", angleStdErr(defaults, 100, 100, 141.421356, 1.0), 7.3218},
        // the same geometry in feet gives the same seconds
        {"angle, feet", angleStdErr(defaults, 328.08333, 328.08333, 463.98, 3.2808333), 7.3218},
    };
    for (const auto &c : cases)
        EXPECT_NEAR(c.value, c.expected, 2e-4) << c.what;
}

TEST(LsqPrepare, ErrorRecordsSetTheStandardErrorsOfLaterShots) {
    raw::RawFile file = test::readRawText("MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                                          "SP,PN1,N 1000.0000,E 1000.0000,EL0.0000,--\n"
                                          "SP,PN2,N 1100.0000,E 1000.0000,EL0.0000,--\n"
                                          "OC,OP1,N 1000.0000,E 1000.0000,EL0.0000,--\n"
                                          "BK,OP1,BP2,BS0.0000,BC0.0000\n"
                                          "TR,OP1,FP3,AR90.0000,ZE90.0000,SD100.000,--\n"
                                          "MSE,PE0,RE5,VP0,VR0,DT0.010,PP0\n"
                                          "SSE,TE0,IE0,HI0,RD0\n"
                                          "CSE,N 0,E 0,EL0,AZ0.7\n"
                                          "OC,OP3,N ,E ,EL,--\n"
                                          "BK,OP3,BP1,BS270.0000,BC0.0000\n"
                                          "TR,OP3,FP4,AR90.0000,ZE90.0000,SD50.000,--\n");
    SilentInteraction ui;
    adjust::LsqData data;
    const Status st = prepareLeastSquares(file, {}, nullptr, ui, data);
    ASSERT_TRUE(st.ok()) << st.message;
    ASSERT_EQ(data.control.size(), 2u);
    ASSERT_EQ(data.adjust.size(), 2u);
    EXPECT_EQ(data.adjust[0].name, "3");
    EXPECT_NEAR(data.adjust[0].east, 1100.0, 1e-6);
    // AZ 1-2 (the backsight record's azimuth), DIST 1-3, ANG 2-1-3 with the
    // defaults; AZ 3-1, DIST 3-4, ANG 1-3-4 under the records.
    ASSERT_EQ(data.observations.size(), 6u);
    EXPECT_NEAR(data.observations[0].stdErr, ObservationErrors{}.azimuth, 1e-12);
    EXPECT_NEAR(data.observations[1].stdErr, distanceStdErr({}, 100.0, 1.0), 1e-12);
    const auto &az = data.observations[3];
    EXPECT_EQ(az.kind, adjust::ObservationKind::Azimuth);
    EXPECT_EQ(az.at + "-" + az.to, "3-1");
    EXPECT_NEAR(az.value, 270.0, 1e-9);
    EXPECT_NEAR(az.stdErr, 0.7, 1e-12);
    EXPECT_NEAR(data.observations[4].stdErr, 0.010, 1e-12);
    EXPECT_EQ(data.observations[5].from + "-" + data.observations[5].at, "1-3");
    EXPECT_NEAR(data.observations[5].stdErr, std::sqrt(2.0) * 5.0, 1e-9);
}

} // namespace
