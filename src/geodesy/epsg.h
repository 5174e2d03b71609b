// Coordinate systems taken from the EPSG dataset in PROJ's database
// (proj.db), so that zone constants are the field's published values
// rather than numbers typed into this program.
#pragma once

#include "geodesy/coordinate_system.h"
#include "geodesy/status.h"

#include <string>

namespace tramline::geodesy {

/// Builds the system of the EPSG projected coordinate reference system
/// `code`: projection type and parameters (degrees east of Greenwich,
/// metres, whatever unit the database keeps them in), the ellipsoid (a
/// table entry when one matches, else the system's own), the datum name,
/// and the seven-parameter shift to WGS 84 that the database offers for the
/// system's area without grid files (zero when it offers none).
///
/// Fails with NotFound for a code the database lacks and NotSupported for a
/// method that has no projection type here (polar stereographic variant B, for one).
Status systemFromEpsg(int code, CoordinateSystem &system);

/// The database's name of an EPSG coordinate reference system ("NAD83 /
/// Alabama East"), empty when it has none.
std::string epsgName(int code);

} // namespace tramline::geodesy
