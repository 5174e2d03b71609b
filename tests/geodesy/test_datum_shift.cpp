#include "geodesy/datum_shift.h"
#include "geodesy/nad_converter.h"
#include "geodesy/ntv2_grid.h"
#include "geodesy/ostn_grid.h"
#include "geodesy/shift_grids.h"

#include "../support/test_support.h"

#include <gtest/gtest.h>
#include <proj.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

using namespace tramline::geodesy;
using tramline::test::replaced;

namespace {

// An NTv2 ASCII file: 2 x 3 nodes over 40..41 N, 10..12 E (seconds, west
// positive), latitude shifts 1, 2, 3..., longitude shifts 10, 20, 30...
std::string ntv2(const std::string &overview = "", const std::string &sub = "", int nodes = 6) {
    std::string text = overview.empty()
                           ? "NUM_OREC      11\nNUM_SREC      11\nNUM_FILE       1\n"
                             "GS_TYPE SECONDS\nVERSION NTv2.0\nSYSTEM_FA\nSYSTEM_TB\n"
                             "MAJOR_F 6378137.0\nMINOR_F 6356752.3\nMAJOR_T 6378137.0\n"
                             "MINOR_T 6356752.3\n"
                           : overview;
    text += sub.empty()
                ? "SUB_NAMETEST\nPARENT  NONE\nCREATED 2020\nUPDATED 2020\nS_LAT   144000.0\n"
                  "N_LAT   147600.0\nE_LONG  -43200.0\nW_LONG  -36000.0\nLAT_INC 3600.0\n"
                  "LONG_INC3600.0\nGS_COUNT 6\n"
                : sub;
    for (int i = 0; i < nodes; ++i) {
        char line[64];
        std::snprintf(line, sizeof line, "%10.6f%10.6f%10.6f%10.6f\n", i + 1.0, 10.0 * (i + 1), 0.0,
                      0.0);
        text += line;
    }
    return text;
}

// Converts a binary NTv2 file (as PROJ ships them) into the ASCII form.
bool gsbToAscii(const std::filesystem::path &gsb, std::string &text) {
    std::ifstream in(gsb, std::ios::binary | std::ios::ate);
    std::string data(static_cast<std::size_t>(std::max<std::streamoff>(in.tellg(), 0)), '\0');
    in.seekg(0);
    in.read(data.data(), static_cast<std::streamsize>(data.size()));
    if (data.size() < 22 * 16)
        return false;
    auto record = [&](std::size_t i, bool isDouble, bool isInt) {
        const std::string key = data.substr(i * 16, 8);
        char value[64];
        if (isDouble) {
            double d;
            std::memcpy(&d, &data[i * 16 + 8], 8);
            std::snprintf(value, sizeof value, "%.6f", d);
        } else if (isInt) {
            int n;
            std::memcpy(&n, &data[i * 16 + 8], 4);
            std::snprintf(value, sizeof value, "%d", n);
        } else {
            std::snprintf(value, sizeof value, "%.8s", &data[i * 16 + 8]);
        }
        return key + value + "\n";
    };
    for (std::size_t i = 0; i < 11; ++i)
        text += record(i, i >= 7, i < 3);
    int count = 0;
    for (std::size_t i = 11; i < 22; ++i) {
        text += record(i, i >= 15 && i <= 20, i == 21);
        if (i == 21)
            std::memcpy(&count, &data[i * 16 + 8], 4);
    }
    for (int n = 0; n < count; ++n) {
        float v[4];
        std::memcpy(v, &data[22 * 16 + static_cast<std::size_t>(n) * 16], 16);
        char line[64];
        std::snprintf(line, sizeof line, "%10.6f%10.6f%10.6f%10.6f\n", v[0], v[1], v[2], v[3]);
        text += line;
    }
    return true;
}

} // namespace

TEST(SevenParameterShift, MatchesCs2csAndReturns) {
    CoordinateSystem cs;
    cs.ellipsoidIndex = 0; // Airy 1830
    cs.shift = {-446.448, 125.157, -542.06, 0.15, 0.247, 0.842, invertScalePpm(-20.489)};
    SevenParameterShift shift;
    ASSERT_TRUE(shift.open(cs).ok());
    // cs2cs +datum=WGS84 to +ellps=airy +towgs84=446.448,...,-20.489 gives
    // 52.499626127 N, 1.498511869 W.
    double lat = 52.5, lon = -1.5, h = 100;
    ASSERT_TRUE(shift.fromWgs84(lat, lon, h).ok());
    EXPECT_NEAR(lat, 52.499626127, 2e-9);
    EXPECT_NEAR(lon, -1.498511869, 2e-9);
    // Back again: PROJ inverts the small-angle rotation by its transpose,
    // which is good to a few hundredths of a millimetre here.
    ASSERT_TRUE(shift.toWgs84(lat, lon, h).ok());
    EXPECT_NEAR(lat, 52.5, 1e-9);
    EXPECT_NEAR(lon, -1.5, 1e-9);
    EXPECT_NEAR(h, 100, 1e-4);
    EXPECT_FALSE(shift.fromWgs84(lat = 91, lon, h).ok());

    const ToWgs84 written = toWgs84(cs.shift);
    EXPECT_DOUBLE_EQ(written.values[0], 446.448);
    EXPECT_DOUBLE_EQ(written.values[5], 0.842);
    EXPECT_NEAR(written.values[6], -20.489, 1e-9);
}

TEST(ShiftGrids, OpenInterpolateAndRefuse) {
    const tramline::test::ScratchFolder f;
    Status status;
    ShiftGrids grids;
    status = grids.open("Belgium", f.path);
    EXPECT_EQ(status.message,
              "Error: missing datum shift file " + (f.path / "Belgium72_dEast.grd").string());
    std::ofstream(f.path / "Belgium72_dEast.grd") << "49\n2\n52\n7\n1.0\n1.0\n0.1\n0.2\n0.3\n0.4\n";
    status = grids.open("Belgium", f.path);
    EXPECT_EQ(status.message,
              "Error: missing datum shift file " + (f.path / "Belgium72_dNorth.grd").string());
    std::ofstream(f.path / "Belgium72_dNorth.grd") << "49\n2\n52\n7\n1.0\n1.0\n-1\n-1\n-2\n-2\n";
    ASSERT_TRUE(grids.open("Belgium", f.path).ok());
    EXPECT_EQ(grids.size(), 2u);
    std::vector<double> shifts;
    ASSERT_TRUE(grids.shiftsAt(50.5, 4.5, shifts).ok());
    ASSERT_EQ(shifts.size(), 2u);
    EXPECT_NEAR(shifts[0], 0.25, 1e-7);
    EXPECT_NEAR(shifts[1], -1.5, 1e-7);
    EXPECT_EQ(grids.shiftsAt(48, 4.5, shifts).message, "Point is outside the range of the grid");
    EXPECT_EQ(grids.open("Atlantis", f.path).code, StatusCode::NotFound);
    EXPECT_EQ(shiftGridSystems().size(), 9u);
}

TEST(Ntv2Grid, EveryHeaderCheckHasItsMessage) {
    const std::string good = ntv2();
    struct Case {
        const char *what;
        std::string text;
        const char *message;
    };
    const Case cases[] = {
        {"empty", "", "Grid file truncated - header incomplete"},
        {"overview cut short", good.substr(0, good.find("MAJOR_F")),
         "Grid file truncated - header incomplete"},
        {"sub grid header cut short", good.substr(0, good.find("LAT_INC")),
         "Grid file truncated - header incomplete"},
        {"no GS_TYPE", replaced(good, "GS_TYPE SECONDS", "GS_TYPX SECONDS"),
         "Missing GS_TYPE record in grid file header"},
        {"metres", replaced(good, "GS_TYPE SECONDS", "GS_TYPE METRES"),
         "Unsupported GS_TYPE in grid file - must be SECONDS"},
        {"two grids", replaced(good, "NUM_FILE       1", "NUM_FILE       2"),
         "Grid file contains multiple grids - not supported"},
        {"bad NUM_SREC", replaced(good, "NUM_SREC      11", "NUM_SREC      xx"),
         "Invalid NUM_SREC record"},
        {"tiny NUM_SREC", replaced(good, "NUM_SREC      11", "NUM_SREC       3"),
         "Invalid NUM_SREC record"},
        {"zero LAT_INC", replaced(good, "LAT_INC 3600.0", "LAT_INC 0"),
         "Invalid LAT_INC record in sub grid header"},
        {"text LAT_INC", replaced(good, "LAT_INC 3600.0", "LAT_INC abc"),
         "Invalid LAT_INC record in sub grid header"},
        {"no LONG_INC", replaced(good, "LONG_INC3600.0", "LONG_IN 3600.0"),
         "Invalid LONG_INC record in sub grid header"},
        {"count off", replaced(good, "GS_COUNT 6", "GS_COUNT 7"),
         "Invalid GS_COUNT record in sub grid header"},
        {"nodes cut short", ntv2("", "", 5), "Grid file truncated - grid nodes incomplete"},
        {"node of text", replaced(good, "  1.000000", "  1.0x0000"), "Invalid grid node record"},
        {"garbage", std::string(2000, '\xff'), "Grid file truncated - header incomplete"},
    };
    for (const auto &c : cases) {
        std::istringstream in(c.text);
        Ntv2Grid grid;
        const Status status = Ntv2Grid::read(in, grid);
        EXPECT_EQ(status.code, StatusCode::Format) << c.what;
        EXPECT_EQ(status.message, c.message) << c.what;
    }
}

TEST(Ntv2Grid, NodesRunEastToWestThenNorth) {
    std::istringstream in(ntv2());
    Ntv2Grid grid;
    ASSERT_TRUE(Ntv2Grid::read(in, grid).ok());
    double dLat = 0, dLon = 0;
    // The first node is the south-east corner (12 E), the third the south-west (10 E).
    ASSERT_TRUE(grid.shiftAt(40, 12, dLat, dLon).ok());
    EXPECT_NEAR(dLat, 1, 1e-6);
    EXPECT_NEAR(dLon, -10, 1e-6) << "west-positive shifts come out east-positive";
    ASSERT_TRUE(grid.shiftAt(40, 10, dLat, dLon).ok());
    EXPECT_NEAR(dLat, 3, 1e-6);
    ASSERT_TRUE(grid.shiftAt(41, 11, dLat, dLon).ok());
    EXPECT_NEAR(dLat, 5, 1e-6);
    ASSERT_TRUE(grid.shiftAt(40.5, 11.5, dLat, dLon).ok());
    EXPECT_NEAR(dLat, 3, 1e-6);
    EXPECT_EQ(grid.shiftAt(39.9, 11, dLat, dLon).message, "Point is outside the range of the grid");
    EXPECT_FALSE(grid.shiftAt(40.5, 12.1, dLat, dLon).ok());
    double lat = 40, lon = 12;
    ASSERT_TRUE(grid.apply(lat, lon).ok());
    EXPECT_NEAR(lat, 40 + 1 / 3600.0, 1e-12);
    EXPECT_NEAR(lon, 12 - 10 / 3600.0, 1e-12);
}

// A real grid from proj-data, turned into its ASCII form: our reading and
// interpolation agree with PROJ's hgridshift on the binary original.
TEST(Ntv2Grid, AgreesWithProjOnARealGrid) {
    const std::filesystem::path gsb = "/usr/share/proj/BETA2007.gsb";
    std::string text;
    if (!std::filesystem::exists(gsb) || !gsbToAscii(gsb, text))
        GTEST_SKIP() << gsb << " is absent (install proj-data); the NTv2 agreement is not checked";
    std::istringstream in(text);
    Ntv2Grid grid;
    const Status status = Ntv2Grid::read(in, grid);
    ASSERT_TRUE(status.ok()) << status.message;
    PJ_CONTEXT *ctx = proj_context_create();
    PJ *pj = proj_create(ctx, ("+proj=hgridshift +grids=" + gsb.string()).c_str());
    ASSERT_NE(pj, nullptr);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> latitude(grid.southSeconds() / 3600,
                                                    grid.northSeconds() / 3600);
    std::uniform_real_distribution<double> longitude(-grid.westSeconds() / 3600,
                                                     -grid.eastSeconds() / 3600);
    for (int i = 0; i < 200; ++i) {
        double lat = latitude(random), lon = longitude(random);
        const PJ_COORD out =
            proj_trans(pj, PJ_FWD, proj_coord(lon * M_PI / 180, lat * M_PI / 180, 0, 0));
        ASSERT_TRUE(grid.apply(lat, lon).ok());
        // 1e-9 degree is 0.1 mm; the ASCII form keeps shifts to 1e-6".
        EXPECT_NEAR(lat, out.lp.phi * 180 / M_PI, 1e-9);
        EXPECT_NEAR(lon, out.lp.lam * 180 / M_PI, 1e-9);
    }
    proj_destroy(pj);
    proj_context_destroy(ctx);
}

TEST(Ostn02, PairShiftsAndReturns) {
    const tramline::test::ScratchFolder f;
    Ostn02 ostn;
    EXPECT_EQ(ostn.open(f.path).message,
              "Error: missing OSTN file " + (f.path / "ostn02_x.bin").string());
    // 3 x 3 km grid from the origin; shifts grow eastward (x) and northward (y).
    OstnGrid x(4, 4, 0, 0, 1000), y(4, 4, 0, 0, 1000);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            x.setNode(r, c, 90.0f + 0.01f * c);
            y.setNode(r, c, -80.0f + 0.02f * r);
        }
    {
        std::ofstream out(f.path / "ostn02_x.bin", std::ios::binary);
        ASSERT_TRUE(x.write(out));
    }
    EXPECT_EQ(ostn.open(f.path).message,
              "Error: missing OSTN file " + (f.path / "ostn02_y.bin").string());
    {
        std::ofstream out(f.path / "ostn02_y.bin", std::ios::binary);
        ASSERT_TRUE(y.write(out));
    }
    ASSERT_TRUE(ostn.open(f.path).ok());
    double e = 1500, n = 2500;
    ASSERT_TRUE(ostn.toNationalGrid(e, n).ok());
    EXPECT_NEAR(e, 1500 + 90.015, 1e-5);
    EXPECT_NEAR(n, 2500 - 80 + 0.05, 1e-5);
    ASSERT_TRUE(ostn.fromNationalGrid(e, n).ok());
    EXPECT_NEAR(e, 1500, 1e-4);
    EXPECT_NEAR(n, 2500, 1e-4);
    e = 3500;
    EXPECT_EQ(ostn.toNationalGrid(e, n).message, "Error: outside transformation boundary");

    // Truncated and foreign files.
    std::ostringstream whole;
    x.write(whole);
    for (std::size_t size : {std::size_t{0}, std::size_t{20}, whole.str().size() - 2}) {
        std::istringstream cut(whole.str().substr(0, size));
        OstnGrid g;
        EXPECT_EQ(OstnGrid::read(cut, "x", g).code, StatusCode::Format) << size;
    }
    std::istringstream foreign(std::string(100, 'A'));
    OstnGrid g;
    EXPECT_EQ(OstnGrid::read(foreign, "x", g).message, "Error: x is not a grid file");
}

TEST(NadConverter, MissingGridsAndAGridThatIsThere) {
    const tramline::test::ScratchFolder f;
    NadConverter converter;
    Status status = converter.open(f.path, "no_such_grid.tif");
    EXPECT_EQ(status.message, "\nInternal Error1: failed to open NadConverter");
    double lat = 50, lon = 10;
    EXPECT_EQ(converter.convert(lat, lon).message,
              "\nInternal Error1: failed to open NadConverter");

    // Any NTv2 grid in the data folder serves to show the path works.
    const std::filesystem::path gsb = "/usr/share/proj/BETA2007.gsb";
    if (!std::filesystem::exists(gsb))
        GTEST_SKIP() << gsb << " is absent (install proj-data)";
    std::filesystem::copy_file(gsb, f.path / "local.gsb");
    ASSERT_TRUE(converter.open(f.path, "local.gsb").ok());
    ASSERT_TRUE(converter.convert(lat, lon).ok());
    EXPECT_GT(std::fabs(lat - 50) + std::fabs(lon - 10), 1e-6);
    ASSERT_TRUE(converter.convert(lat, lon, true).ok());
    EXPECT_NEAR(lat, 50, 1e-9);
    EXPECT_NEAR(lon, 10, 1e-9);
    lat = 30;
    EXPECT_EQ(converter.convert(lat, lon).message, "Point is outside the range of the grid");
}
