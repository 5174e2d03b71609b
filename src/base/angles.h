// Angles as surveyors write them: packed degrees-minutes-seconds (ddd.mmss),
// decimal gons (400 to the circle), decimal degrees and radians.
//
// A ddd.mmss value holds whole degrees before the point, then two digits of
// minutes, two of seconds and the fraction of the seconds: 45.3015 is
// 45 degrees 30 minutes 15 seconds. Negative values carry the sign on the
// whole value (-10.3000 is minus 10 degrees 30 minutes).
#pragma once

#include <string>

namespace tramline {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kDegreesPerRadian = 57.29577951308232;
inline constexpr double kSecondsPerRadian = 206264.8;

/// Radians from decimal degrees.
constexpr double radians(double degrees) {
    return degrees * kPi / 180.0;
}
/// Decimal degrees from radians.
constexpr double degrees(double radians) {
    return radians * 180.0 / kPi;
}

/// Decimal degrees from a packed ddd.mmss value. No validity check: minutes
/// or seconds above 59 simply add their worth (use isValidDms first).
double unpackDms(double dms);

/// Packed ddd.mmss from decimal degrees. The seconds are rounded to
/// `secondsDecimals` places first and carried into minutes and degrees, so
/// that the result never shows 60 seconds or 60 minutes when printed with
/// 4 + secondsDecimals decimals.
double packDms(double decimalDegrees, int secondsDecimals = 6);

/// The parts of a ddd.mmss value, as written (no carry): sign, degrees,
/// minutes, seconds (with fraction). Reads the value to 1e-6 of a second.
struct DmsParts {
    bool negative = false;
    long degrees = 0;
    int minutes = 0;
    double seconds = 0.0;
};
DmsParts splitDms(double dms);

/// True when `dms` is a usable ddd.mmss angle: within -360 to 360 and
/// neither minutes nor seconds above 60. Exactly 60 passes, as collectors
/// do write it.
bool isValidDms(double dms);

/// Decimal gons from decimal degrees and back (0.9 degree a gon).
constexpr double degreesToGons(double decimalDegrees) {
    return decimalDegrees / 0.9;
}
constexpr double gonsToDegrees(double gons) {
    return gons * 0.9;
}

/// Brings an angle in decimal degrees into [0, 360).
double normalizeDegrees(double decimalDegrees);

/// Formats decimal degrees as ddd.mmss with `decimals` places ("%.4f" by
/// default, whole seconds), rounding at the last place and carrying.
std::string formatDms(double decimalDegrees, int decimals = 4);

} // namespace tramline
