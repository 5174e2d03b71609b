// The unset number: marks a value that was never given. Such a value is
// never validated or used in a computation.
#pragma once

#include <cmath>

namespace tramline {

inline constexpr double kUnset = -98765432.1;
/// The positive twin, also unset; the coordinate store uses it for a
/// missing elevation.
inline constexpr double kUnsetPositive = 98765432.1;

/// True for either unset marker (compared to 1e-3, as the values are
/// written to four decimals in text files).
inline bool isUnset(double value) {
    return std::fabs(value - kUnset) < 1e-3 || std::fabs(value - kUnsetPositive) < 1e-3;
}

} // namespace tramline
