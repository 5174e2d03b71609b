#include "../support/test_support.h"
#include "geodesy/geoid_files.h"
#include "geodesy/geoid_models.h"
#include "loopback_server.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

using namespace tramline::geodesy;
using tramline::testing::LoopbackServer;
using tramline::testing::SilentServer;

namespace {

// A small world grid at 90 degrees whose separation is 10 + latitude / 10,
// so that every lookup can be checked.
const char *kWorld = "-90.0000\n0.0000\n90.0000\n360.0000\n2.0\n4.0\n"
                     "1.0000\n1.0000\n1.0000\n1.0000\n1.0000\n"
                     "10.0000\n10.0000\n10.0000\n10.0000\n10.0000\n"
                     "19.0000\n19.0000\n19.0000\n19.0000\n19.0000\n";

void write(const std::filesystem::path &path, const std::string &text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

struct Folders : tramline::test::ScratchFolder {
    std::filesystem::path data = path / "data";     // the program's data folder
    std::filesystem::path served = path / "server"; // what the server serves
    Folders() {
        std::filesystem::create_directories(data);
        std::filesystem::create_directories(served / "GeoidGrids");
    }
};

std::string refusedServer() {
    return "http://127.0.0.1:" + std::to_string(tramline::testing::freePort()) + "/";
}

} // namespace

TEST(GeoidFiles, UrlIsBaseGeoidGridsAndTheLowerCaseName) {
    EXPECT_EQ(geoidGridUrl("http://h/x/", "Norway15B.grd"), "http://h/x/GeoidGrids/norway15b.grd");
    EXPECT_EQ(geoidGridUrl("http://h/x", "egm96.grd"), "http://h/x/GeoidGrids/egm96.grd");
}

// A grid in the data folder is used as it is; one in its "geoids" folder
// is copied up. No server answers: a download would fail.
TEST(GeoidFiles, PresentOrCopiedFileNeedsNoDownload) {
    const struct {
        const char *where;
        double latitude, longitude, separation;
    } cases[] = {{"", 45, -100, 14.5}, {"geoids", -45, 10, 5.5}};
    for (const auto &c : cases) {
        Folders f;
        write(f.data / c.where / "egm96.grd", kWorld);
        GeoidModels models({f.data, refusedServer(), 5});
        double n = 0;
        const Status status = models.separation(6, c.latitude, c.longitude, n);
        ASSERT_TRUE(status.ok()) << c.where << ": " << status.message;
        EXPECT_NEAR(n, c.separation, 1e-9) << c.where;
        EXPECT_TRUE(std::filesystem::exists(f.data / "egm96.grd")) << c.where;
    }
}

TEST(GeoidFiles, DownloadedFromTheServer) {
    Folders f;
    write(f.served / "GeoidGrids" / "norway15b.grd", kWorld); // the server keeps lower-case names
    LoopbackServer server(f.served);
    if (!server.running())
        GTEST_SKIP() << "python3's http.server could not be started";
    GeoidModels models({f.data, server.base(), 10});
    double n = 0;
    const Status status = models.separation(57, 60, 10, n);
    ASSERT_TRUE(status.ok()) << status.message;
    EXPECT_NEAR(n, 16.0, 1e-9);
    EXPECT_TRUE(std::filesystem::exists(f.data / "Norway15B.grd"));
    EXPECT_FALSE(std::filesystem::exists(f.data / "Norway15B.grd.part"));
}

// A server without the file (404), one that never answers (curl's time-out,
// 28) and none at all (7): the message says which, and nothing that looks
// like a grid is left behind.
TEST(GeoidFiles, FailedDownloadsSayWhy) {
    Folders f;
    LoopbackServer missing(f.served);
    if (!missing.running())
        GTEST_SKIP() << "python3's http.server could not be started";
    SilentServer silent;
    const struct {
        std::string base;
        int seconds;
        const char *error;
    } cases[] = {{missing.base(), 5, "Error 404"},
                 {silent.base(), 2, "Error 28"},
                 {refusedServer(), 5, "Error 7"}};
    for (const auto &c : cases) {
        GeoidModels models({f.data, c.base, c.seconds});
        double n = 0;
        const auto start = std::chrono::steady_clock::now();
        const Status status = models.separation(6, 45, 10, n);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(status.code, StatusCode::Download) << c.error;
        EXPECT_EQ(status.message, std::string(c.error) + ": failed to download geoid from\n" +
                                      c.base + "GeoidGrids/egm96.grd");
        EXPECT_LT(took.count(), 10.0) << c.error << ": the download must give up by its time limit";
        EXPECT_FALSE(std::filesystem::exists(f.data / "egm96.grd")) << c.error;
        EXPECT_FALSE(std::filesystem::exists(f.data / "egm96.grd.part")) << c.error;
    }
}

TEST(GeoidFiles, GpsReductionMessages) {
    Folders f;
    write(f.data / "osgm02.grd", "49.0000\n350.0000\n61.0000\n362.0000\n1.0\n1.0\n1\n2\n3\n4\n");
    GeoidModels models({f.data, refusedServer(), 5});
    double n = 0;
    struct Case {
        int code;
        double latitude, longitude;
        const char *message;
    };
    const Case cases[] = {
        {0, 52, -1, "Warning: Geoid model not set.\nRun Configure Field->GPS Settings."},
        {36, 40, -1,
         "Warning: Beyond set Geoid model area.\nRun Configure Field->GPS Settings to reset."},
        {1, 10, -100,
         "Warning: Beyond set Geoid model area.\nRun Configure Field->GPS Settings to reset."},
        {kAusGeoid98, -35, 149, "Error: AUSGeoid98 Geoid model not installed."},
    };
    for (const auto &c : cases) {
        const Status status = gpsSeparation(models, c.code, c.latitude, c.longitude, n);
        EXPECT_EQ(status.message, c.message) << c.code;
    }
    ASSERT_TRUE(
        gpsSeparation(models, 36, 55, 1, n).ok()); // 1 E is 361 in a grid that runs past 360
    EXPECT_NEAR(n, 35.0 / 12.0, 1e-6);             // 11/12 of the way east, half way north

    // AUSGeoid98 installed, but not where the point is: every tile present,
    // none covers it.
    for (const auto &file : geoidModelFiles(kAusGeoid98))
        write(f.data / file, "-40.0000\n140.0000\n-39.0000\n141.0000\n1.0\n1.0\n1\n1\n1\n1\n");
    EXPECT_EQ(gpsSeparation(models, kAusGeoid98, -35, 149, n).message,
              "Warning: AUSGeoid98 Geoid model not defined for current position.\nRun Configure "
              "Field->GPS Settings.");
    ASSERT_TRUE(gpsSeparation(models, kAusGeoid98, -39.5, 140.5, n).ok());
    EXPECT_NEAR(n, 1.0, 1e-9);
}
