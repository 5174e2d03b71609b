#include "../support/test_support.h"
#include "geodesy/geoid_grid.h"
#include "geodesy/gtx_import.h"

#include <gtest/gtest.h>
#include <proj.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

using namespace tramline::geodesy;

namespace {

// 2 x 3 intervals over 10..12 N, 350..353 E: separations that vary in both
// directions so that interpolation errors show.
const char *kSmallGrid = "10.0000\n350.0000\n12.0000\n353.0000\n2.0\n3.0\n"
                         "1.0000\n2.0000\n3.0000\n4.0000\n"
                         "11.0000\n12.0000\n13.0000\n14.0000\n"
                         "21.0000\n22.0000\n23.0000\n-24.5000\n";

GeoidGrid smallGrid() {
    std::istringstream in(kSmallGrid);
    GeoidGrid grid;
    EXPECT_TRUE(GeoidGrid::read(in, "small.grd", grid).ok());
    return grid;
}

void writeBigEndian(std::ostream &out, const void *value, int bytes) {
    const auto *p = static_cast<const unsigned char *>(value);
    for (int i = bytes - 1; i >= 0; --i)
        out.put(static_cast<char>(p[i]));
}

std::string gtx(double south, double west, double dlat, double dlon, int rows, int columns,
                const std::vector<float> &values) {
    std::ostringstream out;
    for (double v : {south, west, dlat, dlon})
        writeBigEndian(out, &v, 8);
    writeBigEndian(out, &rows, 4);
    writeBigEndian(out, &columns, 4);
    for (float v : values)
        writeBigEndian(out, &v, 4);
    return out.str();
}

} // namespace

TEST(GeoidGrid, ReadsAndInterpolates) {
    const GeoidGrid grid = smallGrid();
    EXPECT_EQ(grid.rows(), 3);
    EXPECT_EQ(grid.columns(), 4);
    EXPECT_DOUBLE_EQ(grid.node(1, 2), 13.0);
    struct Case {
        double latitude, longitude, expected;
    };
    const Case cases[] = {
        {10, 350, 1},       // south-west corner node
        {12, 352, 23},      // a node on the north edge
        {11, 350.5, 11.5},  // half way between nodes
        {10.5, 351.5, 7.5}, // centre of a cell
        {10, -10, 1},       // a longitude west of Greenwich finds the 0..360 grid
        {11.5, 352.5, 0.5 * (0.5 * (13 + 14) + 0.5 * (23 - 24.5))},
        {12, 353, -24.5}, // the north-east corner
    };
    for (const auto &c : cases) {
        double n = 0;
        ASSERT_TRUE(grid.separation(c.latitude, c.longitude, n))
            << c.latitude << " " << c.longitude;
        EXPECT_NEAR(n, c.expected, 1e-5) << c.latitude << " " << c.longitude;
    }
    double n = 0;
    for (auto [lat, lon] :
         {std::pair{9.999, 351.0}, {12.001, 351.0}, {11.0, 349.9}, {11.0, 353.1}, {NAN, 351.0}})
        EXPECT_FALSE(grid.separation(lat, lon, n)) << lat << " " << lon;
    EXPECT_TRUE(grid.bounds().contains(11, -8.5));
    EXPECT_FALSE(grid.bounds().contains(11, 8.5));
}

TEST(GeoidGrid, WritesTheLayoutItReads) {
    const GeoidGrid grid = smallGrid();
    std::ostringstream out;
    ASSERT_TRUE(grid.write(out));
    EXPECT_EQ(out.str(), kSmallGrid);

    const tramline::test::ScratchFolder folder;
    const auto path = folder.path / "written.grd";
    ASSERT_TRUE(grid.save(path).ok());
    GeoidGrid back;
    ASSERT_TRUE(GeoidGrid::load(path, back).ok());
    EXPECT_EQ(back.node(2, 3), grid.node(2, 3));
    EXPECT_EQ(GeoidGrid::load(folder.path / "absent.grd", back).code, StatusCode::Io);
}

TEST(GeoidGrid, BadFilesAreRefused) {
    const std::string good = kSmallGrid;
    struct Case {
        const char *what;
        std::string text;
        const char *message;
    };
    const Case cases[] = {
        {"empty", "", "Error: bad.grd is not a grid file"},
        {"header only", good.substr(0, good.find("1.0000\n2.0000")),
         "Error: grid file bad.grd is truncated"},
        {"missing nodes", good.substr(0, good.size() - 9), "Error: grid file bad.grd is truncated"},
        {"a node of text", tramline::test::replaced(good, "13.0000", "13.x000"),
         "Error: bad.grd is not a grid file"},
        {"north below south", "12\n350\n10\n353\n2.0\n3.0\n", "Error: bad.grd is not a grid file"},
        {"fractional intervals", "10\n350\n12\n353\n2.5\n3.0\n",
         "Error: bad.grd is not a grid file"},
        {"absurd size", "10\n350\n12\n353\n100000000\n100000000\n",
         "Error: bad.grd is not a grid file"},
        {"binary garbage", std::string("\x00\x01\xff\xfe\n\n\x7f", 7),
         "Error: bad.grd is not a grid file"},
        {"overlong header line", std::string(400, '1') + "\n350\n12\n353\n2.0\n3.0\n",
         "Error: bad.grd is not a grid file"},
        // Finite as a double, infinite as the float a node is kept in.
        {"a node of 440 digits", tramline::test::replaced(good, "13.0000", std::string(440, '9')),
         "Error: bad.grd is not a grid file"},
        {"a node of 1e300", tramline::test::replaced(good, "13.0000", "-1e300"),
         "Error: bad.grd is not a grid file"},
    };
    for (const auto &c : cases) {
        std::istringstream in(c.text);
        GeoidGrid grid;
        const Status status = GeoidGrid::read(in, "bad.grd", grid);
        EXPECT_EQ(status.code, StatusCode::Format) << c.what;
        EXPECT_EQ(status.message, c.message) << c.what;
    }
    std::istringstream header("10\n350\n12\n353\n");
    GridBounds bounds;
    ASSERT_TRUE(readGridBounds(header, bounds).ok());
    EXPECT_EQ(bounds.east, 353);
    std::istringstream shortHeader("10\n350\n12\n");
    EXPECT_FALSE(readGridBounds(shortHeader, bounds).ok());
}

TEST(GtxImport, GlobalAndRegionalGrids) {
    // A world grid at 90 degrees: 3 rows x 4 columns from -180 east.
    const std::vector<float> world = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    std::istringstream in(gtx(-90, -180, 90, 90, 3, 4, world));
    GeoidGrid grid;
    ASSERT_TRUE(readGtx(in, "world.gtx", grid).ok());
    EXPECT_EQ(grid.bounds().west, 0);
    EXPECT_EQ(grid.bounds().east, 360);
    ASSERT_EQ(grid.columns(), 5);
    // Longitude 0 was the source's third column; 360 repeats it.
    EXPECT_EQ(grid.node(1, 0), 7);
    EXPECT_EQ(grid.node(1, 2), 5); // 180 E is -180
    EXPECT_EQ(grid.node(1, 4), 7);

    // A regional grid west of Greenwich moves into 0..360.
    std::istringstream regional(gtx(40, -10, 1, 1, 2, 2, {1, 2, 3, -88.8888f}));
    ASSERT_TRUE(readGtx(regional, "r.gtx", grid).ok());
    EXPECT_EQ(grid.bounds().west, 350);
    double n = 0;
    EXPECT_TRUE(grid.separation(40, -10, n));
    EXPECT_FALSE(grid.separation(40.5, -9.5, n)) << "a node without data is no basis for a value";

    const std::string whole = gtx(40, -10, 1, 1, 2, 2, {1, 2, 3, 4});
    for (std::size_t size : {std::size_t{0}, std::size_t{39}, whole.size() - 1}) {
        std::istringstream cut(whole.substr(0, size));
        EXPECT_EQ(readGtx(cut, "cut.gtx", grid).code, StatusCode::Format) << size;
    }
    std::istringstream badHeader(gtx(40, -10, -1, 1, 2, 2, {1, 2, 3, 4}));
    EXPECT_EQ(readGtx(badHeader, "neg.gtx", grid).code, StatusCode::Format);
}

// The converted grid interpolates like PROJ does on the original: within
// a millimetre at a thousand random points over the whole world.
TEST(GtxImport, AgreesWithProjAtAThousandPoints) {
    const std::filesystem::path source = "/usr/share/proj/egm96_15.gtx";
    if (!std::filesystem::exists(source))
        GTEST_SKIP() << source
                     << " is absent (install proj-data); the agreement with PROJ is not checked";
    const tramline::test::ScratchFolder folder;
    const auto converted = folder.path / "egm96.grd";
    ASSERT_TRUE(importGtx(source, converted).ok());
    GeoidGrid grid;
    ASSERT_TRUE(GeoidGrid::load(converted, grid).ok());
    EXPECT_EQ(grid.rows(), 721);
    EXPECT_EQ(grid.columns(), 1441);

    PJ_CONTEXT *ctx = proj_context_create();
    PJ *pj = proj_create(ctx, ("+proj=vgridshift +multiplier=1 +grids=" + source.string()).c_str());
    ASSERT_NE(pj, nullptr);
    std::mt19937 random(20240611);
    std::uniform_real_distribution<double> latitude(-90.0, 90.0), longitude(-180.0, 180.0);
    double worst = 0;
    for (int i = 0; i < 1000; ++i) {
        const double lat = latitude(random), lon = longitude(random);
        const PJ_COORD out =
            proj_trans(pj, PJ_FWD, proj_coord(lon * M_PI / 180, lat * M_PI / 180, 0, 0));
        double ours = 0;
        ASSERT_TRUE(grid.separation(lat, lon, ours)) << lat << " " << lon;
        ASSERT_TRUE(std::isfinite(out.xyz.z)) << lat << " " << lon;
        worst = std::max(worst, std::fabs(ours - out.xyz.z));
        EXPECT_NEAR(ours, out.xyz.z, 1e-3) << lat << " " << lon;
    }
    RecordProperty("worst_difference_m", std::to_string(worst));
    proj_destroy(pj);
    proj_context_destroy(ctx);
}

// The binary copy answers only for the grid it was made from: a grid
// rewritten since, or a damaged copy, is parsed again.
TEST(GeoidGrid, CachedCopyFollowsItsGrid) {
    const tramline::test::ScratchFolder folder;
    const auto &dir = folder.path;
    const auto previous = GeoidGrid::cacheFolder();
    GeoidGrid::setCacheFolder(dir / "cache");
    const auto grid = dir / "small.grd";
    std::ofstream(grid, std::ios::binary) << kSmallGrid;

    auto separationAt = [&](double latitude, double longitude) {
        GeoidGrid g;
        EXPECT_TRUE(GeoidGrid::load(grid, g).ok());
        double s = 0;
        EXPECT_TRUE(g.separation(latitude, longitude, s));
        return s;
    };
    auto cacheFiles = [&] {
        std::vector<std::filesystem::path> files;
        for (const auto &e : std::filesystem::directory_iterator(dir / "cache"))
            files.push_back(e.path());
        return files;
    };
    // 11.5 N 352.5 E: halfway between 13, 14, 23 and -24.5 (by hand: 6.375)
    EXPECT_NEAR(separationAt(11.5, 352.5), 6.375, 1e-6);
    ASSERT_EQ(cacheFiles().size(), 1u);
    EXPECT_NEAR(separationAt(11.5, 352.5), 6.375, 1e-6); // from the copy

    // The same length, another value, a later time: the copy is stale.
    std::string changed = kSmallGrid;
    changed.replace(changed.find("-24.5000"), 8, "-20.5000");
    std::ofstream(grid, std::ios::binary | std::ios::trunc) << changed;
    std::filesystem::last_write_time(grid, std::filesystem::last_write_time(grid) +
                                               std::chrono::seconds(5));
    EXPECT_NEAR(separationAt(11.5, 352.5), 7.375, 1e-6);

    // A cut copy is parsed past.
    const auto copy = cacheFiles().front();
    std::filesystem::resize_file(copy, std::filesystem::file_size(copy) - 4);
    EXPECT_NEAR(separationAt(11.5, 352.5), 7.375, 1e-6);

    // A copy whose size fields promise a grid far larger than the copy is
    // parsed past too, without making room for what it promises.
    {
        const auto bigCopy = cacheFiles().front();
        std::fstream io(bigCopy, std::ios::binary | std::ios::in | std::ios::out);
        const std::int32_t huge[2] = {1 << 20, 1 << 20};
        io.seekp(static_cast<std::streamoff>(std::filesystem::file_size(bigCopy)) - 12 * 4 - 8);
        io.write(reinterpret_cast<const char *>(huge), sizeof huge);
    }
    EXPECT_NEAR(separationAt(11.5, 352.5), 7.375, 1e-6);

    GeoidGrid::setCacheFolder({});
    std::filesystem::remove_all(dir / "cache");
    EXPECT_NEAR(separationAt(10.0, 350.0), 1.0, 1e-6);
    EXPECT_FALSE(std::filesystem::exists(dir / "cache"));
    GeoidGrid::setCacheFolder(previous);
}
