#include "reduce/gps_processing.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace tramline;
using namespace tramline::reduce;

namespace {

std::vector<geodesy::AlignmentPoint> pairs(const std::string &text,
                                           geodesy::LocalizationUnits units,
                                           geodesy::MultipleMeasurements multiple, Status &status) {
    std::istringstream in(text);
    std::vector<geodesy::AlignmentPoint> points;
    status = alignmentFromRaw(in, units, multiple, points);
    return points;
}

} // namespace

TEST(GpsAlignment, GpsRecordsPairWithNotesAndStorePoints) {
    // LA/LN are ddd.mmss: 52.3000 is 52.5 degrees; a west longitude is
    // negative. Heights follow the file's unit into the localization's.
    const std::string job = "MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n"
                            "GPS,PN1,LA52.300000000,LN-1.153000000,EL328.0833,--a\n"
                            "--GS,PN1,N 100.0,E 200.0,EL10.0\n"
                            "SP,PN2,N 300.0,E 400.0,EL20.0,--\n"
                            "GPS,PN2,LA52.310000000,LN-1.150000000,EL100,--b\n"
                            "GPS,PN3,LA52.320000000,LN-1.150000000,EL100,--no grid\n"
                            "GPS,PN1,LA52.303600000,LN-1.153000000,EL0,--again\n";
    Status status;
    auto points = pairs(job, geodesy::LocalizationUnits::Metres,
                        geodesy::MultipleMeasurements::UseFirst, status);
    ASSERT_TRUE(status) << status.message;
    ASSERT_EQ(points.size(), 2u);
    EXPECT_EQ(points[0].description, "1");
    EXPECT_DOUBLE_EQ(points[0].latitude, 52.5);
    EXPECT_NEAR(points[0].longitude, -(1 + 15 / 60.0 + 30 / 3600.0), 1e-12);
    EXPECT_NEAR(points[0].ellipsoidHeight, 100.0, 1e-4); // 328.0833 US survey feet
    EXPECT_EQ(points[0].localY, 100.0);
    EXPECT_EQ(points[0].localX, 200.0);
    EXPECT_EQ(points[1].localZ, 20.0);

    points = pairs(job, geodesy::LocalizationUnits::UsFeet, geodesy::MultipleMeasurements::Average,
                   status);
    ASSERT_EQ(points.size(), 2u);
    EXPECT_NEAR(points[0].latitude, 52.505, 1e-12); // mean of 52.5 and 52.51
    EXPECT_NEAR(points[0].ellipsoidHeight, 328.0833 / 2, 1e-9);
}

TEST(GpsAlignment, NoPairsIsNoCalibration) {
    Status status;
    for (const char *text : {"", "GPS,PN1,LA52.3,LN1.1,EL1,--\n", "--GS,PN1,N 1,E 2,EL3\n",
                             "GPS,PN1,LA52.7,LN1.1,EL1,--\n--GS,PN1,N 1,E 2,EL3\n"}) {
        const auto points = pairs(text, geodesy::LocalizationUnits::Metres,
                                  geodesy::MultipleMeasurements::UseLast, status);
        EXPECT_EQ(status.message, "No calibration records found") << text;
        EXPECT_TRUE(points.empty());
    }
}
