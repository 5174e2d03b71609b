// Points of the coordinate file as delimited text, in one of four column
// orders.
//
// Usage from the command line:
//   tramline-cli points export text X.crd -o FILE [--order ...] [--delimiter comma|space]
//                                          [--decimals N] [--range A-B]
#pragma once

#include "crd/crd_point.h"

#include <span>
#include <string>
#include <string_view>

namespace tramline::convert {

enum class ExportColumns {
    PointNorthEast, ///< "Pt# North East Elev Desc" (the default)
    PointEastNorth, ///< "Pt# East North Elev Desc"
    NorthEast,      ///< "North East Elev Desc"
    EastNorth,      ///< "East North Elev Desc"
};

/// The four orders' names as the export dialog shows them, in enum order.
std::span<const char *const> exportColumnNames();

/// The order for a name of exportColumnNames() or a short form ("PNEZD",
/// "PENZD", "NEZD", "ENZD", any case). False when neither.
bool exportColumnsFrom(std::string_view text, ExportColumns &columns);

struct TextExportOptions {
    ExportColumns columns = ExportColumns::PointNorthEast;
    char delimiter = ','; ///< ',' or ' '
    int decimals = 5;     ///< for northing, easting and elevation
};

/// One point's line, with its "\n".
std::string formatPointLine(const crd::CrdPoint &point, const TextExportOptions &options);

/// The default range: the first and last point names joined by "-".
std::string defaultRange(std::string_view first, std::string_view last);

} // namespace tramline::convert
