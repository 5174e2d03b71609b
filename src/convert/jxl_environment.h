// The environment at the end of a JobXML job: display settings by the raw
// file's unit, one of the two coordinate-system forms, the job settings
// and the time zone.
#pragma once

#include "base/units.h"
#include "convert/jxl_writer.h"

namespace tramline::convert {

/// The UTM zone on WGS 1984 of a job with GPS positions; `zone` 0 means
/// the scale-only grid.
struct JxlGrid {
    int zone = 0;       ///< 1 to 60
    bool south = false; ///< false northing 10000000
};

/// The UTM zone of a longitude (decimal degrees, east positive).
JxlGrid utmZoneOf(double latitude, double longitude);

void writeJxlDisplaySettings(JxlWriter &out, LinearUnit unit);
void writeJxlEnvironment(JxlWriter &out, LinearUnit unit, const JxlGrid &grid);

} // namespace tramline::convert
