// The observation equations of the plane network: the computed value of a
// distance, azimuth or angle at given coordinates and its derivatives by
// the north and east of the adjust points it involves.
#pragma once

#include "adjust/network.h"

#include <vector>

namespace tramline::adjust {

struct DesignRow {
    int count = 0;      ///< non-zero entries used
    int column[6] = {}; ///< unknowns (north columns even, east odd)
    double value[6] = {};
    double computed = 0;     ///< the observation computed at the coordinates (length or radians)
    bool degenerate = false; ///< two of its points coincide: no direction or derivative
};

/// Row of the Jacobian of `o` at coordinates `north`, `east` (per point of
/// `network`). Distances in the length unit, angles and azimuths in radians.
DesignRow linearize(const Network &network, const std::vector<double> &north,
                    const std::vector<double> &east, const NetworkObservation &o);

/// Observed minus computed, angles brought into -pi..pi.
double misclosure(const NetworkObservation &o, double computed);

} // namespace tramline::adjust
