#include "convert/text_points_export.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

namespace tramline::convert {

namespace {

const char *const kColumnNames[] = {trNoop("Pt# North East Elev Desc"),
                                    trNoop("Pt# East North Elev Desc"),
                                    trNoop("North East Elev Desc"), trNoop("East North Elev Desc")};
const char *const kShortNames[] = {"PNEZD", "PENZD", "NEZD", "ENZD"};

} // namespace

std::span<const char *const> exportColumnNames() {
    return kColumnNames;
}

bool exportColumnsFrom(std::string_view text, ExportColumns &columns) {
    std::string compact;
    for (char c : text)
        if (c != ',' && c != ' ')
            compact += c;
    for (int i = 0; i < 4; ++i)
        if (text == kColumnNames[i] || equalsIgnoreCase(compact, kShortNames[i])) {
            columns = ExportColumns(i);
            return true;
        }
    return false;
}

std::string formatPointLine(const crd::CrdPoint &point, const TextExportOptions &options) {
    const std::string delimiter(1, options.delimiter);
    const std::string north = format("%.*f", options.decimals, point.northing);
    const std::string east = format("%.*f", options.decimals, point.easting);
    const std::string elevation = format("%.*f", options.decimals, point.elevation);
    const bool northFirst = options.columns == ExportColumns::PointNorthEast ||
                            options.columns == ExportColumns::NorthEast;
    const std::string &first = northFirst ? north : east;
    const std::string &second = northFirst ? east : north;
    const bool withPoint = options.columns == ExportColumns::PointNorthEast ||
                           options.columns == ExportColumns::PointEastNorth;
    const char *d = delimiter.c_str();
    if (withPoint)
        return format("%s%s%s%s%s%s%s%s%s\n", point.name.c_str(), d, first.c_str(), d,
                      second.c_str(), d, elevation.c_str(), d, point.description.c_str());
    return format("%s%s%s%s%s%s%s\n", first.c_str(), d, second.c_str(), d, elevation.c_str(), d,
                  point.description.c_str());
}

std::string defaultRange(std::string_view first, std::string_view last) {
    return format("%s-%s", std::string(first).c_str(), std::string(last).c_str());
}

} // namespace tramline::convert
