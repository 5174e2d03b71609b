// Angles in a raw file's own unit (ddd.mmss or decimal gons) to and from
// decimal degrees, for the arithmetic of normalisation and display modes.
#pragma once

#include "base/angles.h"
#include "base/units.h"

namespace tramline::raw {

inline double angleToDegrees(double value, AngleUnit unit) {
    return unit == AngleUnit::Gons ? gonsToDegrees(value) : unpackDms(value);
}

inline double angleFromDegrees(double decimalDegrees, AngleUnit unit) {
    return unit == AngleUnit::Gons ? degreesToGons(decimalDegrees) : packDms(decimalDegrees);
}

} // namespace tramline::raw
