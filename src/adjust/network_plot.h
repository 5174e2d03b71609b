// A picture of an adjusted network as plain SVG text: control points as
// triangles, adjusted points as circles, each named; every observed line;
// the standard error ellipses magnified by a stated factor; the lines and
// points of suspect observations in red. The desktop program shows it and
// the command line writes it, so both show the same picture.
#pragma once

#include "adjust/network.h"
#include "adjust/solve.h"
#include "adjust/statistics.h"

#include <string>

namespace tramline::adjust {

/// The magnification of the ellipses: the largest round factor (1, 2 or 5
/// times a power of ten) that draws the largest semi-major axis within a
/// twentieth of the network's extent.
double ellipseMagnification(const Network &network, const Solution &solution,
                            const NetworkStatistics &statistics);

std::string networkSvg(const Network &network, const Solution &solution,
                       const NetworkStatistics &statistics);

} // namespace tramline::adjust
