#include "cli/cli.h"

#include "crd/coordinate_file.h"

#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

namespace {

using tramline::test::runCli;

class CrdTransform : public tramline::test::ScratchFolderTest {
protected:
    // A file whose second point has no elevation and a description that
    // a plain comma split would cut in two.
    std::string makeFile(const std::string &name) {
        const auto path = (dir / name).string();
        tramline::crd::CoordinateFile file;
        EXPECT_TRUE(file.open(path));
        std::vector<tramline::crd::CrdPoint> points(2);
        points[0].set(500000.0, 4428236.0, 1600.0, "1", "IP, FOUND");
        points[1].set(510000.0, 4430000.0, 12345.5, "2", "5\" bolt");
        EXPECT_EQ(file.writePoints(points), 2);
        file.close();
        // The store writes no unset elevation; files from elsewhere hold one.
        std::string bytes = tramline::test::slurp(path);
        const double stored = 12345.5, unset = 98765432.1;
        const std::string from(reinterpret_cast<const char *>(&stored), sizeof stored);
        const auto at = bytes.find(from);
        EXPECT_NE(at, std::string::npos);
        if (at != std::string::npos)
            bytes.replace(at, sizeof unset, reinterpret_cast<const char *>(&unset), sizeof unset);
        tramline::test::spit(path, bytes);
        return path;
    }
};

} // namespace

TEST_F(CrdTransform, EveryPointAsGeoConvertGivesIt) {
    const auto in = makeFile("utm.crd");
    const auto out = at("sp.crd");
    const auto result =
        runCli({"crd", "transform", in, "--from", "EPSG:32613", "--to", "EPSG:2231", "-o", out});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "Transformed 2 points\n");
    const auto points = nlohmann::json::parse(runCli({"crd", "list", out, "--json"}).out);
    ASSERT_EQ(points.size(), 2u);
    const auto input =
        tramline::test::ScratchFolderTest::write("points.txt", "4428236 500000\n4430000 510000\n");
    std::istringstream expected(
        runCli({"geo", "convert", "--from", "EPSG:32613", "--to", "EPSG:2231", input.string()})
            .out);
    for (const auto &point : points) {
        double n = 0, e = 0;
        expected >> n >> e;
        EXPECT_NEAR(point["northing"].get<double>(), n, 1e-4);
        EXPECT_NEAR(point["easting"].get<double>(), e, 1e-4);
    }
    EXPECT_EQ(points[0]["elevation"], 1600.0);                  // heights stay as they are
    EXPECT_TRUE(points[1]["elevation"].is_null()) << points[1]; // and a missing one stays missing
    EXPECT_EQ(
        runCli({"crd", "transform", in, "--from", "EPSG:32613", "--to", "EPSG:2231", "-o", in})
            .code,
        1);
}

TEST_F(CrdTransform, ListQuotesFieldsAndLeavesUnsetElevationEmpty) {
    const auto path = makeFile("list.crd");
    const auto result = runCli({"crd", "list", path});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "1,4428236.0000,500000.0000,1600.0000,\"IP, FOUND\"\n"
                          "2,4430000.0000,510000.0000,,\"5\"\" bolt\"\n");
}
