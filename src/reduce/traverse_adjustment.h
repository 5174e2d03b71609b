// Closing a traverse against its known closing point and spreading the
// linear error over its sides by the transit, compass or Crandall rule,
// with the elevation adjustment and the shift check.
#pragma once

#include "base/compact_string.h"

#include <string>
#include <vector>

namespace tramline::reduce {

// Compact names: a run holds one of these for every shot it computes.
struct TraversePoint {
    CompactString name;
    double north = 0.0, east = 0.0, elevation = 0.0; ///< file units
    bool hasElevation = false;
    CompactString description;
};

/// One side as computed from the field measurements.
struct TraverseSide {
    std::string from, to;
    double horizontal = 0.0; ///< horizontal distance
    double slope = 0.0;      ///< slope distance
    double dNorth = 0.0, dEast = 0.0;
    double dElevation = 0.0;
    bool hasElevation = false;
    long line = 0;           ///< raw line of the shot
    std::string description; ///< of the foresight point
};

struct Closure {
    double north = 0.0, east = 0.0, vertical = 0.0; ///< computed - known
    double horizontal = 0.0;                        ///< hypot of north and east errors
    double slope = 0.0;                             ///< hypot of horizontal and vertical errors
    double azimuth = 0.0; ///< azimuth of the error, decimal degrees 0..360
    double horizontalTraversed = 0.0, slopeTraversed = 0.0;
    int sides = 0;
    bool exact = false;     ///< horizontal error zero: precision 1 in 9999999
    double precision = 0.0; ///< horizontal traversed / horizontal error
};

/// The closure of `sides` whose computed end is `computedEnd` against the
/// known closing point. Vertical error only when both have elevations.
Closure computeClosure(const TraversePoint &computedEnd, const TraversePoint &known,
                       const std::vector<TraverseSide> &sides);

/// The precision line: "Closure Precision: 1 in %.1f", or "... 1 in
/// 9999999" for an exact closure.
std::string precisionLine(const Closure &closure);

enum class LinearRule { Transit, Compass, Crandall };

struct AdjustedPoint {
    TraversePoint point;          ///< adjusted coordinates
    double northCorrection = 0.0; ///< taken off the side's north difference
    double eastCorrection = 0.0;
    double sideLength = 0.0; ///< adjusted horizontal length of the side to it
    double shift = 0.0;      ///< how far the adjustment moved the point
};

struct LinearAdjustment {
    bool ok = false;
    std::string error;                 ///< "Error: only %d traverse sides found."
    std::vector<AdjustedPoint> points; ///< one per side, in traverse order
    double maxShift = 0.0;
    double allowedShift = 0.0; ///< max(horizontal error, 0.7) x 1.1
    std::string warning;       ///< "Warning: adjustment moved points by up to %.3f"
};

/// Adjusts the sides from `start` so that the traverse ends on the known
/// closing point: each side's corrections by `rule`, then the points
/// accumulated from the start. With `vertical`, the vertical error is spread
/// in proportion to the horizontal distance traversed.
///
/// Crandall: with L, D the north and east differences of a side and l its
/// length, the sums A = sum L^2/l, B = sum LD/l, C = sum D^2/l give the
/// constants a = (eN C - eE B) / det, b = (eE A - eN B) / det (det = AC - B^2)
/// and the corrections (L^2/l) a + (LD/l) b north, (LD/l) a + (D^2/l) b east:
/// the least-squares fit that changes only the lengths, not the angles.
LinearAdjustment adjustTraverse(const TraversePoint &start, const std::vector<TraverseSide> &sides,
                                const Closure &closure, LinearRule rule, bool vertical);

/// The adjusted point line: "%-9.9s %-11.3f %-11.3f %-11.3f %-11.3f %-6.3f %s",
/// name, north, east, elevation, side length, shift, description.
std::string adjustedPointLine(const AdjustedPoint &p);

/// Angular error of an angle balance: reference - measured azimuth,
/// degrees, folded into -180..180.
double angularError(double referenceAzimuthDegrees, double measuredAzimuthDegrees);

} // namespace tramline::reduce
