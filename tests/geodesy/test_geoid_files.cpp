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

struct Folders {
    std::filesystem::path root;
    std::filesystem::path data;   // the program's data folder
    std::filesystem::path served; // what the server serves

    Folders() {
        root = std::filesystem::temp_directory_path() /
               ("tramline-geoid-files-" + std::to_string(::getpid()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        data = root / "data";
        served = root / "server";
        std::filesystem::create_directories(data);
        std::filesystem::create_directories(served / "GeoidGrids");
    }
    ~Folders() { std::filesystem::remove_all(root); }
};

std::string refusedServer() {
    return "http://127.0.0.1:" + std::to_string(tramline::testing::freePort()) + "/";
}

} // namespace

TEST(GeoidFiles, UrlIsBaseGeoidGridsAndTheLowerCaseName) {
    EXPECT_EQ(geoidGridUrl("http://h/x/", "Norway15B.grd"), "http://h/x/GeoidGrids/norway15b.grd");
    EXPECT_EQ(geoidGridUrl("http://h/x", "egm96.grd"), "http://h/x/GeoidGrids/egm96.grd");
}

TEST(GeoidFiles, PresentFileIsUsedAsItIs) {
    Folders f;
    write(f.data / "egm96.grd", kWorld);
    GeoidModels models({f.data, refusedServer(), 5});
    double n = 0;
    ASSERT_TRUE(models.separation(6, 45, -100, n).ok());
    EXPECT_NEAR(n, 14.5, 1e-9);
}

TEST(GeoidFiles, CopiedFromTheGeoidsFolderWithoutDownload) {
    Folders f;
    write(f.data / "geoids" / "egm96.grd", kWorld);
    // No server answers: a download would fail.
    GeoidModels models({f.data, refusedServer(), 5});
    double n = 0;
    const Status status = models.separation(6, -45, 10, n);
    ASSERT_TRUE(status.ok()) << status.message;
    EXPECT_NEAR(n, 5.5, 1e-9);
    EXPECT_TRUE(std::filesystem::exists(f.data / "egm96.grd"));
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

TEST(GeoidFiles, MissingOnTheServer) {
    Folders f;
    LoopbackServer server(f.served);
    if (!server.running())
        GTEST_SKIP() << "python3's http.server could not be started";
    GeoidModels models({f.data, server.base(), 10});
    double n = 0;
    const Status status = models.separation(6, 45, 10, n);
    EXPECT_EQ(status.code, StatusCode::Download);
    EXPECT_EQ(status.message, "Error 404: failed to download geoid from\n" + server.base() +
                                  "GeoidGrids/egm96.grd");
    // Nothing that looks like a grid is left behind.
    EXPECT_FALSE(std::filesystem::exists(f.data / "egm96.grd"));
    EXPECT_FALSE(std::filesystem::exists(f.data / "egm96.grd.part"));
}

TEST(GeoidFiles, ServerThatNeverAnswers) {
    Folders f;
    SilentServer server;
    GeoidModels models({f.data, server.base(), 2});
    double n = 0;
    const auto start = std::chrono::steady_clock::now();
    const Status status = models.separation(6, 45, 10, n);
    const auto seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(status.code, StatusCode::Download);
    EXPECT_EQ(status.message,
              "Error 28: failed to download geoid from\n" + server.base() + "GeoidGrids/egm96.grd");
    EXPECT_LT(seconds, 10.0) << "the download must give up by its time limit";
}

TEST(GeoidFiles, NoServerAtAll) {
    Folders f;
    const std::string base = refusedServer();
    GeoidModels models({f.data, base, 5});
    double n = 0;
    const Status status = models.separation(6, 45, 10, n);
    EXPECT_EQ(status.message,
              "Error 7: failed to download geoid from\n" + base + "GeoidGrids/egm96.grd");
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
