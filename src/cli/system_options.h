// How a command names its coordinate system: a zone of a family, an EPSG
// code, or a type with its parameters. Shared by the geo and localize
// commands.
#pragma once

#include "base/unset.h"
#include "cli/command_context.h"
#include "geodesy/coordinate_system.h"

#include <string>
#include <vector>

namespace tramline::cli {

struct SystemOptions {
    std::string family, zone, gridZone;
    bool south = false;
    int type = -1;
    int epsg = 0;
    std::vector<std::string> params;
    std::string ellipsoid, towgs84, name, datum;
    double semiMajorAxis = 0.0, inverseFlattening = 0.0;
};

void addSystemOptions(CLI::App *cmd, SystemOptions &options);

/// Builds the system the options name. Bad usage throws CLI's validation
/// error (exit code 2); a system that cannot be built is reported (1) and
/// gives false. The position (decimal degrees) picks an open grid zone.
bool buildSystem(const SystemOptions &options, CommandContext &ctx,
                 geodesy::CoordinateSystem &system, double latitude = kUnset,
                 double longitude = kUnset);

} // namespace tramline::cli
