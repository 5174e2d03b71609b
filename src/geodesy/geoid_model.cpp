#include "geodesy/geoid_model.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <cmath>

namespace tramline::geodesy {

namespace {

// Files of the one-file models 6 to 78 (code 7 has two hemispheres, code
// 10 is searched, code 21 has two halves found by their headers).
const char *const kSingleFiles[] = {
    /* 6 */ "egm96.grd",
    nullptr,
    "osu91a.grd",
    "albuquerque08.grd",
    nullptr,
    "aus09.grd",
    "coconima.grd",
    "hBG03.grd",
    "mapgeo2010_minas.grd",
    "cgg2013.grd",
    "cgg2010.grd",
    "cngeoid.grd",
    "ht2_0.grd",
    "ht1_01.grd",
    "gsd95.grd",
    nullptr,
    "hrg2009.grd",
    "trst.grd",
    "fin2000.grd",
    "fin2005.grd",
    "fprngd16.grd",
    "france.grd",
    "raf09.grd",
    "fr_guy00.grd",
    "qm2012.grd",
    "bayern.grd",
    "nn07_by.grd",
    "nhn07_by.grd",
    "gcg05.grd",
    "gcg05_kueste.grd",
    "osgm02.grd",
    "iceland_2011v1.grd",
    "osgm_roi.grd",
    "osgm_ni.grd",
    "israel.grd",
    "korea13.grd",
    "lv98.grd",
    "lv14.grd",
    "lv15.grd",
    "ltu_gmatas.grd",
    "emgg05a.grd",
    "mexico97.grd",
    "nl2004.grd",
    "nl2008.grd",
    "newcaldn.grd",
    "newcal08.grd",
    "newz05.grd",
    "newz09.grd",
    "norway07.grd",
    "norway08.grd",
    "norwayN2000.grd",
    "Norway15B.grd",
    "Norway16A.grd",
    "png08.grd",
    "poland.grd",
    "poland2011.grd",
    "portgl08.grd",
    "romanian_ETRS89v102.grd",
    "RUSSIA_NWRF.grd",
    "sgeoid09.grd",
    "slovakian.grd",
    "slovenia.grd",
    "sa2010.grd",
    "cat10060.grd",
    "cat70260.grd",
    "egm08_rednap.grd",
    "egm08_rednap_canarias.grd",
    "swen08_rh00fs.grd",
    "swen08_rh70.grd",
    "swen08_rh2000.grd",
    "swen05_rh70.grd",
    "swen05_rh2000.grd",
    "swiss04.grd"};
static_assert(sizeof kSingleFiles / sizeof kSingleFiles[0] == kLastGeoidModel - 5);

// A tile of a tiled model and the area it answers for (degrees, longitudes
// positive east). Bounds are inclusive; where bands share an edge the later
// one wins.
struct Band {
    double south, north, west, east;
    const char *file;
};

// The conterminous tiles share their bands across the US models: two rows
// of four, 17 degrees of latitude by 17 or 18 of longitude.
std::vector<Band> conterminousBands() {
    const double west[] = {230, 248, 265, 282, 300};
    std::vector<Band> bands;
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 4; ++column)
            bands.push_back({row == 0 ? 41.0 : 24.0, row == 0 ? 58.0 : 41.0, west[column],
                             west[column + 1], nullptr});
    return bands;
}

// Alaska from 60 north, four bands of 15 degrees; the islands' own bands.
const Band kAlaska[] = {{60, 72, 172, 187, "a01"},
                        {60, 72, 187, 202, "a02"},
                        {60, 72, 202, 217, "a03"},
                        {60, 72, 217, 232, "a04"}};
const Band kHawaii = {18, 23, 199, 206, "h"};
const Band kPuertoRico = {17, 19, 291, 296, "p"};
const Band kGuam = {12, 16, 143, 147, "g"};
const Band kSamoa = {-16, -12, 186, 192, "s"};

struct TiledModel {
    const char *name;
    const char *prefix;       // "g1999"
    const char *conterminous; // "u0%d", "au%d" or nullptr
    bool alaska;
    const char *hawaii, *puertoRico, *guam, *samoa; // file stems, nullptr when absent
};

const TiledModel kTiled[] = {
    {"GEOID99", "g1999", "u0%d", true, "h01", "p01", nullptr, nullptr},
    {"GEOID03", "g2003", "u0%d", true, "h01", "p01", nullptr, nullptr},
    {"GEOID06", "g2006", nullptr, true, nullptr, nullptr, nullptr, nullptr},
    {"GEOID09", "g2009", "u0%d", true, "h01", nullptr, "g01", "s01"},
    {"GEOID12", "g2012", "au%d", true, "h00", "bp0", "g00", "s00"},
};

const char *const kAusSeries[] = {"c", "d", "e", "f", "g", "h", "i", "j", "k", "l"};

bool inBand(const Band &b, double latitude, double longitude) {
    return latitude >= b.south && latitude <= b.north && longitude >= b.west && longitude <= b.east;
}

Status notFound() {
    return Status::failure(StatusCode::NotFound, tr(messages::kModelNotFound));
}

std::string tileFile(const TiledModel &m, const std::string &stem) {
    return std::string(m.prefix) + stem + ".grd";
}

} // namespace

bool isGeoidModel(int code) {
    return code >= kFirstGeoidModel && code <= kLastGeoidModel;
}

std::string geoidModelName(int code) {
    if (code >= 1 && code <= 5)
        return kTiled[code - 1].name;
    switch (code) {
    case 7:
        return "EGM2008";
    case kAusGeoid98:
        return "AUSGeoid98";
    case 21:
        return "CARIB97";
    default:
        break;
    }
    if (isGeoidModel(code) && kSingleFiles[code - 6])
        return kSingleFiles[code - 6];
    return {};
}

std::vector<std::string> geoidModelFiles(int code) {
    std::vector<std::string> files;
    if (code >= 1 && code <= 5) {
        const TiledModel &m = kTiled[code - 1];
        if (m.conterminous)
            for (int tile = 1; tile <= 8; ++tile)
                files.push_back(tileFile(m, format(m.conterminous, tile)));
        if (m.alaska)
            for (const auto &band : kAlaska)
                files.push_back(tileFile(m, band.file));
        for (const char *stem : {m.hawaii, m.guam, m.samoa, m.puertoRico})
            if (stem)
                files.push_back(tileFile(m, stem));
        return files;
    }
    switch (code) {
    case 7:
        return {"egm08n.grd", "egm08s.grd"};
    case kAusGeoid98:
        for (int tile = 49; tile <= 57; ++tile)
            for (const char *series : kAusSeries)
                files.push_back(format("au_s%s%d.grd", series, tile));
        return files;
    case 21:
        return {"carib97e.grd", "carib97w.grd"};
    default:
        break;
    }
    if (isGeoidModel(code) && kSingleFiles[code - 6])
        files.emplace_back(kSingleFiles[code - 6]);
    return files;
}

std::string beyondAreaMessage(int code) {
    return std::string(tr(messages::kBeyondArea)) + " " + geoidModelName(code);
}

Status chooseGeoidFile(int code, double latitude, double longitude,
                       const GridBoundsReader &readBounds, GeoidFileChoice &choice) {
    if (!isGeoidModel(code))
        return notFound();
    // Grids count longitudes east from 0 to 360, but for the two French
    // models, which take them as given.
    double lon = longitude;
    if (lon < 0 && code != 27 && code != 28)
        lon += 360.0;
    const Status beyond = Status::failure(StatusCode::OutOfRange, beyondAreaMessage(code));

    if (code >= 1 && code <= 5) {
        const TiledModel &m = kTiled[code - 1];
        std::string stem;
        if (m.conterminous) {
            static const auto bands = conterminousBands();
            for (std::size_t i = 0; i < bands.size(); ++i)
                if (inBand(bands[i], latitude, lon))
                    stem = format(m.conterminous, static_cast<int>(i) + 1);
        }
        if (m.alaska && latitude >= 60.0)
            for (const auto &band : kAlaska)
                if (inBand(band, latitude, lon))
                    stem = band.file;
        const std::pair<const Band &, const char *> islands[] = {
            {kHawaii, m.hawaii}, {kPuertoRico, m.puertoRico}, {kGuam, m.guam}, {kSamoa, m.samoa}};
        for (const auto &[band, file] : islands)
            if (file && inBand(band, latitude, lon))
                stem = file;
        if (stem.empty())
            return beyond;
        choice = {tileFile(m, stem), lon};
        return Status::success();
    }
    if (code == 7) {
        choice = {latitude >= 0.0 ? "egm08n.grd" : "egm08s.grd", lon};
        return Status::success();
    }
    if (code == kAusGeoid98 || code == 21) {
        for (const auto &file : geoidModelFiles(code)) {
            GridBounds bounds;
            if (!readBounds || !readBounds(file, bounds))
                return notFound();
            if (bounds.contains(latitude, lon)) {
                choice = {file, lon};
                return Status::success();
            }
        }
        return beyond;
    }
    choice = {kSingleFiles[code - 6], lon};
    return Status::success();
}

} // namespace tramline::geodesy
