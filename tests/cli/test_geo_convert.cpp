#include "cli/cli.h"

#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <sstream>

namespace {

using tramline::test::lines;
using tramline::test::runCli;

std::vector<std::string> fields(const std::string &line, char separator = '\t') {
    std::vector<std::string> result;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, separator);)
        result.push_back(field);
    return result;
}

bool haveCs2cs() {
    return std::system("cs2cs >/dev/null 2>&1 </dev/null") == 0 ||
           std::system("command -v cs2cs >/dev/null 2>&1") == 0;
}

std::string shellOutput(const std::string &command) {
    std::string output;
    if (FILE *pipe = ::popen(command.c_str(), "r")) {
        char buffer[4096];
        while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe))
            output.append(buffer, n);
        ::pclose(pipe);
    }
    return output;
}

// A minimal RFC 4180 reader, to check what the writer's users will parse.
std::vector<std::vector<std::string>> readCsv(const std::string &text) {
    std::vector<std::vector<std::string>> rows(1, std::vector<std::string>(1));
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '"' && i + 1 < text.size() && text[i + 1] == '"')
                rows.back().back() += text[++i];
            else if (c == '"')
                quoted = false;
            else
                rows.back().back() += c;
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            rows.back().emplace_back();
        } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            ++i;
            rows.emplace_back(1);
        } else {
            rows.back().back() += c;
        }
    }
    if (rows.back().size() == 1 && rows.back()[0].empty())
        rows.pop_back();
    return rows;
}

class GeoConvert : public tramline::test::ScratchFolderTest {};

} // namespace

// 1,000 random positions through our conversion and through PROJ's own
// command-line tool; the grids agree to 0.1 mm in their own units.
TEST_F(GeoConvert, AgreesWithCs2csAtRandomPoints) {
    if (!haveCs2cs())
        GTEST_SKIP() << "cs2cs (proj-bin) is not installed";
    struct Case {
        const char *from, *to;
        double south, north, west, east;
        double toMetre;
    };
    const Case cases[] = {
        {"EPSG:4269", "EPSG:2231", 39.5, 41.0, -109.0, -102.0, 1200.0 / 3937.0}, // ftUS
        {"EPSG:4326", "EPSG:32613", 0.5, 60.0, -108.0, -102.0, 1.0},             // UTM 13N
        {"EPSG:4269", "EPSG:32118", 40.5, 41.2, -74.3, -71.8, 1.0}, // Lambert, Long Island
    };
    std::mt19937 random(16);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.to);
        std::uniform_real_distribution<double> lat(c.south, c.north), lon(c.west, c.east);
        std::string input, bare;
        for (int i = 0; i < 1000; ++i) {
            char line[128];
            std::snprintf(line, sizeof line, "%.10f %.10f", lat(random), lon(random));
            input += std::string(line) + " P" + std::to_string(i) + " kept, as is\n";
            bare += std::string(line) + '\n';
        }
        const auto file = write("in.txt", input);
        const auto plain = write("plain.txt", bare);
        const auto ours = runCli({"geo", "convert", "--from", c.from, "--to", c.to, file});
        ASSERT_EQ(ours.code, 0) << ours.err;
        // cs2cs takes and gives each system's own axis order: latitude
        // first for the geographic ones, easting first for these grids.
        const auto theirs = lines(shellOutput("cs2cs -f %.6f " + std::string(c.from) + " " + c.to +
                                              " < " + plain.string()));
        const auto got = lines(ours.out);
        ASSERT_EQ(got.size(), 1000u);
        ASSERT_EQ(theirs.size(), 1000u);
        for (std::size_t i = 0; i < got.size(); ++i) {
            const auto mine = fields(got[i]);
            ASSERT_EQ(mine.size(), 3u) << got[i];
            EXPECT_EQ(mine[2], "P" + std::to_string(i) + " kept, as is");
            double e = 0, n = 0;
            ASSERT_EQ(std::sscanf(theirs[i].c_str(), "%lf %lf", &e, &n), 2) << theirs[i];
            EXPECT_NEAR(std::stod(mine[0]) * c.toMetre, n * c.toMetre, 1e-4) << i;
            EXPECT_NEAR(std::stod(mine[1]) * c.toMetre, e * c.toMetre, 1e-4) << i;
        }
    }
}

// Grid to grid and back, a system of our own lists given in another unit,
// and the inverse direction: each against a direct EPSG conversion.
TEST_F(GeoConvert, SystemsAndUnitsAgree) {
    const auto file = write("in.txt", "40.5 -105.2 1600.25 IP, \"FOUND\"\n");
    const auto convert = [&](std::vector<std::string> args) {
        args.insert(args.begin(), {"geo", "convert"});
        const auto result = runCli(args);
        EXPECT_EQ(result.code, 0) << result.err;
        return fields(lines(result.out).at(0));
    };
    const auto reference = convert({"--from", "EPSG:4269", "--to", "EPSG:2231", file});
    ASSERT_EQ(reference.size(), 4u);
    EXPECT_EQ(reference[2], "1600.2500");
    EXPECT_EQ(reference[3], "IP, \"FOUND\"");
    struct Case {
        std::vector<std::string> args;
    };
    const Case cases[] = {
        {{"--from", "latlon", "--to", "State Plane 83:CO North", "--units", "us-ft"}},
        {{"--from", "EPSG:4269", "--to", "EPSG:26953", "--units", "us-ft"}},
        {{"--from", "latlon", "--to",
          "+proj=lcc +lat_0=39.3333333333333 +lon_0=-105.5 "
          "+lat_1=40.7833333333333 +lat_2=39.7166666666667 "
          "+x_0=914401.8289 +y_0=304800.6096 +ellps=GRS80 "
          "+units=us-ft +type=crs"}},
    };
    for (const Case &c : cases) {
        auto args = c.args;
        args.push_back(file.string());
        const auto got = convert(args);
        ASSERT_EQ(got.size(), 4u) << c.args[3];
        // The metre zone's false easting (914401.8289 m) is the feet zone's
        // 3,000,000 ftUS rounded: 0.09 mm apart.
        EXPECT_NEAR(std::stod(got[0]), std::stod(reference[0]), 4e-4) << c.args[3];
        EXPECT_NEAR(std::stod(got[1]), std::stod(reference[1]), 4e-4) << c.args[3];
    }
    // Back from the grid to latitude and longitude.
    const auto grid = write("grid.txt", reference[0] + " " + reference[1] + "\n");
    const auto back = convert({"--from", "EPSG:2231", "--to", "EPSG:4269", grid});
    EXPECT_NEAR(std::stod(back.at(0)), 40.5, 1e-8);
    EXPECT_NEAR(std::stod(back.at(1)), -105.2, 1e-8);
}

TEST_F(GeoConvert, JsonAndCsvReadBack) {
    const auto file =
        write("in.txt", "# a comment\n40.5,-105.2,1600.25,\"IP, FOUND\"\n40.6 -105.8\n");
    const auto json = runCli({"geo", "convert", "--from", "EPSG:4269", "--to", "EPSG:2231",
                              "--json", "--factors", file});
    ASSERT_EQ(json.code, 0) << json.err;
    const auto parsed = nlohmann::json::parse(json.out);
    ASSERT_EQ(parsed["points"].size(), 2u);
    EXPECT_EQ(parsed["unit"], "US survey foot");
    EXPECT_EQ(parsed["points"][0]["line"], 2);
    EXPECT_EQ(parsed["points"][0]["elevation"], 1600.25);
    EXPECT_TRUE(parsed["points"][1]["elevation"].is_null());
    EXPECT_EQ(parsed["points"][0]["rest"], "\"IP, FOUND\"");
    // West of CO North's central meridian (105.5 W) the convergence is
    // negative; the scale of a Lambert zone stays within 1:10,000 of one.
    EXPECT_LT(parsed["points"][1]["convergence"].get<double>(), 0.0);
    EXPECT_GT(parsed["points"][0]["convergence"].get<double>(), 0.0);
    EXPECT_NEAR(parsed["points"][0]["scale_factor"].get<double>(), 1.0, 1e-3);

    const auto csv =
        runCli({"geo", "convert", "--from", "EPSG:4269", "--to", "EPSG:2231", "--csv", file});
    ASSERT_EQ(csv.code, 0) << csv.err;
    const auto rows = readCsv(csv.out);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"northing", "easting", "elevation", "rest"}));
    EXPECT_EQ(rows[1][3], "\"IP, FOUND\"");
    EXPECT_EQ(rows[2][2], ""); // no elevation given: empty, not zero
    EXPECT_NEAR(std::stod(rows[1][0]), parsed["points"][0]["northing"].get<double>(), 5e-5);
}

TEST_F(GeoConvert, WarnsAndFailsPerLine) {
    struct Case {
        const char *line, *to;
        int code;
        const char *err; // expected on the error stream
    };
    const Case cases[] = {
        {"40 -105", "EPSG:32613", 0, ""},
        {"40 -75", "EPSG:32613", 0, "Warning: line 1: outside the area of use of"},
        {"-10 -105", "EPSG:32613", 0, "Warning: line 1: south of the equator"},
        {"-10 -105", "UTM:13", 0, "Warning: line 1: south of the equator"},
        {"40 -75", "UTM:13", 0, "Warning: line 1: outside the area of use"},
        // Lambert and oblique Mercator zones take their area from the database.
        {"40.5 -105.2", "State Plane 83:CO North", 0, ""},
        {"31 -100", "State Plane 83:CO North", 0, "Warning: line 1: outside the area of use of"},
        {"57 -134", "State Plane 83:AK Zone 1", 0, ""},
        {"40 -105", "State Plane 83:AK Zone 1", 0, "Warning: line 1: outside the area of use of"},
        {"north east", "EPSG:32613", 1, "Error: line 1: not a coordinate line"},
        {"95 -105", "EPSG:32613", 1, "Error: line 1: the point cannot be converted"},
    };
    for (const Case &c : cases) {
        const auto file = write("in.txt", std::string(c.line) + "\n");
        const auto result = runCli({"geo", "convert", "--from", "latlon", "--to", c.to, file});
        EXPECT_EQ(result.code, c.code) << c.line << " " << c.to;
        if (*c.err)
            EXPECT_NE(result.err.find(c.err), std::string::npos) << c.line << ": " << result.err;
        else
            EXPECT_EQ(result.err, "") << c.line;
    }
}

TEST_F(GeoConvert, FilesAndSystemsThatCannotBeUsed) {
    const auto missing = at("nosuch.txt");
    const auto noFile =
        runCli({"geo", "convert", "--from", "latlon", "--to", "EPSG:32613", missing});
    EXPECT_EQ(noFile.code, 1);
    EXPECT_NE(noFile.err.find(missing + ": No such file or directory"), std::string::npos);
    const auto file = write("in.txt", "40 -105\n");
    const auto badSystem = runCli({"geo", "convert", "--from", "latlon", "--to", "EPSG:0", file});
    EXPECT_EQ(badSystem.code, 1);
    EXPECT_NE(badSystem.err.find("EPSG:0"), std::string::npos);
    const auto badUnit = runCli(
        {"geo", "convert", "--from", "latlon", "--to", "EPSG:32613", "--units", "yards", file});
    EXPECT_EQ(badUnit.code, 2);
    const auto out = dir / "out.txt";
    EXPECT_EQ(runCli({"geo", "convert", "--from", "latlon", "--to", "EPSG:32613", "-o",
                      out.string(), file})
                  .code,
              0);
    EXPECT_EQ(lines(tramline::test::slurp(out)).size(), 1u);
}

namespace {

// Heights through a geoid model, against PROJ's vertical grid shift of the
// same grid: the grid is PROJ's own EGM96, converted by "geoid import".
TEST_F(GeoConvert, GeoidHeightsAgreeWithVgridshift) {
    const std::string gtx = "/usr/share/proj/egm96_15.gtx";
    if (!std::filesystem::exists(gtx) || std::system("command -v cct >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "PROJ's egm96_15.gtx or cct is not installed";
    const auto grd = at("egm96.grd");
    ASSERT_EQ(runCli({"geoid", "import", gtx, grd}).code, 0);
    const double points[][3] = {{40.0, -105.0, 1600.0}, {-33.9, 18.4, 50.0}, {51.5, -0.1, 100.0},
                                {-8.3, 115.2, 12.0},    {64.1, -21.9, 30.0}, {0.0, 0.0, 0.0}};
    std::string input, theirsIn;
    for (const auto &p : points) {
        input +=
            std::to_string(p[0]) + " " + std::to_string(p[1]) + " " + std::to_string(p[2]) + "\n";
        theirsIn +=
            std::to_string(p[1]) + " " + std::to_string(p[0]) + " " + std::to_string(p[2]) + " 0\n";
    }
    const auto inFile = write("geodetic.txt", input);
    const auto theirsFile = write("cct.txt", theirsIn);
    const auto theirs = lines(shellOutput("cct -d 6 +proj=vgridshift +grids=egm96_15.gtx "
                                          "+multiplier=-1 " +
                                          theirsFile.string()));
    const auto grid = runCli({"geo", "convert", "--from", "latlon", "--to", "EPSG:4087", "--geoid",
                              "EGM96", "--geoid-data", dir.string(), inFile.string()});
    ASSERT_EQ(grid.code, 0) << grid.err;
    const auto ours = lines(grid.out);
    ASSERT_EQ(ours.size(), std::size(points));
    ASSERT_EQ(theirs.size(), std::size(points));
    std::string gridText;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        std::istringstream row(theirs[i]);
        double lon = 0, lat = 0, height = 0;
        row >> lon >> lat >> height;
        const auto f = fields(ours[i]);
        ASSERT_EQ(f.size(), 3u) << ours[i];
        // Both interpolate the same nodes bilinearly.
        EXPECT_NEAR(std::stod(f[2]), height, 1e-3) << ours[i];
        gridText += ours[i] + "\n";
    }
    // Back again: the elevation above the geoid becomes the ellipsoid height.
    const auto back =
        runCli({"geo", "convert", "--from", "EPSG:4087", "--to", "latlon", "--geoid", "6",
                "--geoid-data", dir.string(), write("grid.txt", gridText).string()});
    ASSERT_EQ(back.code, 0) << back.err;
    const auto returned = lines(back.out);
    ASSERT_EQ(returned.size(), std::size(points));
    for (std::size_t i = 0; i < returned.size(); ++i)
        EXPECT_NEAR(std::stod(fields(returned[i])[2]), points[i][2], 2e-4) << returned[i];

    // Grid to grid has no ellipsoid height to speak of.
    EXPECT_EQ(runCli({"geo", "convert", "--from", "EPSG:32613", "--to", "EPSG:2231", "--geoid", "6",
                      "--geoid-data", dir.string(), inFile.string()})
                  .code,
              1);
}

} // namespace
