// The families of predefined coordinate systems, each with its zone list.
#pragma once

#include <optional>
#include <string_view>

namespace tramline::geodesy {

enum class CoordinateSystemFamily : int {
    StatePlane83 = 0,
    StatePlane27 = 1,
    Utm = 2,
    LatLon = 3,
    GreatBritainOsgb36 = 4,
    Australia = 5,
    NewZealandNzgd2000 = 6,
    NewZealandNzgd49 = 7,
    FranceNtf = 8,
    Barbados = 9,
    UserDefined = 10,
    AustraliaAgd84 = 11,
    AustraliaAgd66 = 12,
};

inline constexpr int kFamilyCount = 13;

std::optional<CoordinateSystemFamily> familyFromCode(int code);

/// The family's name, untranslated ("State Plane 83").
const char *familyName(CoordinateSystemFamily family);

/// The family whose name is `name` (exactly, or without regard to case), or
/// whose code is `name` written as a number.
std::optional<CoordinateSystemFamily> familyFromName(std::string_view name);

/// The opening line of a text description of the current system
/// ("Projection: State Plane 83"); the families without a line of their own
/// (10 to 12) give an empty text.
const char *familyDescription(CoordinateSystemFamily family);

} // namespace tramline::geodesy
