#include "../support/cli_support.h"
#include "../support/test_support.h"
#include "base/angles.h"
#include "base/format.h"
#include "geodesy/epsg.h"
#include "geodesy/projection.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>
#include <sstream>

using namespace tramline;

namespace {

using test::runCli;

// A site in UTM zone 33 whose local grid is the UTM grid turned by 0.5
// degrees, scaled by 1.00002 and moved; heights are 40.25 m below the
// ellipsoid. Four points carry "--GS," notes or store points, the fifth
// is only measured.
class LocalizeCli : public test::ScratchFolderTest {
protected:
    struct Site {
        double lat, lon, h;
        const char *name;
    };
    static constexpr Site kSite[] = {{52.40, 16.90, 95.0, "1"},
                                     {52.41, 16.90, 96.0, "2"},
                                     {52.40, 16.92, 97.0, "3"},
                                     {52.41, 16.92, 94.0, "4"},
                                     {52.405, 16.91, 95.5, "9"}};

    void local(const Site &s, double &x, double &y, double &z) const {
        geodesy::CoordinateSystem utm;
        EXPECT_TRUE(geodesy::systemFromEpsg(32633, utm));
        geodesy::Projection projection;
        EXPECT_TRUE(projection.open(utm));
        double n = 0, e = 0;
        EXPECT_TRUE(projection.forward(s.lat, s.lon, n, e));
        const double k = 1.00002, a = radians(0.5);
        x = 1000.0 + k * (std::cos(a) * e - std::sin(a) * n);
        y = -5.8e6 + k * (std::sin(a) * e + std::cos(a) * n);
        z = s.h - 40.25;
    }

    std::filesystem::path rawJob(bool storePoints) {
        std::string text = "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n";
        for (const Site &s : kSite) {
            appendFormat(text, "GPS,PN%s,LA%.11f,LN%.11f,EL%.4f,--gps %s\n", s.name,
                         packDms(s.lat, 8), packDms(s.lon, 8), s.h, s.name);
            if (std::string(s.name) == "9")
                continue;
            double x, y, z;
            local(s, x, y, z);
            if (storePoints)
                appendFormat(text, "SP,PN%s,N %.4f,E %.4f,EL%.4f,--\n", s.name, y, x, z);
            else
                appendFormat(text, "--GS,PN%s,N %.4f,E %.4f,EL%.4f\n", s.name, y, x, z);
        }
        return write(storePoints ? "sp.rw5" : "gs.rw5", text);
    }
};

TEST_F(LocalizeCli, FitKeepsTheLocalizationAndGpsProcessingUsesIt) {
    const auto job = rawJob(false);
    const auto loc = dir / "site.dat";
    const auto svg = dir / "site.svg";
    auto r = runCli({"localize", "fit", job.string(), "--epsg", "32633", "--json", "-o",
                     loc.string(), "--plot", svg.string()});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto doc = nlohmann::json::parse(r.out);
    // The notes keep 0.1 mm over a site 1.4 km across.
    EXPECT_NEAR(doc["horizontal"]["scale"].get<double>(), 1.00002, 1e-7);
    EXPECT_NEAR(doc["horizontal"]["rotation"].get<double>(), 0.5, 1e-5);
    EXPECT_LT(doc["maximum_horizontal_residual"].get<double>(), 2e-4); // the notes' 4 decimals
    EXPECT_EQ(doc["points"].size(), 4u);
    EXPECT_TRUE(std::filesystem::exists(dir / "site.ini"));
    std::ifstream picture(svg);
    std::string first;
    std::getline(picture, first);
    EXPECT_EQ(first.rfind("<svg", 0), 0u);

    // The same job with store points instead of notes fits the same.
    r = runCli({"localize", "fit", rawJob(true).string(), "--epsg", "32633", "--report"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find("Over Determination by Plane Similarity"), std::string::npos);

    const auto crd = dir / "site.crd";
    r = runCli({"process", job.string(), "--crd", crd.string(), "--method", "gps", "--localization",
                loc.string(), "--json", "--notes"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(nlohmann::json::parse(r.out)["pointsStored"], 5);
    // Point 9 is the job's tenth line.
    EXPECT_NE(test::slurp(dir / "site.not").find("LINE:10,FILE:" + job.string()),
              std::string::npos);
    const auto list = runCli({"crd", "list", crd.string()});
    double x, y, z;
    local(kSite[4], x, y, z);
    EXPECT_NE(list.out.find(format("9,%.3f", y).substr(0, 12)), std::string::npos)
        << list.out << " expected northing " << y;
}

TEST_F(LocalizeCli, BadInputStoresNothingAndSaysWhy) {
    const auto onlyGps = write("gps.rw5", "GPS,PN1,LA52.2400,LN16.5400,EL95.0,--\n");
    const auto garbage = write("bad.dat", "this is no alignment file\n");
    const auto noPoints = write("none.dat", "");
    const auto onePair = write("one.rw5", "GPS,PN1,LA52.2400,LN16.5400,EL95.0,--\n"
                                          "--GS,PN1,N 5800000,E 600000,EL50\n");
    const auto farAway = write("far.rw5", "GPS,PN1,LA52.2400,LN40.0000,EL95.0,--\n"
                                          "--GS,PN1,N 5800000,E 600000,EL50\n");
    const struct {
        const char *name;
        std::vector<std::string> args;
        const char *err;
    } cases[] = {
        {"raw file without pairs",
         {"localize", "fit", onlyGps.string(), "--epsg", "32633"},
         "No calibration records found"},
        {"garbage alignment file",
         {"localize", "fit", garbage.string(), "--epsg", "32633"},
         "Error: line 1 of the alignment file"},
        {"empty alignment file",
         {"localize", "fit", noPoints.string(), "--epsg", "32633"},
         "Error: Invalid alignment points."},
        {"tilted plane over one point",
         {"localize", "fit", onePair.string(), "--epsg", "32633", "--vertical", "tilted"},
         "Error: Invalid alignment points."},
        {"position outside the zone",
         {"localize", "fit", farAway.string(), "--epsg", "32633"},
         "outside the coordinate system's area (1)"},
        {"gps processing without a localization",
         {"process", onlyGps.string(), "--crd", at("x.crd"), "--method", "gps", "--localization",
          at("missing.dat")},
         "Error: unable to open file"},
    };
    for (const auto &c : cases) {
        const auto r = runCli(c.args);
        EXPECT_EQ(r.code, 1) << c.name;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << c.name << ": " << r.err;
    }
    EXPECT_FALSE(std::filesystem::exists(dir / "x.crd"));
}

} // namespace
