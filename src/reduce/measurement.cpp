#include "reduce/measurement.h"

#include "base/angles.h"

#include <cmath>

namespace tramline::reduce {

namespace {
constexpr double kEarthDiameterMetres = 12756274.0;
constexpr double kEarthDiameterFeet = 41812000.0;
constexpr double kEarthRadiusFeet = 20906000.0;
constexpr double kUsFeetPerMetre = 3.280833333333;
} // namespace

ReducedMeasurement reduceMeasurement(double slope, double zenith,
                                     const MeasurementOptions &options) {
    double g = 0.0;
    double z = zenith;
    if (options.curvature) {
        // g is half the central angle between instrument and target, and
        // the line of sight bends down towards the ground, so the zenith
        // read is too small by the refraction angle. The zenith of the
        // straight line, counted from the vertical half-way along it (minus
        // g), gives the height difference: a level sight rises by
        // (1 - k) D^2 / 2R, k about 0.14.
        const double a =
            slope * std::sin(zenith) / (options.metres ? kEarthDiameterMetres : kEarthDiameterFeet);
        g = std::atan(a / std::sqrt(1.0 - a * a));
        const double feet = options.metres ? slope * kUsFeetPerMetre : slope;
        const double refraction = radians(1.9e-07 * feet * std::sin(zenith));
        z = zenith - g + refraction;
    }
    ReducedMeasurement r;
    r.zenith = z;
    const double chord = slope / std::cos(g);
    r.horizontal = std::fabs(options.scaleFactor * chord * std::sin(z - g));
    r.vertical = chord * std::cos(z);
    if (options.stadia) {
        r.horizontal *= std::sin(z - g);
        r.vertical *= std::fabs(std::sin(z - g));
        r.horizontal = std::fabs(r.horizontal);
    }
    return r;
}

double combinedScaleFactor(double gridScaleFactor, double ellipsoidHeightFeet) {
    return gridScaleFactor * kEarthRadiusFeet / (kEarthRadiusFeet + ellipsoidHeightFeet);
}

} // namespace tramline::reduce
