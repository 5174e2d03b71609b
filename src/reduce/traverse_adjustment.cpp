#include "reduce/traverse_adjustment.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"

#include <cmath>

namespace tramline::reduce {

Closure computeClosure(const TraversePoint &computedEnd, const TraversePoint &known,
                       const std::vector<TraverseSide> &sides) {
    Closure c;
    c.north = computedEnd.north - known.north;
    c.east = computedEnd.east - known.east;
    if (computedEnd.hasElevation && known.hasElevation)
        c.vertical = computedEnd.elevation - known.elevation;
    c.horizontal = std::hypot(c.north, c.east);
    c.slope = std::hypot(c.horizontal, c.vertical);
    c.azimuth = normalizeDegrees(degrees(std::atan2(c.east, c.north)));
    for (const auto &s : sides) {
        c.horizontalTraversed += s.horizontal;
        c.slopeTraversed += s.slope;
    }
    c.sides = static_cast<int>(sides.size());
    c.exact = c.horizontal == 0.0;
    c.precision = c.exact ? 0.0 : c.horizontalTraversed / c.horizontal;
    return c;
}

std::string precisionLine(const Closure &closure) {
    if (closure.exact)
        return tr("Closure Precision: 1 in 9999999");
    return format(tr("Closure Precision: 1 in %.1f"), closure.precision);
}

LinearAdjustment adjustTraverse(const TraversePoint &start, const std::vector<TraverseSide> &sides,
                                const Closure &closure, LinearRule rule, bool vertical) {
    LinearAdjustment result;
    if (sides.size() < 2) {
        result.error =
            format(tr("Error: only %d traverse sides found."), static_cast<int>(sides.size()));
        return result;
    }
    const double eN = closure.north, eE = closure.east;
    double sumAbsN = 0, sumAbsE = 0, length = 0, A = 0, B = 0, C = 0;
    for (const auto &s : sides) {
        sumAbsN += std::fabs(s.dNorth);
        sumAbsE += std::fabs(s.dEast);
        length += s.horizontal;
        if (s.horizontal > 0) {
            A += s.dNorth * s.dNorth / s.horizontal;
            B += s.dNorth * s.dEast / s.horizontal;
            C += s.dEast * s.dEast / s.horizontal;
        }
    }
    const double det = A * C - B * B;
    const double a = det != 0.0 ? (eN * C - eE * B) / det : 0.0;
    const double b = det != 0.0 ? (eE * A - eN * B) / det : 0.0;

    double north = start.north, east = start.east, elevation = start.elevation;
    bool hasElevation = start.hasElevation;
    double unadjustedNorth = start.north, unadjustedEast = start.east;
    double traversed = 0.0;
    for (const auto &s : sides) {
        AdjustedPoint p;
        switch (rule) {
        case LinearRule::Transit:
            p.northCorrection = sumAbsN > 0 ? eN * std::fabs(s.dNorth) / sumAbsN : 0.0;
            p.eastCorrection = sumAbsE > 0 ? eE * std::fabs(s.dEast) / sumAbsE : 0.0;
            break;
        case LinearRule::Compass:
            p.northCorrection = length > 0 ? eN * s.horizontal / length : 0.0;
            p.eastCorrection = length > 0 ? eE * s.horizontal / length : 0.0;
            break;
        case LinearRule::Crandall:
            if (s.horizontal > 0) {
                p.northCorrection =
                    (s.dNorth * s.dNorth * a + s.dNorth * s.dEast * b) / s.horizontal;
                p.eastCorrection = (s.dNorth * s.dEast * a + s.dEast * s.dEast * b) / s.horizontal;
            }
            break;
        }
        const double dN = s.dNorth - p.northCorrection, dE = s.dEast - p.eastCorrection;
        north += dN;
        east += dE;
        unadjustedNorth += s.dNorth;
        unadjustedEast += s.dEast;
        traversed += s.horizontal;
        hasElevation = hasElevation && s.hasElevation;
        elevation += s.dElevation;
        p.point.name = s.to;
        p.point.description = s.description;
        p.point.north = north;
        p.point.east = east;
        p.point.hasElevation = hasElevation;
        p.point.elevation = elevation;
        if (vertical && hasElevation && length > 0)
            p.point.elevation = elevation - closure.vertical * traversed / length;
        p.sideLength = std::hypot(dN, dE);
        p.shift = std::hypot(north - unadjustedNorth, east - unadjustedEast);
        result.maxShift = std::max(result.maxShift, p.shift);
        result.points.push_back(p);
    }
    result.allowedShift = std::max(closure.horizontal, 0.7) * 1.1;
    if (result.maxShift > result.allowedShift)
        result.warning =
            format(tr("Warning: adjustment moved points by up to %.3f"), result.maxShift);
    result.ok = true;
    return result;
}

std::string adjustedPointLine(const AdjustedPoint &p) {
    return format("%-9.9s %-11.3f %-11.3f %-11.3f %-11.3f %-6.3f %s", p.point.name.str().c_str(),
                  p.point.north, p.point.east, p.point.elevation, p.sideLength, p.shift,
                  p.point.description.str().c_str());
}

double angularError(double referenceAzimuthDegrees, double measuredAzimuthDegrees) {
    // One step onto -180..180 whatever the size of the difference: a loop
    // of subtractions would never end on a huge or infinite angle.
    const double e =
        std::remainder(radians(referenceAzimuthDegrees - measuredAzimuthDegrees), 2.0 * kPi);
    return degrees(e);
}

} // namespace tramline::reduce
