#include "geodesy/geoid_model.h"

#include <gtest/gtest.h>

#include <map>

using namespace tramline::geodesy;

namespace {

// Headers of the searched models, as their files would give them.
GridBoundsReader headers(std::map<std::string, GridBounds> files) {
    return [files](const std::string &file, GridBounds &bounds) {
        auto it = files.find(file);
        if (it == files.end())
            return false;
        bounds = it->second;
        return true;
    };
}

} // namespace

TEST(GeoidModel, FileChoice) {
    struct Case {
        int code;
        double latitude, longitude;
        const char *file;
        double lookupLongitude;
    };
    const Case cases[] = {
        {6, 45, -100, "egm96.grd", 260},
        {7, 0, 10, "egm08n.grd", 10}, // the equator belongs to the north
        {7, -0.0001, 10, "egm08s.grd", 10},
        {1, 45, -100, "g1999u02.grd", 260}, // -100 is 260 east: second band
        {1, 30, -100, "g1999u06.grd", 260},
        {1, 41, -100, "g1999u06.grd", 260}, // on an edge shared by two bands the later wins
        {1, 41, -112, "g1999u06.grd", 248}, // a corner of four tiles: the last band holding it
        {1, 24, -60, "g1999u08.grd", 300},
        {1, 64, -150, "g1999a03.grd", 210},
        {1, 20, -156, "g1999h01.grd", 204},
        {1, 18, -66, "g1999p01.grd", 294},
        {2, 35, -80, "g2003u07.grd", 280},
        {3, 61, -140, "g2006a04.grd", 220},
        {4, 13.5, 144.8, "g2009g01.grd", 144.8},
        {4, -14.3, -170.7, "g2009s01.grd", 189.3},
        {5, 35, -120, "g2012au5.grd", 240},
        {5, 18.2, -66.5, "g2012bp0.grd", 293.5},
        {27, 45, -100, "france.grd", -100}, // the French models take longitudes as given
        {28, 45, -1, "raf09.grd", -1},
        {57, 60, 10, "Norway15B.grd", 10},
        {78, 46.8, 8.2, "swiss04.grd", 8.2},
    };
    for (const auto &c : cases) {
        GeoidFileChoice choice;
        const Status status = chooseGeoidFile(c.code, c.latitude, c.longitude, nullptr, choice);
        ASSERT_TRUE(status.ok()) << c.code << " " << c.latitude << " " << c.longitude << ": "
                                 << status.message;
        EXPECT_EQ(choice.file, c.file) << c.code << " " << c.latitude << " " << c.longitude;
        EXPECT_DOUBLE_EQ(choice.longitude, c.lookupLongitude) << c.code;
    }
}

TEST(GeoidModel, OutsideAndUnknown) {
    GeoidFileChoice choice;
    Status status = chooseGeoidFile(1, 10, -100, nullptr, choice);
    EXPECT_EQ(status.code, StatusCode::OutOfRange);
    EXPECT_EQ(status.message, "Error: beyond area covered by GEOID99");
    status = chooseGeoidFile(3, 45, -100, nullptr, choice); // GEOID06 is Alaska only
    EXPECT_EQ(status.message, "Error: beyond area covered by GEOID06");
    for (int code : {0, -1, 79}) {
        status = chooseGeoidFile(code, 45, 10, nullptr, choice);
        EXPECT_EQ(status.code, StatusCode::NotFound);
        EXPECT_EQ(status.message, "Error: unable to find geoid model");
    }
    EXPECT_EQ(beyondAreaMessage(6), "Error: beyond area covered by egm96.grd");
}

TEST(GeoidModel, SearchedModels) {
    // AUSGeoid98: tiles 49..57, ten series each, searched in that order.
    const auto reader = headers({
        {"au_sc49.grd", {-20, 112, -10, 120}},
        {"au_sd49.grd", {-30, 112, -20, 120}},
        {"au_se49.grd", {-40, 112, -30, 120}},
        {"au_sf49.grd", {-40, 120, -30, 126}},
        {"au_sg49.grd", {-40, 126, -30, 132}},
        {"au_sh49.grd", {-40, 132, -30, 138}},
        {"au_si49.grd", {-40, 138, -30, 144}},
        {"au_sj49.grd", {-40, 144, -30, 150}},
        {"au_sk49.grd", {-40, 150, -30, 156}},
        {"au_sl49.grd", {-45, 140, -40, 150}},
        {"au_sc50.grd", {-20, 120, -10, 130}},
    });
    GeoidFileChoice choice;
    ASSERT_TRUE(chooseGeoidFile(kAusGeoid98, -35, 149, reader, choice).ok());
    EXPECT_EQ(choice.file, "au_sj49.grd");
    ASSERT_TRUE(chooseGeoidFile(kAusGeoid98, -15, 125, reader, choice).ok());
    EXPECT_EQ(choice.file, "au_sc50.grd");
    // The search stops at the first file it cannot open (au_sd50).
    Status status = chooseGeoidFile(kAusGeoid98, -60, 125, reader, choice);
    EXPECT_EQ(status.code, StatusCode::NotFound);

    const auto caribbean =
        headers({{"carib97e.grd", {9, 290, 28, 302}}, {"carib97w.grd", {9, 262, 28, 290}}});
    ASSERT_TRUE(chooseGeoidFile(21, 18, -70, caribbean, choice).ok());
    EXPECT_EQ(choice.file, "carib97e.grd");
    ASSERT_TRUE(chooseGeoidFile(21, 18, -80, caribbean, choice).ok());
    EXPECT_EQ(choice.file, "carib97w.grd");
    EXPECT_EQ(chooseGeoidFile(21, 40, -80, caribbean, choice).message,
              "Error: beyond area covered by CARIB97");
}

TEST(GeoidModel, FilesOfTheModels) {
    EXPECT_EQ(geoidModelFiles(6), std::vector<std::string>{"egm96.grd"});
    const auto geoid99 = geoidModelFiles(1);
    ASSERT_EQ(geoid99.size(), 14u);
    EXPECT_EQ(geoid99.front(), "g1999u01.grd");
    EXPECT_EQ(geoid99[8], "g1999a01.grd");
    EXPECT_EQ(geoidModelFiles(kAusGeoid98).size(), 90u);
    EXPECT_EQ(geoidModelFiles(kAusGeoid98).front(), "au_sc49.grd");
    EXPECT_EQ(geoidModelFiles(kAusGeoid98).back(), "au_sl57.grd");
    EXPECT_TRUE(geoidModelFiles(79).empty());
    for (int code = kFirstGeoidModel; code <= kLastGeoidModel; ++code) {
        EXPECT_FALSE(geoidModelFiles(code).empty()) << code;
        EXPECT_FALSE(geoidModelName(code).empty()) << code;
    }
}
