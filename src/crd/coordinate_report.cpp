#include "crd/coordinate_report.h"

#include "base/format.h"
#include "base/translation.h"

#include <fstream>

namespace tramline::crd {

std::string coordinateReport(const std::vector<CrdPoint> &points, std::string_view fileName,
                             CoordinateOrder order) {
    const auto columns = pointColumns(order);
    std::string text = tr("Coordinates");
    appendFormat(text, "\n%s: %s\n", tr("File"), std::string(fileName).c_str());
    appendFormat(text, "%s: %zu\n\n", tr("Points"), points.size());
    const char *first = columns[1] == PointField::Easting ? tr("Easting") : tr("Northing");
    const char *second = columns[2] == PointField::Easting ? tr("Easting") : tr("Northing");
    appendFormat(text, "%-10s %15s %15s %12s  %s\n", tr("PntNo"), first, second, tr("Elevation"),
                 tr("Description"));
    for (const auto &p : points)
        appendFormat(text, "%-10s %15s %15s %12s  %s\n", p.name.c_str(),
                     pointFieldText(p, columns[1]).c_str(), pointFieldText(p, columns[2]).c_str(),
                     pointFieldText(p, PointField::Elevation).c_str(), p.description.c_str());
    return text;
}

Status printCoordinates(CoordinateFile &file, std::string_view fileName, CoordinateOrder order,
                        const std::filesystem::path &workingFolder, std::string &report) {
    std::vector<CrdPoint> points;
    if (!readAllPoints(file, points))
        return Status::failure(StatusCode::Io, errorText(file.lastError()));
    report = coordinateReport(points, fileName, order);
    const auto target = workingFolder / "morvrprt.tmp";
    std::ofstream out(target, std::ios::binary | std::ios::trunc);
    if (!(out << report) || !out.flush())
        return Status::failure(StatusCode::Io,
                               format(tr("Can't open output file %s"), target.string().c_str()));
    return Status::success();
}

} // namespace tramline::crd
