#include "geodesy/zones.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/epsg.h"
#include "geodesy/messages.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace tramline::geodesy {

namespace {

// State plane zones in the program's order: states alphabetically by their
// names, Alaska last; each state's zones in the order of their zone codes.
// The EPSG codes name the definitions in metres (1983) and the 1927
// definitions as published (Old Hawaiian and Puerto Rico for the islands).
const std::vector<StatePlaneZone> kStatePlane = {
    {"AL East", 26929, 26729},
    {"AL West", 26930, 26730},
    {"AZ East", 26948, 26748},
    {"AZ Central", 26949, 26749},
    {"AZ West", 26950, 26750},
    {"AR North", 26951, 26751},
    {"AR South", 26952, 26752},
    {"CA Zone 1", 26941, 26741},
    {"CA Zone 2", 26942, 26742},
    {"CA Zone 3", 26943, 26743},
    {"CA Zone 4", 26944, 26744},
    {"CA Zone 5", 26945, 26745},
    {"CA Zone 6", 26946, 26746},
    {"CA Zone 7", 0, 26799},
    {"CO North", 26953, 26753},
    {"CO Central", 26954, 26754},
    {"CO South", 26955, 26755},
    {"CT Single Zone", 26956, 26756},
    {"DE Single Zone", 26957, 26757},
    {"FL East", 26958, 26758},
    {"FL West", 26959, 26759},
    {"FL North", 26960, 26760},
    {"GA East", 26966, 26766},
    {"GA West", 26967, 26767},
    {"HI Zone 1", 26961, 3561},
    {"HI Zone 2", 26962, 3562},
    {"HI Zone 3", 26963, 3563},
    {"HI Zone 4", 26964, 3564},
    {"HI Zone 5", 26965, 3565},
    {"ID East", 26968, 26768},
    {"ID Central", 26969, 26769},
    {"ID West", 26970, 26770},
    {"IL East", 26971, 26771},
    {"IL West", 26972, 26772},
    {"IN East", 26973, 26773},
    {"IN West", 26974, 26774},
    {"IA North", 26975, 26775},
    {"IA South", 26976, 26776},
    {"KS North", 26977, 26777},
    {"KS South", 26978, 26778},
    {"KY North", 2205, 26779},
    {"KY South", 26980, 26780},
    {"KY Single Zone", 3088, 0},
    {"LA North", 26981, 26781},
    {"LA South", 26982, 26782},
    {"LA Offshore", 32199, 32099},
    {"ME East", 26983, 26783},
    {"ME West", 26984, 26784},
    {"MD Single Zone", 26985, 26785},
    {"MA Mainland", 26986, 26786},
    {"MA Island", 26987, 26787},
    {"MI East Mercator", 0, 5623},
    {"MI Central Mercator", 0, 5624},
    {"MI West Mercator", 0, 5625},
    {"MI North Lambert", 26988, 6966},
    {"MI Central Lambert", 26989, 6201},
    {"MI South Lambert", 26990, 6202},
    {"MN North", 26991, 26791},
    {"MN Central", 26992, 26792},
    {"MN South", 26993, 26793},
    {"MS East", 26994, 26794},
    {"MS West", 26995, 26795},
    {"MO East", 26996, 26796},
    {"MO Central", 26997, 26797},
    {"MO West", 26998, 26798},
    {"MT Single Zone", 32100, 0},
    {"MT North", 0, 32001},
    {"MT Central", 0, 32002},
    {"MT South", 0, 32003},
    {"NE Single Zone", 32104, 0},
    {"NE North", 0, 32005},
    {"NE South", 0, 32006},
    {"NV East", 32107, 32007},
    {"NV Central", 32108, 32008},
    {"NV West", 32109, 32009},
    {"NH Single Zone", 32110, 32010},
    {"NJ Single Zone", 32111, 32011},
    {"NM East", 32112, 32012},
    {"NM Central", 32113, 32013},
    {"NM West", 32114, 32014},
    {"NY East", 32115, 32015},
    {"NY Central", 32116, 32016},
    {"NY West", 32117, 32017},
    {"NY Long Island", 32118, 4456},
    {"NC Single Zone", 32119, 32019},
    {"ND North", 32120, 32020},
    {"ND South", 32121, 32021},
    {"OH North", 32122, 32022},
    {"OH South", 32123, 32023},
    {"OK North", 32124, 32024},
    {"OK South", 32125, 32025},
    {"OR North", 32126, 32026},
    {"OR South", 32127, 32027},
    {"PA North", 32128, 32028},
    {"PA South", 32129, 4455},
    {"PR Puerto Rico", 32161, 3991},
    {"RI Single Zone", 32130, 32030},
    {"SC Single Zone", 32133, 0},
    {"SC North", 0, 32031},
    {"SC South", 0, 32033},
    {"SD North", 32134, 32034},
    {"SD South", 32135, 32035},
    {"TN Single Zone", 32136, 2204},
    {"TX North", 32137, 32037},
    {"TX North Central", 32138, 32038},
    {"TX Central", 32139, 32039},
    {"TX South Central", 32140, 32040},
    {"TX South", 32141, 32041},
    {"UT North", 32142, 32042},
    {"UT Central", 32143, 32043},
    {"UT South", 32144, 32044},
    {"VT Single Zone", 32145, 32045},
    {"VI St. Croix", 0, 3992},
    {"VA North", 32146, 32046},
    {"VA South", 32147, 32047},
    {"WA North", 32148, 32048},
    {"WA South", 32149, 32049},
    {"WV North", 32150, 32050},
    {"WV South", 32151, 32051},
    {"WI North", 32152, 32052},
    {"WI Central", 32153, 32053},
    {"WI South", 32154, 32054},
    {"WY East", 32155, 32055},
    {"WY East Central", 32156, 32056},
    {"WY West Central", 32157, 32057},
    {"WY West", 32158, 32058},
    {"AK Zone 1", 26931, 26731},
    {"AK Zone 2", 26932, 26732},
    {"AK Zone 3", 26933, 26733},
    {"AK Zone 4", 26934, 26734},
    {"AK Zone 5", 26935, 26735},
    {"AK Zone 6", 26936, 26736},
    {"AK Zone 7", 26937, 26737},
    {"AK Zone 8", 26938, 26738},
    {"AK Zone 9", 26939, 26739},
    {"AK Zone 10", 26940, 26740},
};

// The meridional circuits of New Zealand and the EPSG codes of their
// NZGD2000 definitions; the NZGD49 definitions are 25100 further on.
struct Circuit {
    const char *name;
    int nzgd2000;
};
constexpr Circuit kCircuits[] = {
    {"Amuri", 2119},          {"Bay of Plenty", 2106},     {"Bluff", 2132},
    {"Buller", 2117},         {"Collingwood", 2114},       {"Gawler", 2125},
    {"Grey", 2118},           {"Hawkes Bay", 2108},        {"Hokitika", 2121},
    {"Jacksons Bay", 2123},   {"Karamea", 2116},           {"Lindis Peak", 2127},
    {"Marlborough", 2120},    {"Mount Eden", 2105},        {"Mount Nicholas", 2128},
    {"Mount Pleasant", 2124}, {"Mount York", 2129},        {"Nelson", 2115},
    {"North Taieri", 2131},   {"Observation Point", 2130}, {"Okarito", 2122},
    {"Poverty Bay", 2107},    {"Taranaki", 2109},          {"Timaru", 2126},
    {"Tuhirangi", 2110},      {"Wairarapa", 2112},         {"Wanganui", 2111},
    {"Wellington", 2113},
};
constexpr int kNzgd49Offset = 25100;

struct NamedCode {
    const char *name;
    int code;
};
constexpr NamedCode kFrance[] = {
    {"Lambert I", 27561},   {"Lambert II", 27562}, {"Lambert II - Carto", 27572},
    {"Lambert III", 27563}, {"Lambert IV", 27564},
};

// The Australian grids: a zone number picks the EPSG definition, codes
// base + zone, for zones first to last.
struct AustralianGrid {
    const char *name;
    int base;      // 0 for the Integrated Survey Grid, which EPSG does not hold
    int datumBase; // the AMG definitions whose datum an ISG zone shares
    int first;
    int last;
};
constexpr AustralianGrid kAustralianGrids[] = {
    {"GDA-MGA", 28300, 28300, 48, 58}, {"AGD84-AMG", 20300, 20300, 49, 56},
    {"AGD84-ISG", 0, 20300, 49, 56},   {"AGD66-AMG", 20200, 20200, 49, 58},
    {"AGD66-ISG", 0, 20200, 49, 58},
};

const AustralianGrid *australianGrid(const std::string &name) {
    for (const auto &grid : kAustralianGrids)
        if (name == grid.name)
            return &grid;
    return nullptr;
}

std::string utmZoneLabel(int zone) {
    const int west = -180 + 6 * (zone - 1);
    const int east = west + 6;
    if (east <= 0)
        return format("%d: W %d-%d deg", zone, -east, -west);
    return format("%d: E %d-%d deg", zone, west, east);
}

bool knownPosition(const ZoneOptions &o) {
    return !isUnset(o.latitude) && !isUnset(o.longitude);
}

Status needsGridZone(const std::string &zone) {
    return Status::failure(StatusCode::InvalidInput,
                           format(tr(messages::kZoneNeedsGridZone), zone.c_str()));
}

Status badGridZone(const std::string &gridZone, const std::string &zone) {
    return Status::failure(StatusCode::InvalidInput,
                           format(tr(messages::kBadGridZone), gridZone.c_str(), zone.c_str()));
}

bool parseZoneNumber(const std::string &text, int &zone, int *sub = nullptr) {
    int n = 0, s = 0, used = 0;
    if (sub && std::sscanf(text.c_str(), "%d/%d%n", &n, &s, &used) == 2 &&
        used == static_cast<int>(text.size())) {
        zone = n;
        *sub = s;
        return true;
    }
    if (std::sscanf(text.c_str(), "%d%n", &n, &used) == 1 &&
        used == static_cast<int>(text.size())) {
        zone = n;
        if (sub)
            *sub = 0;
        return true;
    }
    return false;
}

// The Integrated Survey Grid: three 2-degree zones in each 6-degree zone,
// scale 0.99994 on the central meridian, false origin 300 km west and
// 5000 km south. EPSG does not define it, so its constants are set here.
Status isgSystem(const AustralianGrid &grid, const ZoneOptions &options, CoordinateSystem &system) {
    int zone = 0, sub = 0;
    if (!options.gridZone.empty()) {
        if (!parseZoneNumber(options.gridZone, zone, &sub) || sub < 1 || sub > 3)
            return badGridZone(options.gridZone, grid.name);
    } else if (knownPosition(options)) {
        zone = utmZoneForLongitude(options.longitude);
        const double west = -180.0 + 6.0 * (zone - 1);
        sub = std::clamp(static_cast<int>(std::floor((options.longitude - west) / 2.0)) + 1, 1, 3);
    } else {
        return needsGridZone(grid.name);
    }
    if (zone < grid.first || zone > grid.last)
        return badGridZone(options.gridZone.empty() ? std::to_string(zone) : options.gridZone,
                           grid.name);
    CoordinateSystem datumSource;
    if (Status status = systemFromEpsg(grid.datumBase + zone, datumSource); !status)
        return status;
    CoordinateSystem cs = datumSource;
    cs.type = ProjectionType::TransverseMercator;
    cs.parameters = {};
    cs.epsgCode = 0; // a grid of its own, not the datum's zone
    cs.parameters.centralMeridian = -180.0 + 6.0 * (zone - 1) + 2.0 * sub - 1.0;
    cs.parameters.scaleFactor = 0.99994;
    cs.parameters.falseEasting = 300000.0;
    cs.parameters.falseNorthing = 5000000.0;
    cs.name = format("%s %d/%d", grid.name, zone, sub);
    system = std::move(cs);
    return Status::success();
}

Status australianSystem(const AustralianGrid &grid, const ZoneOptions &options,
                        CoordinateSystem &system) {
    if (grid.base == 0)
        return isgSystem(grid, options, system);
    int zone = 0;
    if (!options.gridZone.empty()) {
        if (!parseZoneNumber(options.gridZone, zone))
            return badGridZone(options.gridZone, grid.name);
    } else if (knownPosition(options)) {
        zone = utmZoneForLongitude(options.longitude);
    } else {
        return needsGridZone(grid.name);
    }
    if (zone < grid.first || zone > grid.last)
        return badGridZone(options.gridZone.empty() ? std::to_string(zone) : options.gridZone,
                           grid.name);
    if (Status status = systemFromEpsg(grid.base + zone, system); !status)
        return status;
    system.name = format("%s %d", grid.name, zone);
    return Status::success();
}

Status utmSystem(const std::string &zoneName, const ZoneOptions &options,
                 CoordinateSystem &system) {
    int zone = 0;
    bool south = options.hemisphere == Hemisphere::South;
    if (zoneName == "Automatic") {
        if (!options.gridZone.empty()) {
            if (!parseZoneNumber(options.gridZone, zone) || zone < 1 || zone > 60)
                return badGridZone(options.gridZone, zoneName);
        } else if (knownPosition(options)) {
            zone = utmZoneForLongitude(options.longitude);
            south = options.latitude < 0.0;
        } else {
            return needsGridZone(zoneName);
        }
    } else {
        zone = zonePosition(CoordinateSystemFamily::Utm, zoneName);
    }
    if (Status status = systemFromEpsg((south ? 32700 : 32600) + zone, system); !status)
        return status;
    system.name = format("UTM: %s%s", utmZoneLabel(zone).c_str(), south ? " South" : "");
    return Status::success();
}

} // namespace

const std::vector<StatePlaneZone> &statePlaneZones() {
    return kStatePlane;
}

int utmZoneForLongitude(double longitude) {
    double lon = std::fmod(longitude + 180.0, 360.0);
    if (lon < 0)
        lon += 360.0;
    return std::clamp(static_cast<int>(std::floor(lon / 6.0)) + 1, 1, 60);
}

std::vector<std::string> zoneNames(CoordinateSystemFamily family) {
    std::vector<std::string> names;
    switch (family) {
    case CoordinateSystemFamily::StatePlane83:
    case CoordinateSystemFamily::StatePlane27:
        for (const auto &zone : kStatePlane)
            if ((family == CoordinateSystemFamily::StatePlane83 ? zone.nad83 : zone.nad27) != 0)
                names.emplace_back(zone.name);
        break;
    case CoordinateSystemFamily::Utm:
        names.emplace_back("Automatic");
        for (int zone = 1; zone <= 60; ++zone)
            names.push_back(utmZoneLabel(zone));
        break;
    case CoordinateSystemFamily::GreatBritainOsgb36:
        names.emplace_back("British National Grid");
        break;
    case CoordinateSystemFamily::Australia:
        for (const auto &grid : kAustralianGrids)
            names.emplace_back(grid.name);
        break;
    case CoordinateSystemFamily::AustraliaAgd84:
        names = {"AGD84-AMG", "AGD84-ISG"};
        break;
    case CoordinateSystemFamily::AustraliaAgd66:
        names = {"AGD66-AMG", "AGD66-ISG"};
        break;
    case CoordinateSystemFamily::NewZealandNzgd2000:
    case CoordinateSystemFamily::NewZealandNzgd49:
        names.emplace_back(family == CoordinateSystemFamily::NewZealandNzgd2000
                               ? "NZ Transverse Mercator"
                               : "NZ Map Grid");
        for (const auto &circuit : kCircuits)
            names.emplace_back(circuit.name);
        break;
    case CoordinateSystemFamily::FranceNtf:
        for (const auto &zone : kFrance)
            names.emplace_back(zone.name);
        break;
    case CoordinateSystemFamily::Barbados:
        names.emplace_back("Barbados National Grid");
        break;
    case CoordinateSystemFamily::LatLon:
    case CoordinateSystemFamily::UserDefined:
        break;
    }
    return names;
}

std::string zoneName(CoordinateSystemFamily family, int position) {
    const auto names = zoneNames(family);
    if (position < 0 || static_cast<std::size_t>(position) >= names.size())
        return {};
    return names[static_cast<std::size_t>(position)];
}

int zonePosition(CoordinateSystemFamily family, const std::string &name) {
    const auto names = zoneNames(family);
    const auto it = std::find(names.begin(), names.end(), name);
    return it == names.end() ? -1 : static_cast<int>(it - names.begin());
}

std::string zoneByNameOrPosition(CoordinateSystemFamily family, const std::string &text) {
    if (zonePosition(family, text) >= 0)
        return text;
    int position = -1;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, position);
    if (text.empty() || error != std::errc() || stop != end)
        return text;
    const std::string name = zoneName(family, position);
    return name.empty() ? text : name;
}

Status zoneSystem(CoordinateSystemFamily family, const std::string &zone,
                  const ZoneOptions &options, CoordinateSystem &system) {
    if (zonePosition(family, zone) < 0)
        return Status::failure(StatusCode::NotFound, format(tr(messages::kUnknownZone),
                                                            zone.c_str(), tr(familyName(family))));
    int code = 0;
    switch (family) {
    case CoordinateSystemFamily::StatePlane83:
    case CoordinateSystemFamily::StatePlane27:
        for (const auto &row : kStatePlane)
            if (zone == row.name)
                code = family == CoordinateSystemFamily::StatePlane83 ? row.nad83 : row.nad27;
        break;
    case CoordinateSystemFamily::Utm:
        return utmSystem(zone, options, system);
    case CoordinateSystemFamily::GreatBritainOsgb36:
        code = 27700;
        break;
    case CoordinateSystemFamily::Australia:
    case CoordinateSystemFamily::AustraliaAgd84:
    case CoordinateSystemFamily::AustraliaAgd66:
        if (const AustralianGrid *grid = australianGrid(zone))
            return australianSystem(*grid, options, system);
        break;
    case CoordinateSystemFamily::NewZealandNzgd2000:
    case CoordinateSystemFamily::NewZealandNzgd49: {
        const bool nzgd49 = family == CoordinateSystemFamily::NewZealandNzgd49;
        code = nzgd49 ? 27200 : 2193;
        for (const auto &circuit : kCircuits)
            if (zone == circuit.name)
                code = circuit.nzgd2000 + (nzgd49 ? kNzgd49Offset : 0);
        break;
    }
    case CoordinateSystemFamily::FranceNtf:
        for (const auto &row : kFrance)
            if (zone == row.name)
                code = row.code;
        break;
    case CoordinateSystemFamily::Barbados:
        code = 21292;
        break;
    case CoordinateSystemFamily::LatLon:
    case CoordinateSystemFamily::UserDefined:
        break;
    }
    CoordinateSystem cs;
    if (Status status = systemFromEpsg(code, cs); !status) {
        if (status.code == StatusCode::NotSupported)
            status.message = format(tr(messages::kZoneNotSupported), zone.c_str());
        return status;
    }
    cs.name = format("%s: %s", familyName(family), zone.c_str());
    system = std::move(cs);
    return Status::success();
}

} // namespace tramline::geodesy
