// File > Print > Coordinates, compared whole with the listings in
// tests/data/crd/<case>/: points.txt gives the points (name, northing,
// easting, elevation, description, separated by '|'; an empty elevation
// is none), order.txt the coordinate order, expected.txt the listing.
#include "crd/coordinate_report.h"
#include "crd_test_support.h"

#include "base/text.h"
#include "base/unset.h"

#include <sstream>

using namespace tramline::crd;
using namespace crdtest;

namespace {

const std::filesystem::path kCases = std::filesystem::path(TRAMLINE_TEST_DATA) / "crd";

using tramline::test::slurp;

class CoordinateReportCase : public CrdTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(CoordinateReportCase, MatchesTheListing) {
    const auto folder = kCases / GetParam();
    CoordinateFile crd(context);
    const bool numeric = GetParam().starts_with("numeric");
    ASSERT_TRUE(
        crd.open(file("job.crd"), Create::Always, numeric ? kFormatNumeric : kFormatAlphanumeric));
    std::istringstream lines(slurp(folder / "points.txt"));
    for (std::string line; std::getline(lines, line);) {
        const auto f = tramline::split(line, '|');
        ASSERT_EQ(f.size(), 5u) << line;
        CrdPoint p;
        p.name = f[0];
        p.northing = std::stod(std::string(f[1]));
        p.easting = std::stod(std::string(f[2]));
        p.elevation = f[3].empty() ? tramline::kUnsetPositive : std::stod(std::string(f[3]));
        p.description = f[4];
        ASSERT_TRUE(crd.writePoint(p)) << line;
    }
    const auto order = tramline::trim(slurp(folder / "order.txt")) == "easting-northing"
                           ? CoordinateOrder::EastingNorthing
                           : CoordinateOrder::NorthingEasting;
    std::string report;
    ASSERT_TRUE(printCoordinates(crd, "C:\\jobs\\" + GetParam() + ".crd", order, dir, report).ok());
    EXPECT_EQ(report, slurp(folder / "expected.txt"));
    EXPECT_EQ(slurp(dir / "morvrprt.tmp"), report);
}

INSTANTIATE_TEST_SUITE_P(Listings, CoordinateReportCase,
                         ::testing::Values("alphanumeric-northing-first", "numeric-easting-first",
                                           "empty"));

TEST_F(CrdTest, CoordinateReportNeedsItsOutputFile) {
    CoordinateFile crd(context);
    ASSERT_TRUE(crd.open(file("job.crd"), Create::Always, kFormatAlphanumeric));
    std::string report;
    const tramline::Status status =
        printCoordinates(crd, "NONE", CoordinateOrder::NorthingEasting, dir / "missing", report);
    EXPECT_EQ(status.message,
              "Can't open output file " + (dir / "missing" / "morvrprt.tmp").string());
}

} // namespace
