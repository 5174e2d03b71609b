// The reduction of one measurement: slope distance and zenith angle to a
// horizontal distance and a height difference, with the scale factor,
// earth curvature and refraction, and stadia.
#pragma once

namespace tramline::reduce {

struct MeasurementOptions {
    double scaleFactor = 1.0; ///< applied to the horizontal distance only
    bool curvature = false;   ///< correct for earth curvature and refraction
    bool stadia = false;      ///< distances are stadia readings (D sin^2 Z)
    bool metres = false;      ///< distances in metres (else feet)
};

struct ReducedMeasurement {
    double horizontal = 0.0; ///< horizontal distance, file units
    double vertical = 0.0;   ///< height difference instrument to target, positive up
    double zenith = 0.0;     ///< zenith after curvature and refraction, radians
};

/// Reduces slope distance `slope` (file units) at zenith angle `zenith`
/// (radians). With curvature on, the half central angle g of the line and
/// the refraction term bend the zenith: the target's height above the
/// instrument's level surface grows by (1 - k) (D sin Z)^2 / 2R (R the
/// earth's radius, k about 0.14), so a level 1 km sight gives +0.068 m; the
/// horizontal distance is the chord at the instrument's level. The scale
/// factor never touches the height difference.
ReducedMeasurement reduceMeasurement(double slope, double zenith,
                                     const MeasurementOptions &options);

/// The combined factor from a grid scale factor and an ellipsoid height in
/// feet: grid x 20906000 / (20906000 + h), the earth's radius in feet.
double combinedScaleFactor(double gridScaleFactor, double ellipsoidHeightFeet);

} // namespace tramline::reduce
