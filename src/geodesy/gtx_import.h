// Converting PROJ's vertical grids (the GTX files proj-data installs, such
// as egm96_15.gtx) into the program's ".grd" geoid grids, so that a user
// without the update server can build a model from them.
//
// GTX is a plain big-endian layout: six header values (south latitude,
// west longitude, latitude spacing, longitude spacing as doubles; rows and
// columns as 32-bit integers), then rows x columns 32-bit floats, rows
// from south to north, each row from west to east; -88.8888 marks a node
// without data.
#pragma once

#include "geodesy/geoid_grid.h"
#include "geodesy/status.h"

#include <filesystem>
#include <istream>

namespace tramline::geodesy {

/// Reads a GTX grid. A grid that goes round the world gets a closing
/// column at 360 degrees and longitudes from 0 to 360; a regional one keeps
/// its longitudes, moved into 0 to 360 when it lies wholly east or west of
/// Greenwich. Fails with Format for a short or inconsistent file.
Status readGtx(std::istream &in, const std::string &name, GeoidGrid &grid);

/// Converts the GTX file `source` into the ".grd" file `destination`.
Status importGtx(const std::filesystem::path &source, const std::filesystem::path &destination);

} // namespace tramline::geodesy
