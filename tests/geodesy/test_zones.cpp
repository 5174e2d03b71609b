#include "geodesy/epsg.h"
#include "geodesy/projection.h"
#include "geodesy/zones.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <string>
#include <vector>

using namespace tramline::geodesy;

// Families are named by their name in any case or by list position.
TEST(Zones, FamilyFromName) {
    EXPECT_EQ(familyFromName("utm"), CoordinateSystemFamily::Utm);
    EXPECT_EQ(familyFromName("12"), CoordinateSystemFamily::AustraliaAgd66);
    EXPECT_FALSE(familyFromName("13"));
    EXPECT_FALSE(familyFromName("Mars"));
}

TEST(Zones, ListsInTheirFixedOrder) {
    struct Case {
        CoordinateSystemFamily family;
        std::size_t size;
        std::vector<std::pair<int, const char *>> samples; // position, name
    };
    const Case cases[] = {
        {CoordinateSystemFamily::Utm,
         61,
         {{0, "Automatic"},
          {1, "1: W 174-180 deg"},
          {2, "2: W 168-174 deg"},
          {30, "30: W 0-6 deg"},
          {31, "31: E 0-6 deg"},
          {57, "57: E 156-162 deg"},
          {60, "60: E 174-180 deg"}}},
        {CoordinateSystemFamily::FranceNtf,
         5,
         {{0, "Lambert I"},
          {1, "Lambert II"},
          {2, "Lambert II - Carto"},
          {3, "Lambert III"},
          {4, "Lambert IV"}}},
        {CoordinateSystemFamily::NewZealandNzgd2000,
         29,
         {{0, "NZ Transverse Mercator"},
          {1, "Amuri"},
          {2, "Bay of Plenty"},
          {5, "Collingwood"},
          {26, "Wairarapa"},
          {28, "Wellington"}}},
        {CoordinateSystemFamily::NewZealandNzgd49, 29, {{0, "NZ Map Grid"}, {1, "Amuri"}}},
        {CoordinateSystemFamily::Australia,
         5,
         {{0, "GDA-MGA"}, {1, "AGD84-AMG"}, {2, "AGD84-ISG"}, {3, "AGD66-AMG"}, {4, "AGD66-ISG"}}},
        {CoordinateSystemFamily::AustraliaAgd84, 2, {{0, "AGD84-AMG"}, {1, "AGD84-ISG"}}},
        {CoordinateSystemFamily::AustraliaAgd66, 2, {{0, "AGD66-AMG"}, {1, "AGD66-ISG"}}},
        {CoordinateSystemFamily::LatLon, 0, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(familyName(c.family));
        EXPECT_EQ(zoneNames(c.family).size(), c.size);
        for (const auto &[position, name] : c.samples) {
            EXPECT_EQ(zoneName(c.family, position), name);
            EXPECT_EQ(zonePosition(c.family, name), position);
        }
        EXPECT_EQ(zoneName(c.family, static_cast<int>(c.size)), "");
        EXPECT_EQ(zoneName(c.family, -1), "");
    }
}

// Users name a zone by name or by list position; anything else comes back
// unchanged so that zoneSystem() can say which zone does not exist.
TEST(Zones, ByNameOrPosition) {
    const struct {
        const char *text, *zone;
    } cases[] = {
        {"0", "GDA-MGA"}, {"4", "AGD66-ISG"}, {"AGD84-AMG", "AGD84-AMG"},
        {"5", "5"},       {"-1", "-1"},       {"99999999999", "99999999999"},
        {"2x", "2x"},     {" 2", " 2"},       {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(zoneByNameOrPosition(CoordinateSystemFamily::Australia, c.text), c.zone)
            << c.text;
}

TEST(Zones, StatePlaneOrder) {
    const auto sp83 = zoneNames(CoordinateSystemFamily::StatePlane83);
    const auto sp27 = zoneNames(CoordinateSystemFamily::StatePlane27);
    ASSERT_GE(sp83.size(), 120u);
    EXPECT_EQ(std::vector<std::string>(sp83.begin(), sp83.begin() + 6),
              (std::vector<std::string>{"AL East", "AL West", "AZ East", "AZ Central", "AZ West",
                                        "AR North"}));
    EXPECT_EQ(sp83[sp83.size() - 11], "WY West");
    EXPECT_EQ(sp83[sp83.size() - 10], "AK Zone 1");
    EXPECT_EQ(sp83.back(), "AK Zone 10");
    EXPECT_EQ(sp27.back(), "AK Zone 10");
    // Zones of one datum only.
    EXPECT_NE(zonePosition(CoordinateSystemFamily::StatePlane83, "KY Single Zone"), -1);
    EXPECT_EQ(zonePosition(CoordinateSystemFamily::StatePlane27, "KY Single Zone"), -1);
    const int east = zonePosition(CoordinateSystemFamily::StatePlane27, "MI East Mercator");
    ASSERT_NE(east, -1);
    EXPECT_EQ(sp27[east + 1], "MI Central Mercator");
    EXPECT_EQ(sp27[east + 3], "MI North Lambert");
    EXPECT_EQ(zonePosition(CoordinateSystemFamily::StatePlane83, "MI East Mercator"), -1);
    // Every name once.
    EXPECT_EQ(std::set<std::string>(sp83.begin(), sp83.end()).size(), sp83.size());
}

// The table's EPSG codes name the zones they claim to: a typo in a code
// would otherwise give a surveyor another state's grid.
TEST(Zones, StatePlaneCodesNameTheirZones) {
    const std::pair<const char *, const char *> states[] = {
        {"AL", "Alabama"},      {"AK", "Alaska"},         {"AZ", "Arizona"},
        {"AR", "Arkansas"},     {"CA", "California"},     {"CO", "Colorado"},
        {"CT", "Connecticut"},  {"DE", "Delaware"},       {"FL", "Florida"},
        {"GA", "Georgia"},      {"HI", "Hawaii"},         {"ID", "Idaho"},
        {"IL", "Illinois"},     {"IN", "Indiana"},        {"IA", "Iowa"},
        {"KS", "Kansas"},       {"KY", "Kentucky"},       {"LA", "Louisiana"},
        {"ME", "Maine"},        {"MD", "Maryland"},       {"MA", "Massachusetts"},
        {"MI", "Michigan"},     {"MN", "Minnesota"},      {"MS", "Mississippi"},
        {"MO", "Missouri"},     {"MT", "Montana"},        {"NE", "Nebraska"},
        {"NV", "Nevada"},       {"NH", "New Hampshire"},  {"NJ", "New Jersey"},
        {"NM", "New Mexico"},   {"NY", "New York"},       {"NC", "North Carolina"},
        {"ND", "North Dakota"}, {"OH", "Ohio"},           {"OK", "Oklahoma"},
        {"OR", "Oregon"},       {"PA", "Pennsylvania"},   {"PR", "Puerto Rico"},
        {"RI", "Rhode Island"}, {"SC", "South Carolina"}, {"SD", "South Dakota"},
        {"TN", "Tennessee"},    {"TX", "Texas"},          {"UT", "Utah"},
        {"VT", "Vermont"},      {"VI", "St. Croix"},      {"VA", "Virginia"},
        {"WA", "Washington"},   {"WV", "West Virginia"},  {"WI", "Wisconsin"},
        {"WY", "Wyoming"},
    };
    for (const auto &zone : statePlaneZones()) {
        const std::string abbreviation = std::string(zone.name).substr(0, 2);
        const char *state = nullptr;
        for (const auto &[a, s] : states)
            if (abbreviation == a)
                state = s;
        ASSERT_NE(state, nullptr) << zone.name;
        for (int code : {zone.nad83, zone.nad27}) {
            if (code == 0)
                continue;
            const std::string name = epsgName(code);
            EXPECT_NE(name.find(state), std::string::npos)
                << zone.name << " -> EPSG:" << code << " " << name;
            if (code == zone.nad83) {
                EXPECT_EQ(name.rfind("NAD83 / ", 0), 0u) << name;
            }
        }
    }
}

TEST(Zones, SystemsComeFromTheDatabase) {
    struct Case {
        CoordinateSystemFamily family;
        const char *zone;
        ProjectionType type;
        int ellipsoid;
        double checkLatitude, checkLongitude, northing, easting; // from PROJ's cs2cs
    };
    const Case cases[] = {
        // cs2cs EPSG:4269 EPSG:26929 on 32.5 -86.0
        {CoordinateSystemFamily::StatePlane83, "AL East", ProjectionType::TransverseMercator,
         kGrs1980, 32.5, -86.0, 221759.6690, 184337.8237},
        // cs2cs EPSG:4267 EPSG:32040 (US feet) on 28.5 -96, converted to metres
        {CoordinateSystemFamily::StatePlane27, "TX South Central",
         ProjectionType::LambertConformalConic2SP, 6, 28.5, -96.0, 254759.8006 * 1200 / 3937,
         2963503.9128 * 1200 / 3937},
        {CoordinateSystemFamily::StatePlane83, "AK Zone 1", ProjectionType::ObliqueMercator83,
         kGrs1980, 57.0, -134.0, 0, 0},
        {CoordinateSystemFamily::GreatBritainOsgb36, "British National Grid",
         ProjectionType::TransverseMercator, -1, 50.5, 0.5, 69740.4923, 577274.9838},
        {CoordinateSystemFamily::FranceNtf, "Lambert II - Carto",
         ProjectionType::LambertConformalConic1SP, 9, 0, 0, 0, 0},
        {CoordinateSystemFamily::NewZealandNzgd2000, "Wellington",
         ProjectionType::TransverseMercator, kGrs1980, 0, 0, 0, 0},
        {CoordinateSystemFamily::Barbados, "Barbados National Grid",
         ProjectionType::TransverseMercator, -1, 0, 0, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.zone);
        CoordinateSystem cs;
        const Status status = zoneSystem(c.family, c.zone, {}, cs);
        ASSERT_TRUE(status.ok()) << status.message;
        EXPECT_EQ(cs.type, c.type);
        if (c.ellipsoid >= 0) {
            EXPECT_EQ(cs.ellipsoidIndex, c.ellipsoid);
        }
        if (c.northing != 0) {
            Projection projection;
            ASSERT_TRUE(projection.open(cs).ok());
            double n = 0, e = 0;
            ASSERT_TRUE(projection.forward(c.checkLatitude, c.checkLongitude, n, e).ok());
            EXPECT_NEAR(n, c.northing, 1e-3);
            EXPECT_NEAR(e, c.easting, 1e-3);
        }
    }
}

TEST(Zones, ShiftsAndMeridians) {
    CoordinateSystem france;
    ASSERT_TRUE(
        zoneSystem(CoordinateSystemFamily::FranceNtf, "Lambert II - Carto", {}, france).ok());
    // The Paris meridian, 2°20'14.025" east of Greenwich.
    EXPECT_NEAR(france.parameters.centralMeridian, 2.3372291666666667, 1e-13);
    EXPECT_NEAR(france.parameters.falseNorthing, 2200000, 1e-6);
    // NTF to WGS 84 is (-168, -60, 320); the record keeps the inverse.
    EXPECT_NEAR(france.shift.dx, 168, 1e-9);
    EXPECT_NEAR(france.shift.dz, -320, 1e-9);

    CoordinateSystem gb;
    ASSERT_TRUE(
        zoneSystem(CoordinateSystemFamily::GreatBritainOsgb36, "British National Grid", {}, gb)
            .ok());
    EXPECT_NEAR(gb.shift.dx, -446.448, 1e-9);
    EXPECT_NEAR(gb.shift.rz, 0.842, 1e-9);
    EXPECT_NEAR(invertScalePpm(gb.shift.scalePpm), -20.489, 1e-9);

    CoordinateSystem nad83;
    ASSERT_TRUE(zoneSystem(CoordinateSystemFamily::StatePlane83, "AL East", {}, nad83).ok());
    EXPECT_TRUE(nad83.shift.isZero());
    EXPECT_EQ(nad83.datum, "NAD83");
}

TEST(Zones, OpenGridZones) {
    struct Case {
        CoordinateSystemFamily family;
        const char *zone;
        ZoneOptions options;
        bool ok;
        double centralMeridian, falseNorthing;
    };
    auto at = [](double lat, double lon) {
        ZoneOptions o;
        o.latitude = lat;
        o.longitude = lon;
        return o;
    };
    auto given = [](const char *gridZone, Hemisphere hemisphere = Hemisphere::North) {
        ZoneOptions o;
        o.gridZone = gridZone;
        o.hemisphere = hemisphere;
        return o;
    };
    const Case cases[] = {
        {CoordinateSystemFamily::Utm, "Automatic", at(52, 13.4), true, 15, 0},
        {CoordinateSystemFamily::Utm, "Automatic", at(-33.9, 151.2), true, 153, 10000000},
        {CoordinateSystemFamily::Utm, "Automatic", given("33"), true, 15, 0},
        {CoordinateSystemFamily::Utm, "Automatic", given("61"), false, 0, 0},
        {CoordinateSystemFamily::Utm, "Automatic", {}, false, 0, 0},
        {CoordinateSystemFamily::Utm, "33: E 12-18 deg", given("", Hemisphere::South), true, 15,
         10000000},
        {CoordinateSystemFamily::Australia, "GDA-MGA", at(-33.9, 151.2), true, 153, 10000000},
        {CoordinateSystemFamily::Australia, "AGD66-AMG", given("55"), true, 147, 10000000},
        {CoordinateSystemFamily::Australia, "AGD66-ISG", at(-33.9, 151.2), true, 151, 5000000},
        {CoordinateSystemFamily::AustraliaAgd84, "AGD84-ISG", given("56/3"), true, 155, 5000000},
        {CoordinateSystemFamily::AustraliaAgd84, "AGD84-ISG", given("56/4"), false, 0, 0},
        {CoordinateSystemFamily::Australia, "GDA-MGA", given("12"), false, 0, 0},
        {CoordinateSystemFamily::Australia, "GDA-MGA", given("x"), false, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.zone) + " " + c.options.gridZone);
        CoordinateSystem cs;
        const Status status = zoneSystem(c.family, c.zone, c.options, cs);
        ASSERT_EQ(status.ok(), c.ok) << status.message;
        if (!c.ok) {
            EXPECT_EQ(status.code, StatusCode::InvalidInput);
            continue;
        }
        EXPECT_NEAR(cs.parameters.centralMeridian, c.centralMeridian, 1e-9);
        EXPECT_NEAR(cs.parameters.falseNorthing, c.falseNorthing, 1e-6);
    }
    EXPECT_EQ(utmZoneForLongitude(-180), 1);
    EXPECT_EQ(utmZoneForLongitude(179.999), 60);
    EXPECT_EQ(utmZoneForLongitude(180), 1);
    EXPECT_EQ(utmZoneForLongitude(0), 31);
    EXPECT_EQ(utmZoneForLongitude(-0.001), 30);
}

TEST(Zones, UnknownAndUnsupportedZones) {
    CoordinateSystem cs;
    Status status = zoneSystem(CoordinateSystemFamily::StatePlane83, "XX Nowhere", {}, cs);
    EXPECT_EQ(status.code, StatusCode::NotFound);
    EXPECT_EQ(status.message, "Error: no zone XX Nowhere in State Plane 83");
    EXPECT_EQ(zoneSystem(CoordinateSystemFamily::LatLon, "", {}, cs).code, StatusCode::NotFound);
    EXPECT_EQ(systemFromEpsg(4326, cs).code, StatusCode::NotFound); // geographic, not projected
    EXPECT_EQ(systemFromEpsg(999999, cs).code, StatusCode::NotFound);
}

namespace {

struct ReferencePoint {
    double latitude, longitude, easting, northing;
};

// The points of a cs2cs listing; with a section, only those under its
// "== section" line.
std::vector<ReferencePoint> referencePoints(const std::string &file, const std::string &section) {
    std::ifstream in(std::string(TRAMLINE_TEST_DATA) + "/geodesy/" + file);
    std::vector<ReferencePoint> points;
    bool inSection = section.empty();
    std::string line;
    while (std::getline(in, line)) {
        if (line.starts_with("#"))
            continue;
        if (line.starts_with("== ")) {
            inSection = line.substr(3) == section;
            continue;
        }
        ReferencePoint p{};
        if (inSection && std::sscanf(line.c_str(), "%lf %lf %lf %lf", &p.latitude, &p.longitude,
                                     &p.easting, &p.northing) == 4)
            points.push_back(p);
    }
    return points;
}

} // namespace

TEST(Zones, GridsAgreeWithProjToAHundredthOfAMillimetre) {
    struct Case {
        const char *name;
        int epsg;
        const char *file;
        const char *section;
        std::size_t points;
    };
    const Case cases[] = {
        // Oblique Mercator with an east-west initial line (Swiss LV95)
        {"CH1903+ / LV95", 2056, "lv95.txt", "", 150},
        {"NZGD49 / New Zealand Map Grid", 27200, "nzmg.txt", "", 40},
        // The Paris meridian
        {"Lambert I", 27561, "ntf-paris.txt", "27561", 8},
        {"Lambert II", 27562, "ntf-paris.txt", "27562", 8},
        {"Lambert II - Carto", 27572, "ntf-paris.txt", "27572", 8},
        {"Lambert III", 27563, "ntf-paris.txt", "27563", 8},
        {"Lambert IV", 27564, "ntf-paris.txt", "27564", 8},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        CoordinateSystem cs;
        const Status status = systemFromEpsg(c.epsg, cs);
        ASSERT_TRUE(status.ok()) << status.message;
        Projection projection;
        ASSERT_TRUE(projection.open(cs).ok());
        const auto points = referencePoints(c.file, c.section);
        ASSERT_EQ(points.size(), c.points);
        for (const auto &p : points) {
            double n = 0, e = 0, lat = 0, lon = 0;
            ASSERT_TRUE(projection.forward(p.latitude, p.longitude, n, e).ok());
            EXPECT_NEAR(e, p.easting, 1e-5) << p.latitude << ' ' << p.longitude;
            EXPECT_NEAR(n, p.northing, 1e-5) << p.latitude << ' ' << p.longitude;
            ASSERT_TRUE(projection.inverse(p.northing, p.easting, lat, lon).ok());
            EXPECT_NEAR(lat, p.latitude, 1e-9);
            EXPECT_NEAR(lon, p.longitude, 1e-9);
        }
    }
}

TEST(Zones, NewZealandMapGridIsAZone) {
    CoordinateSystem cs;
    const Status status =
        zoneSystem(CoordinateSystemFamily::NewZealandNzgd49, "NZ Map Grid", {}, cs);
    ASSERT_TRUE(status.ok()) << status.message;
    EXPECT_EQ(cs.type, ProjectionType::NewZealandMapGrid);
    Projection projection;
    ASSERT_TRUE(projection.open(cs).ok());
    double n = 0, e = 0;
    // cs2cs EPSG:4272 EPSG:27200 at the grid's origin
    ASSERT_TRUE(projection.forward(-41, 173, n, e).ok());
    EXPECT_NEAR(e, 2510000, 1e-5);
    EXPECT_NEAR(n, 6023150, 1e-5);
}
