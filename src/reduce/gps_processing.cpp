#include "reduce/gps_processing.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <cmath>
#include <fstream>
#include <map>

namespace tramline::reduce {

namespace {

using geodesy::AlignmentPoint;

bool positionOf(const raw::RawNode &node, GpsPosition &p) {
    if (node.type != raw::RecordType::GpsPosition || node.fields.size() < 4)
        return false;
    double lat = 0, lon = 0, h = 0;
    if (!parseNumber(trim(node.fields[1]), lat) || !parseNumber(trim(node.fields[2]), lon) ||
        !parseNumber(trim(node.fields[3]), h) || !isValidDms(lat) || !isValidDms(lon) ||
        !std::isfinite(h))
        return false;
    p.name = std::string(trim(node.fields[0]));
    p.description = node.fields.size() > 4 ? std::string(node.fields[4]) : std::string{};
    p.latitude = unpackDms(lat);
    p.longitude = unpackDms(lon);
    p.height = h;
    p.lineNumber = node.lineNumber;
    return !p.name.empty() && std::abs(p.latitude) <= 90.0;
}

struct GridCoordinates {
    double north = 0, east = 0, elevation = 0;
};

// "--GS,PN101,N 6071733.2196,E 6492430.5665,EL34.8086"
bool gridNote(std::string_view line, std::string &name, GridCoordinates &grid) {
    if (!line.starts_with("--GS,"))
        return false;
    bool hasNorth = false, hasEast = false;
    for (const std::string_view field : split(line.substr(5), ',')) {
        const std::string_view f = trimLeft(field);
        if (f.starts_with("PN"))
            name = std::string(trim(f.substr(2)));
        else if (f.starts_with("N "))
            hasNorth = parseNumber(trim(f.substr(2)), grid.north);
        else if (f.starts_with("E "))
            hasEast = parseNumber(trim(f.substr(2)), grid.east);
        else if (f.starts_with("EL"))
            parseNumber(trim(f.substr(2)), grid.elevation);
    }
    return !name.empty() && hasNorth && hasEast;
}

bool storePoint(const raw::RawNode &node, std::string &name, GridCoordinates &grid) {
    if (node.type != raw::RecordType::StorePoint || node.fields.size() < 3)
        return false;
    name = std::string(trim(node.fields[0]));
    if (node.fields.size() > 3)
        parseNumber(trim(node.fields[3]), grid.elevation);
    return !name.empty() && parseNumber(trim(node.fields[1]), grid.north) &&
           parseNumber(trim(node.fields[2]), grid.east);
}

} // namespace

std::vector<GpsPosition> gpsPositions(const raw::RawFile &file) {
    std::vector<GpsPosition> positions;
    for (const raw::RawNode &node : file.nodes) {
        GpsPosition p;
        if (positionOf(node, p))
            positions.push_back(std::move(p));
    }
    return positions;
}

Status alignmentFromRaw(std::istream &in, geodesy::LocalizationUnits units,
                        geodesy::MultipleMeasurements multiple,
                        std::vector<AlignmentPoint> &points) {
    raw::RawUnits rawUnits;
    std::vector<GpsPosition> gps;
    std::map<std::string, GridCoordinates> grid;
    std::string line;
    std::size_t number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        raw::applyUnitsLine(line, rawUnits);
        std::string name;
        GridCoordinates coordinates;
        if (gridNote(line, name, coordinates)) {
            grid[name] = coordinates;
            continue;
        }
        raw::RawNode node;
        if (!raw::parseRawLine(line, rawUnits, node))
            continue;
        node.lineNumber = number;
        GpsPosition p;
        if (positionOf(node, p)) {
            // Heights in the file's unit at the time the record was read.
            p.height = convertLength(p.height, rawUnits.linear, geodesy::linearUnit(units));
            gps.push_back(std::move(p));
        } else if (storePoint(node, name, coordinates)) {
            grid[name] = coordinates;
        }
    }
    std::vector<AlignmentPoint> paired;
    for (const GpsPosition &p : gps) {
        const auto it = grid.find(p.name);
        if (it == grid.end())
            continue;
        AlignmentPoint a;
        a.latitude = p.latitude;
        a.longitude = p.longitude;
        a.ellipsoidHeight = p.height;
        a.localX = it->second.east;
        a.localY = it->second.north;
        a.localZ = it->second.elevation;
        a.description = p.name.substr(0, geodesy::kAlignmentDescriptionLength);
        paired.push_back(std::move(a));
    }
    if (paired.empty())
        return Status::failure(StatusCode::NotFound, tr("No calibration records found"));
    points = geodesy::mergeRepeatedPoints(paired, multiple);
    return {};
}

Status alignmentFromRawFile(const std::filesystem::path &path, geodesy::LocalizationUnits units,
                            geodesy::MultipleMeasurements multiple,
                            std::vector<AlignmentPoint> &points) {
    std::ifstream in(path, std::ios::binary);
    if (!in || std::filesystem::is_directory(path))
        return Status::failure(StatusCode::NotFound, tr("Error: unable to read raw file"));
    return alignmentFromRaw(in, units, multiple, points);
}

GpsProcessResult processGps(const raw::RawFile &file, const std::string &rawFileName,
                            const geodesy::Localization &localization,
                            const geodesy::GridProjector &projector,
                            crd::CoordinateFile &coordinates) {
    GpsProcessResult result;
    const std::string title = tr("GPS Processing");
    result.report.setTitle(title);
    const std::vector<GpsPosition> positions = gpsPositions(file);
    if (positions.empty()) {
        result.error = tr("No GPS records found");
        return result;
    }
    const LinearUnit target = geodesy::linearUnit(localization.settings.units);
    std::vector<crd::CrdPoint> points;
    std::vector<std::size_t> lines;
    std::string table, warnings;
    appendFormat(table, "%-17.17s %-14.14s %-14.14s %-12.12s %s\n", tr("Point"), tr("Northing"),
                 tr("Easting"), tr("Elevation"), tr("Description"));
    for (const GpsPosition &p : positions) {
        double x = 0, y = 0, z = 0;
        const double height = convertLength(p.height, file.units.linear, target);
        const Status status =
            geodesy::localize(localization, projector, p.latitude, p.longitude, height, x, y, z);
        if (!status) {
            appendFormat(warnings, "%s %s: %s\n", tr("Unable to write point"), p.name.c_str(),
                         status.message.c_str());
            continue;
        }
        crd::CrdPoint point;
        point.set(x, y, z, p.name, p.description);
        points.push_back(point);
        lines.push_back(p.lineNumber);
        appendFormat(table, "%-17.17s %-14.4f %-14.4f %-12.4f %s\n", p.name.c_str(), y, x, z,
                     p.description.c_str());
    }
    if (!points.empty())
        result.pointsStored = coordinates.writePoints(points, crd::Verbosity::Quiet);
    if (localization.settings.pointNotes && result.pointsStored == static_cast<long>(points.size()))
        for (std::size_t i = 0; i < points.size(); ++i)
            coordinates.addNote(points[i].name,
                                format("LINE:%zu,FILE:%s", lines[i], rawFileName.c_str()));
    appendFormat(table, "\n%s: %ld\n", tr("Points stored"), result.pointsStored);
    if (!warnings.empty())
        table += "\nWarnings:\n" + warnings;
    result.report.append(title, table);
    result.ok = result.pointsStored == static_cast<long>(points.size()) && !points.empty();
    if (!result.ok && result.error.empty())
        result.error = points.empty() ? tr("No GPS position could be localized")
                                      : crd::CoordinateFile::errorText(coordinates.lastError());
    return result;
}

} // namespace tramline::reduce
