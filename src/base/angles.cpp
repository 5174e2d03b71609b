#include "base/angles.h"

#include "base/format.h"

#include <cmath>
#include <cstdio>

namespace tramline {

namespace {
// Beyond this the integer arithmetic below would overflow; no angle is near it.
constexpr double kLargestPacked = 1e8;
} // namespace

double unpackDms(double dms) {
    const DmsParts p = splitDms(dms);
    const double value = static_cast<double>(p.degrees) + p.minutes / 60.0 + p.seconds / 3600.0;
    return p.negative ? -value : value;
}

DmsParts splitDms(double dms) {
    // Work on an integer count of micro-units of the packed value (1e-6 of a
    // second) so that 10.6000 reads as 60 minutes, not 59 minutes 99.99 s.
    DmsParts p;
    p.negative = dms < 0;
    const double magnitude = std::fabs(dms);
    if (!(magnitude < kLargestPacked)) { // garbage: no minutes or seconds to speak of
        p.degrees = std::isfinite(magnitude) ? static_cast<long>(kLargestPacked) : 0;
        return p;
    }
    const double whole = std::floor(magnitude);
    const long long scaled = std::llround((magnitude - whole) * 1e10); // mmssffffff
    long degreesPart = static_cast<long>(whole);
    long long fraction = scaled;
    if (fraction >= 10000000000LL) { // rounding reached the next degree
        degreesPart += 1;
        fraction -= 10000000000LL;
    }
    p.degrees = degreesPart;
    p.minutes = static_cast<int>(fraction / 100000000LL);
    p.seconds = static_cast<double>(fraction % 100000000LL) / 1e6;
    return p;
}

bool isValidDms(double dms) {
    if (!std::isfinite(dms) || dms < -360.0 || dms > 360.0)
        return false;
    const DmsParts p = splitDms(dms);
    return p.minutes <= 60 && p.seconds <= 60.0;
}

double packDms(double decimalDegrees, int secondsDecimals) {
    if (!(std::fabs(decimalDegrees) < kLargestPacked))
        return decimalDegrees; // far outside any angle; nothing to pack
    const bool negative = decimalDegrees < 0;
    static constexpr double kScales[] = {1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    const double scale = kScales[secondsDecimals < 0   ? 0
                                 : secondsDecimals > 9 ? 9
                                                       : secondsDecimals];
    // Total seconds in units of the last kept place, rounded once.
    const long long units = std::llround(std::fabs(decimalDegrees) * 3600.0 * scale);
    const long long unitsPerMinute = static_cast<long long>(60 * scale);
    const long long unitsPerDegree = unitsPerMinute * 60;
    const long long deg = units / unitsPerDegree;
    const long long min = (units % unitsPerDegree) / unitsPerMinute;
    const double sec = static_cast<double>(units % unitsPerMinute) / scale;
    const double packed =
        static_cast<double>(deg) + static_cast<double>(min) / 100.0 + sec / 10000.0;
    return negative ? -packed : packed;
}

double normalizeDegrees(double decimalDegrees) {
    double a = std::fmod(decimalDegrees, 360.0);
    if (a < 0)
        a += 360.0;
    if (a >= 360.0)
        a -= 360.0;
    return a;
}

std::string formatDms(double decimalDegrees, int decimals) {
    const int secondsDecimals = decimals > 4 ? decimals - 4 : 0;
    std::string out;
    appendFixed(out, packDms(decimalDegrees, secondsDecimals), decimals);
    return out;
}

} // namespace tramline
