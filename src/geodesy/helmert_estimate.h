// Estimates the seven-parameter shift between WGS 84 and a datum from
// points known on both, in earth-centred coordinates.
#pragma once

#include "geodesy/coordinate_system.h"
#include "geodesy/ellipsoid.h"
#include "geodesy/status.h"

#include <array>
#include <span>

namespace tramline::geodesy {

/// Earth-centred, earth-fixed coordinates (metres) of a position on an
/// ellipsoid: latitude and longitude decimal degrees, height metres.
std::array<double, 3> geodeticToCartesian(const Ellipsoid &ellipsoid, double latitude,
                                          double longitude, double height);

/// One point on both datums, earth-centred (metres).
struct CartesianPair {
    std::array<double, 3> wgs84{};
    std::array<double, 3> datum{};
};

/// Fits, by least squares over all pairs, the small-angle position-vector
/// transformation from the datum to WGS 84 and stores it the way the
/// system record keeps it (translations WGS 84 to datum, rotations in
/// arc-seconds, the inverted scale in ppm; see DatumShift). Three points or
/// more give all seven parameters; one or two give the mean translation
/// only. Fails with InvalidInput when there is no pair.
Status estimateHelmert(std::span<const CartesianPair> pairs, DatumShift &shift);

} // namespace tramline::geodesy
