// The square is cut on the model's own nodes, widened to the nodes just
// outside it and clipped to the model, so the small grid interpolates
// exactly like the model inside the square. A size in miles is turned into
// degrees of latitude on the mean equatorial degree, and widened east-west
// by the latitude's cosine so that the square holds that many miles both
// ways.
#include "geodesy/set_geoid_area.h"

#include "base/angles.h"
#include "base/atomic_save.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace tramline::geodesy {

namespace {

constexpr double kMetresPerMile = 1609.344;
constexpr double kMetresPerDegree = 111319.49; // a degree of the WGS 84 equator

Status report(Interaction &ui, StatusCode code, const std::string &message) {
    ui.message(message);
    return Status::failure(code, message);
}

// A 1/0 flag of the ini file as one of a choice's two values; a value that
// is no number leaves the choice alone.
template <typename Choice>
void parseFlag(const std::string &value, Choice whenSet, Choice whenClear, Choice &choice) {
    double v = 0;
    if (parseNumber(value, v))
        choice = v != 0.0 ? whenSet : whenClear;
}

} // namespace

bool loadGeoidAreaSettings(const std::filesystem::path &file, GeoidAreaSettings &settings) {
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return false;
    LineReader reader(in, 222);
    GeoidAreaSettings s = settings;
    std::string line;
    while (reader.next(line)) {
        const auto eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        const std::string key = line.substr(0, eq), value = line.substr(eq + 1);
        double v = 0;
        if (key == "lat_val" && parseNumber(value, v))
            s.latitude = v;
        else if (key == "lon_val" && parseNumber(value, v))
            s.longitude = v;
        else if (key == "is_geoid99" && parseNumber(value, v))
            s.model = static_cast<int>(v);
        else if (key == "size" && parseNumber(value, v))
            s.size = v;
        else if (key == "is_north")
            parseFlag(value, LatitudeSide::North, LatitudeSide::South, s.latitudeSide);
        else if (key == "is_east")
            parseFlag(value, LongitudeSide::East, LongitudeSide::West, s.longitudeSide);
        else if (key == "is_deg")
            parseFlag(value, AreaSizeUnit::Degrees, AreaSizeUnit::Miles, s.sizeUnit);
    }
    settings = s;
    return true;
}

bool saveGeoidAreaSettings(const std::filesystem::path &file, const GeoidAreaSettings &s) {
    std::string text;
    appendFormat(text, "lat_val=%.4f\n", s.latitude);
    appendFormat(text, "lon_val=%.4f\n", s.longitude);
    appendFormat(text, "is_geoid99=%d\n", s.model);
    appendFormat(text, "size=%.2f\n", s.size);
    appendFormat(text, "is_north=%d\n", s.latitudeSide == LatitudeSide::North ? 1 : 0);
    appendFormat(text, "is_east=%d\n", s.longitudeSide == LongitudeSide::East ? 1 : 0);
    appendFormat(text, "is_deg=%d\n", s.sizeUnit == AreaSizeUnit::Degrees ? 1 : 0);
    return saveTextAtomically(file, text);
}

bool askGeoidArea(Interaction &ui, GeoidAreaSettings &settings) {
    std::vector<FormField> fields = {
        {tr("Latitude (dd.mmss)"), format("%.4f", settings.latitude), {}},
        {"",
         settings.latitudeSide == LatitudeSide::North ? tr("North") : tr("South"),
         {tr("North"), tr("South")}},
        {tr("Longitude (dd.mmss)"), format("%.4f", settings.longitude), {}},
        {"",
         settings.longitudeSide == LongitudeSide::East ? tr("East") : tr("West"),
         {tr("West"), tr("East")}},
        {tr("Geoid Size"), format("%.2f", settings.size), {}},
        {"",
         settings.sizeUnit == AreaSizeUnit::Degrees ? tr("Degree") : tr("Miles"),
         {tr("Degree"), tr("Miles")}},
        {tr("Geoid To Process"), std::to_string(settings.model), {}},
    };
    if (!ui.fillForm(tr("Set Geoid Area"), fields))
        return false;
    GeoidAreaSettings s = settings;
    double model = 0;
    if (!parseNumber(fields[0].value, s.latitude) || !parseNumber(fields[2].value, s.longitude) ||
        !parseNumber(fields[4].value, s.size) || !parseNumber(fields[6].value, model))
        return false;
    s.latitudeSide = fields[1].value == tr("North") ? LatitudeSide::North : LatitudeSide::South;
    s.longitudeSide = fields[3].value == tr("East") ? LongitudeSide::East : LongitudeSide::West;
    s.sizeUnit = fields[5].value == tr("Degree") ? AreaSizeUnit::Degrees : AreaSizeUnit::Miles;
    s.model = static_cast<int>(model);
    settings = s;
    return true;
}

Status setGeoidArea(GeoidModels &models, const GeoidAreaSettings &s,
                    const std::filesystem::path &output, Interaction &ui) {
    if (!isGeoidModel(s.model))
        return report(ui, StatusCode::InvalidInput, tr(messages::kGeoidNotSet));
    const double latitude =
        unpackDms(std::fabs(s.latitude)) * (s.latitudeSide == LatitudeSide::North ? 1 : -1);
    const double longitude =
        unpackDms(std::fabs(s.longitude)) * (s.longitudeSide == LongitudeSide::East ? 1 : -1);
    const bool inDegrees = s.sizeUnit == AreaSizeUnit::Degrees;
    const double sizeDegrees = inDegrees ? s.size : s.size * kMetresPerMile / kMetresPerDegree;
    if (sizeDegrees > kMaxGeoidAreaDegrees)
        return report(ui, StatusCode::InvalidInput, tr(messages::kMaxGeoidSize));
    if (!(sizeDegrees > 0) || std::fabs(latitude) > 90.0)
        return report(ui, StatusCode::InvalidInput, tr(messages::kNotWithinCoverage));

    const GeoidGrid *model = nullptr;
    double lookupLongitude = 0;
    Status status = models.gridAt(s.model, latitude, longitude, model, lookupLongitude);
    if (!status) {
        switch (status.code) {
        case StatusCode::OutOfRange:
            return report(ui, status.code, tr(messages::kNotWithinCoverage));
        case StatusCode::NotFound:
            return report(ui, status.code, tr(messages::kUnableToSetModel));
        case StatusCode::Io:
        case StatusCode::Format:
            return report(ui, status.code, tr(messages::kUnableToReadGeoid));
        default:
            return report(ui, status.code, status.message);
        }
    }
    const GridBounds &b = model->bounds();
    // Bring the longitude into the model's range (0..360 or as the grid has it).
    double lon = lookupLongitude;
    for (double candidate : {lookupLongitude, lookupLongitude + 360.0, lookupLongitude - 360.0})
        if (candidate >= b.west && candidate <= b.east)
            lon = candidate;

    const double halfLatitude = sizeDegrees / 2.0;
    const double halfLongitude =
        inDegrees ? halfLatitude
                  : std::min(180.0, halfLatitude / std::max(std::cos(radians(latitude)), 1e-3));
    const double dLat = model->latitudeSpacing(), dLon = model->longitudeSpacing();
    const int firstRow = std::max(
        0, static_cast<int>(std::floor((latitude - halfLatitude - b.south) / dLat + 1e-9)));
    const int lastRow =
        std::min(model->rows() - 1,
                 static_cast<int>(std::ceil((latitude + halfLatitude - b.south) / dLat - 1e-9)));
    const int firstColumn =
        std::max(0, static_cast<int>(std::floor((lon - halfLongitude - b.west) / dLon + 1e-9)));
    const int lastColumn =
        std::min(model->columns() - 1,
                 static_cast<int>(std::ceil((lon + halfLongitude - b.west) / dLon - 1e-9)));
    if (lastRow <= firstRow || lastColumn <= firstColumn)
        return report(ui, StatusCode::OutOfRange, tr(messages::kNotWithinCoverage));

    GridBounds cut;
    cut.south = b.south + firstRow * dLat;
    cut.north = b.south + lastRow * dLat;
    cut.west = b.west + firstColumn * dLon;
    cut.east = b.west + lastColumn * dLon;
    GeoidGrid area(cut, lastRow - firstRow + 1, lastColumn - firstColumn + 1);
    for (int r = firstRow; r <= lastRow; ++r)
        for (int c = firstColumn; c <= lastColumn; ++c)
            area.setNode(r - firstRow, c - firstColumn, model->node(r, c));
    if (!area.save(output))
        return report(ui, StatusCode::Io, tr(messages::kUnableToWriteGeoid));
    ui.message(tr(messages::kDone));
    return Status::success();
}

} // namespace tramline::geodesy
