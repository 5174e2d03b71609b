// The zone lists of the predefined families, in their fixed order, and the
// coordinate system of a zone. Zone constants come from PROJ's database
// (see epsg.h); the lists themselves (names and order) are the program's.
#pragma once

#include "base/unset.h"
#include "geodesy/coordinate_system.h"
#include "geodesy/coordinate_system_family.h"
#include "geodesy/status.h"

#include <string>
#include <vector>

namespace tramline::geodesy {

/// The zone names of a family in their fixed order. The state plane lists
/// hold the zones that exist on the family's datum; Lat/Lon and the
/// user-defined family have no list.
std::vector<std::string> zoneNames(CoordinateSystemFamily family);

/// The name at `position` (0 is the first) of the family's list; an empty
/// name past the end or before the start.
std::string zoneName(CoordinateSystemFamily family, int position);

/// The position of `name` in the family's list; -1 when it is not there.
int zonePosition(CoordinateSystemFamily family, const std::string &name);

/// The zone a user names by its name, or else by its position in the
/// family's list ("0" is the first); `text` itself when it is neither, so
/// that zoneSystem() reports it. Positions of any length are safe.
std::string zoneByNameOrPosition(CoordinateSystemFamily family, const std::string &text);

enum class Hemisphere { North, South };

/// What chooses the grid zone where a list entry leaves it open (UTM
/// "Automatic", and the Australian grids, whose entries name a grid rather
/// than one zone).
struct ZoneOptions {
    /// A grid zone: a UTM/MGA/AMG zone number ("55") or an ISG zone
    /// ("56/2"); empty to take it from the position.
    std::string gridZone;
    /// For UTM: the southern hemisphere has a false northing of 10 000 km.
    /// "Automatic" takes the hemisphere from the position instead.
    Hemisphere hemisphere = Hemisphere::North;
    /// A position inside the zone, decimal degrees, north and east
    /// positive; unset when not known.
    double latitude = kUnset;
    double longitude = kUnset;
};

/// The coordinate system of the zone `zone` (a name of the family's list)
/// of `family`. Fails with NotFound for a name that is not in the list,
/// NotSupported for a zone whose projection has no type here ("NZ Map
/// Grid"), and InvalidInput when an open grid zone is neither given nor
/// follows from a position.
Status zoneSystem(CoordinateSystemFamily family, const std::string &zone,
                  const ZoneOptions &options, CoordinateSystem &system);

/// The UTM zone (1 to 60) of a longitude in decimal degrees east.
int utmZoneForLongitude(double longitude);

/// One row of the state plane table: the zone's name and the EPSG codes of
/// its 1983 (metres) and 1927 definitions (0 where the zone does not exist
/// on that datum).
struct StatePlaneZone {
    const char *name;
    int nad83;
    int nad27;
};
const std::vector<StatePlaneZone> &statePlaneZones();

} // namespace tramline::geodesy
