// Linear units of raw files and the factors between them.
#pragma once

#include <string_view>

namespace tramline {

/// The "UN" value of a raw file's mode record.
enum class LinearUnit : int {
    InternationalFeet = 0,
    Metres = 1,
    UsSurveyFeet = 2,
};

/// International feet in a metre (1 / 0.3048).
inline constexpr double kInternationalFeetPerMetre = 3.280839895013123;
/// US survey feet in a metre (3937 / 1200).
inline constexpr double kUsSurveyFeetPerMetre = 3.2808333333333333;

/// How many of `unit` make one metre (1 for metres).
constexpr double unitsPerMetre(LinearUnit unit) {
    switch (unit) {
    case LinearUnit::InternationalFeet:
        return kInternationalFeetPerMetre;
    case LinearUnit::UsSurveyFeet:
        return kUsSurveyFeetPerMetre;
    case LinearUnit::Metres:
        break;
    }
    return 1.0;
}

/// Converts a length from one unit to another.
constexpr double convertLength(double value, LinearUnit from, LinearUnit to) {
    return value / unitsPerMetre(from) * unitsPerMetre(to);
}

/// The unit's name as raw-file notes spell it: "FOOT", "METERS", "USFOOT".
std::string_view unitName(LinearUnit unit);

/// The unit for a "UN" digit; false when the digit is not 0, 1 or 2.
bool linearUnitFromCode(int code, LinearUnit &unit);

/// The angle unit of a raw file: degrees-minutes-seconds or gons.
enum class AngleUnit : int {
    DegreesMinutesSeconds = 0,
    Gons = 1,
};

} // namespace tramline
