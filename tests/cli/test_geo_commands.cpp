#include "cli/cli.h"

#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using tramline::test::lines;
using tramline::test::runCli;

std::vector<double> numbers(const std::string &line) {
    std::vector<double> values;
    std::istringstream in(line);
    for (double v; in >> v;)
        values.push_back(v);
    return values;
}

const std::vector<std::string> kBritishGrid = {"--type",      "0",
                                               "--param",     "latitude_of_origin=49",
                                               "--param",     "central_meridian=-2",
                                               "--param",     "scale_factor=0.9996012717",
                                               "--param",     "false_easting=400000",
                                               "--param",     "false_northing=-100000",
                                               "--ellipsoid", "Airy 1830"};

std::vector<std::string> with(std::vector<std::string> head, const std::vector<std::string> &tail) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

} // namespace

TEST(GeoCommands, Lists) {
    EXPECT_EQ(lines(runCli({"geo", "types"}).out).at(19), "Cassini_Soldner");
    EXPECT_EQ(lines(runCli({"geo", "families"}).out).at(10), "More Pre-Defined/User-Defined");
    EXPECT_EQ(lines(runCli({"geo", "zones", "7"}).out).at(0), "NZ Map Grid"); // by position
    EXPECT_EQ(lines(runCli({"geo", "zones", "UTM"}).out).at(60), "60: E 174-180 deg");
    EXPECT_EQ(lines(runCli({"geo", "ellipsoids"}).out).size(), 29u);
    EXPECT_EQ(runCli({"geo", "zones", "Atlantis"}).code, 2);
}

TEST(GeoCommands, ForwardAndInverse) {
    auto r = runCli(with({"geo", "forward"}, with(kBritishGrid, {"50.5", "0.5"})));
    ASSERT_EQ(r.code, 0) << r.err;
    auto v = numbers(r.out);
    ASSERT_EQ(v.size(), 4u);
    EXPECT_NEAR(v[0], 69740.4923, 1e-4);
    EXPECT_NEAR(v[1], 577274.9838, 1e-4);
    EXPECT_GT(v[2], 0.9996);
    EXPECT_GT(v[3], 1.0); // east of the central meridian: positive

    r = runCli(
        with({"geo", "inverse", "--json"}, with(kBritishGrid, {"69740.4923", "577274.9838"})));
    ASSERT_EQ(r.code, 0) << r.err;
    const auto json = nlohmann::json::parse(r.out);
    EXPECT_NEAR(json["latitude"].get<double>(), 50.5, 1e-8);
    EXPECT_NEAR(json["longitude"].get<double>(), 0.5, 1e-8);
    EXPECT_NEAR(json["convergence"].get<double>(), v[3], 1e-6);

    // A zone by family and position in the list (1 is AL West... 0 is AL East).
    r = runCli({"geo", "forward", "--family", "State Plane 83", "--zone", "0", "32.5", "-86"});
    ASSERT_EQ(r.code, 0) << r.err;
    v = numbers(r.out);
    EXPECT_NEAR(v[0], 221759.6690, 1e-3);
    EXPECT_NEAR(v[1], 184337.8237, 1e-3);
}

// WGS 84 in: the datum shift runs first. cs2cs gives OSGB36 52.499626127 N,
// 1.498511869 W for WGS 84 52.5 N, 1.5 W under this shift.
TEST(GeoCommands, ForwardFromWgs84) {
    const auto grid =
        with(kBritishGrid, {"--towgs84", "446.448,-125.157,542.06,0.15,0.247,0.842,-20.489"});
    const auto shifted =
        numbers(runCli(with({"geo", "forward"}, with(grid, {"--wgs84", "52.5", "-1.5"}))).out);
    const auto direct =
        numbers(runCli(with({"geo", "forward"}, with(grid, {"52.499626127", "-1.498511869"}))).out);
    ASSERT_EQ(shifted.size(), 4u);
    ASSERT_EQ(direct.size(), 4u);
    EXPECT_NEAR(shifted[0], direct[0], 2e-3);
    EXPECT_NEAR(shifted[1], direct[1], 2e-3);

    const auto back = numbers(
        runCli(with({"geo", "inverse"},
                    with(grid, {"--wgs84", std::to_string(direct[0]), std::to_string(direct[1])})))
            .out);
    ASSERT_EQ(back.size(), 4u);
    EXPECT_NEAR(back[0], 52.5, 1e-7);
    EXPECT_NEAR(back[1], -1.5, 1e-7);
}

TEST(GeoCommands, WktWriteAppendAndRead) {
    const tramline::test::ScratchFolder folder;
    const auto &dir = folder.path;
    const auto file = (dir / "systems.prj").string();

    auto r = runCli(with({"geo", "wkt", "--name", "BNG", "--datum", "OSGB36"}, kBritishGrid));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("COMPD_CS[\"BNG\"", 0), 0u);
    EXPECT_NE(r.out.find("PARAMETER[\"latitude_of_origin\",0.85521133348]"), std::string::npos);

    ASSERT_EQ(runCli(with({"geo", "wkt", "--out", file, "--name", "first"}, kBritishGrid)).code, 0);
    ASSERT_EQ(runCli({"geo", "wkt", "--out", file, "--append", "--family", "France NTF-GR3DF97A",
                      "--zone", "Lambert II - Carto"})
                  .code,
              0);
    r = runCli({"geo", "wkt", "--read", file});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto l = lines(r.out);
    EXPECT_EQ(l.at(0), "Name: first");
    EXPECT_NE(r.out.find("Name: France NTF-GR3DF97A: Lambert II - Carto"), std::string::npos);
    EXPECT_NE(r.out.find("Type: 1 Lambert Conformal Conic 1SP"), std::string::npos);
    EXPECT_NE(r.out.find("Central Meridian: 2.337229167"), std::string::npos);
    EXPECT_NE(r.out.find("Translate (m) DX: 168.0000 DY: 60.0000 DZ: -320.0000"),
              std::string::npos);

    r = runCli({"geo", "wkt", "--read", (dir / "missing.prj").string()});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("Error: unable to open"), std::string::npos);
}

TEST(GeoCommands, FailuresAndUsage) {
    struct Case {
        std::vector<std::string> args;
        int code;
        const char *message; // expected in the error stream
    };
    const Case cases[] = {
        {{"geo", "forward", "--type", "14", "40", "-100"},
         1,
         "Error: projection type Oblique Mercator 27 is not supported"},
        {{"geo", "forward", "--type", "6", "56", "10"}, 1, "not supported"},
        {{"geo", "forward", "--type", "0", "91", "0"}, 1, "Error: latitude beyond the poles"},
        {{"geo", "inverse", "--family", "UTM", "--zone", "Automatic", "0", "500000"},
         1,
         "needs a grid zone number or a position"},
        {{"geo", "forward", "--type", "0", "--param", "bogus=1", "1", "1"},
         2,
         "no parameter bogus"},
        {{"geo", "forward", "--type", "0", "--param", "central_meridian", "1", "1"},
         2,
         "NAME=VALUE"},
        {{"geo", "forward", "--type", "0", "--ellipsoid", "Mars 2000", "1", "1"},
         2,
         "no ellipsoid"},
        {{"geo", "forward", "--type", "0", "--towgs84", "1,2,3", "1", "1"}, 2, "seven numbers"},
        // A position far past any list (once an uncaught out_of_range).
        {{"geo", "forward", "--family", "UTM", "--zone", "99999999999", "1", "1"},
         1,
         "Error: no zone 99999999999 in"},
        {{"geo", "forward", "--family", "UTM", "--zone", "-1", "1", "1"},
         1,
         "Error: no zone -1 in"},
        {{"geo", "forward", "1", "1"}, 2, "name a system"},
        {{"geo", "forward", "--family", "UTM", "1", "1"}, 2, "--zone"},
        {{"geo", "wkt", "--append", "--type", "0"}, 2, "--out"},
        {{"geo"}, 2, ""},
    };
    for (const auto &c : cases) {
        const auto r = runCli(c.args);
        EXPECT_EQ(r.code, c.code) << c.args.back() << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    }
}

namespace {

// A grid with the separation 10 + latitude / 10 everywhere.
const char *kWorld = "-90.0000\n0.0000\n90.0000\n360.0000\n2.0\n4.0\n"
                     "1.0000\n1.0000\n1.0000\n1.0000\n1.0000\n"
                     "10.0000\n10.0000\n10.0000\n10.0000\n10.0000\n"
                     "19.0000\n19.0000\n19.0000\n19.0000\n19.0000\n";

// A scratch folder holding that grid as EGM96.
class GeoidCommands : public tramline::test::ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        write("egm96.grd", kWorld);
        data = dir.string();
    }
    std::string data;
};

} // namespace

TEST_F(GeoidCommands, SeparationFromTheGeoidsFolder) {
    std::filesystem::create_directories(dir / "geoids");
    std::filesystem::rename(dir / "egm96.grd", dir / "geoids" / "egm96.grd");
    auto r = runCli({"geoid", "separation", "--model", "6", "--data", data, "--server",
                     "http://127.0.0.1:9/", "45", "-100"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "14.5000\n");

    r = runCli({"geoid", "separation", "--model", "36", "--data", data, "--server",
                "http://127.0.0.1:9/", "--timeout", "2", "52", "-1"});
    EXPECT_EQ(r.code, 1);
    const std::string target = (dir / "osgm02.grd").string();
    EXPECT_EQ(r.err, "Error 7: failed to download geoid from\n"
                     "http://127.0.0.1:9/GeoidGrids/osgm02.grd\n"
                     "The grid osgm02.grd is not in " +
                         data +
                         ": copy it there, or convert a PROJ grid with \"tramline-cli geoid "
                         "import SRC.gtx " +
                         target + "\"\n");
    r = runCli({"geoid", "separation", "--model", "99", "--data", data, "1", "1"});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Error: unable to find geoid model\n");
    EXPECT_EQ(runCli({"geoid", "separation", "1", "1"}).code, 2); // no model
}

TEST_F(GeoidCommands, AreaRemembersItsEntries) {
    const std::string out = (dir / "job.grd").string();
    auto r = runCli({"geoid", "area", "--model", "EGM96", "--lat", "45.5", "--lon", "100.25",
                     "--west", "--size", "50", "--data", data, "--out", out});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Warning: max geoid size is 15 degrees\n");
    EXPECT_FALSE(std::filesystem::exists(out));

    // The other entries come back from setgeoid.ini.
    r = runCli({"geoid", "area", "--size", "2", "--data", data, "--out", out});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "Done\n");
    std::ifstream ini(dir / "setgeoid.ini");
    std::string first;
    std::getline(ini, first);
    EXPECT_EQ(first, "lat_val=45.3000");
    std::ifstream grid(out);
    std::string south, west;
    std::getline(grid, south);
    std::getline(grid, west);
    EXPECT_EQ(south, "0.0000");
    EXPECT_EQ(west, "180.0000");
}

TEST_F(GeoidCommands, ImportAGtxGrid) {
    const auto gtx = dir / "tiny.gtx";
    {
        std::ofstream out(gtx, std::ios::binary);
        auto put = [&out](const void *v, int n) {
            for (int i = n - 1; i >= 0; --i)
                out.put(static_cast<const char *>(v)[i]);
        };
        const double header[] = {40, -10, 1, 1};
        for (double v : header)
            put(&v, 8);
        const int rows = 2, columns = 2;
        put(&rows, 4);
        put(&columns, 4);
        for (float v : {1.5f, 2.5f, 3.5f, 4.5f})
            put(&v, 4);
    }
    const auto grd = (dir / "tiny.grd").string();
    auto r = runCli({"geoid", "import", gtx.string(), grd});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(tramline::test::slurp(grd),
              "40.0000\n350.0000\n41.0000\n351.0000\n1.0\n1.0\n1.5000\n2.5000\n3.5000\n4.5000\n");
    r = runCli({"geoid", "import", (dir / "none.gtx").string(), grd});
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("Error: unable to open"), std::string::npos);
}

// Decimal degrees unless --dms: 40.5 is 40 deg 30 min, and the sign gives
// the side; with --dms the value is kept as dd.mmss.
TEST_F(GeoidCommands, AreaTakesDecimalDegreesUnlessDms) {
    struct Case {
        std::vector<std::string> args;
        const char *latitude, *side;
    };
    const Case cases[] = {
        {{"--lat", "40.5"}, "lat_val=40.3000", "is_north=1"},
        {{"--lat", "-40.5"}, "lat_val=40.3000", "is_north=0"},
        {{"--lat", "40.5", "--dms"}, "lat_val=40.5000", "is_north=1"},
        {{"--lat", "-40.5", "--north"}, "lat_val=40.3000", "is_north=1"},
    };
    for (const Case &c : cases) {
        std::filesystem::remove(dir / "setgeoid.ini"); // no entries from the case before
        auto args = std::vector<std::string>{
            "geoid",  "area", "--model", "6",  "--lon", "100",
            "--size", "2",    "--data",  data, "--out", (dir / "job.grd").string()};
        args.insert(args.end(), c.args.begin(), c.args.end());
        const auto r = runCli(args);
        ASSERT_EQ(r.code, 0) << r.err;
        const std::string ini = tramline::test::slurp(dir / "setgeoid.ini");
        EXPECT_NE(ini.find(c.latitude), std::string::npos) << ini;
        EXPECT_NE(ini.find(c.side), std::string::npos) << ini;
    }
}

TEST_F(GeoidCommands, ListAndNames) {
    const auto list = runCli({"geoid", "list", "--data", data, "--json"});
    ASSERT_EQ(list.code, 0) << list.err;
    const auto models = nlohmann::json::parse(list.out);
    bool seen = false;
    for (const auto &model : models) {
        if (model["code"] != 6)
            continue;
        seen = true;
        EXPECT_EQ(model["present"], nlohmann::json::array({"egm96.grd"}));
        EXPECT_EQ(model["area"]["north"], 90.0);
    }
    EXPECT_TRUE(seen);
    // A name works wherever a code does, in any case and with or without .grd.
    for (const char *name : {"6", "egm96", "EGM96.grd"}) {
        const auto r = runCli(
            {"geoid", "separation", "--model", name, "--data", data, "--json", "45", "-100"});
        ASSERT_EQ(r.code, 0) << name << r.err;
        EXPECT_EQ(nlohmann::json::parse(r.out)["separation"], 14.5) << name;
    }
    EXPECT_EQ(runCli({"geoid", "separation", "--model", "Atlantis", "1", "1"}).code, 2);
}
