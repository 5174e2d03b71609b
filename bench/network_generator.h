// Generated plane networks for the least-squares benchmarks: a jittered
// square grid of points about 100 m apart, a distance to the right and the
// lower neighbour of every point, two angles at every interior point (from
// the left neighbour to the upper and to the right one), the four corners
// held fixed, approximations a few centimetres off.
#pragma once

#include "adjust/lsq_file.h"

namespace tramline::bench {

/// A network of about `points` points (the nearest square).
adjust::LsqData generatedNetwork(int points);

} // namespace tramline::bench
