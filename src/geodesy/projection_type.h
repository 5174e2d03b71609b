// The projection types of a coordinate system: their codes, the names the
// user sees and the names written in well-known text, and the parameters
// each type takes, in the order they are written.
//
// Codes 3 and 5 cross over on purpose: "Double Stereographic" is written
// "Oblique_Stereographic" and "Oblique Stereographic" is written
// "Stereographic", as files written by earlier versions have it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tramline::geodesy {

enum class ProjectionType : int {
    TransverseMercator = 0,
    LambertConformalConic1SP = 1,
    LambertConformalConic2SP = 2,
    DoubleStereographic = 3,
    ObliqueMercator = 4,
    ObliqueStereographic = 5,
    TransverseMercator34 = 6,
    TransverseMercatorGgrs87 = 7,
    TransverseMercatorOstn02 = 8,
    ObliqueMercatorEov = 9,
    HotineObliqueMercator = 10,
    Krovak = 11,
    ObliqueStereographicRd2000 = 12,
    ObliqueStereographicRd2004 = 13,
    ObliqueMercator27 = 14,
    ObliqueMercator83 = 15,
    LambertConformalConic27 = 16,
    TransverseMercator27 = 17,
    TransverseMercatorAlaska27 = 18,
    CassiniSoldner = 19,
    NewZealandMapGrid = 20,
};

inline constexpr int kProjectionTypeCount = 21;

/// The type for a code 0 to 20.
std::optional<ProjectionType> projectionTypeFromCode(int code);

/// The name the user sees, untranslated ("Transverse Mercator"); pass it
/// through tr() to show it.
const char *projectionTypeName(ProjectionType type);

/// The name written in well-known text ("Transverse_Mercator").
const char *projectionTypeWktName(ProjectionType type);

/// The type written under a well-known-text name (compared without regard
/// to case).
std::optional<ProjectionType> projectionTypeFromWktName(std::string_view name);

/// The named projection parameters. Angles are decimal degrees (north and
/// east positive), lengths metres.
enum class ProjectionParameter : int {
    LatitudeOfOrigin,
    CentralMeridian,
    ScaleFactor,
    FalseEasting,
    FalseNorthing,
    StandardParallel1,
    StandardParallel2,
    LatitudeOfCenter,
    LongitudeOfCenter,
    Azimuth,
    RectifiedGridAngle,
    PseudoStandardParallel,
    DenmarkArea,
    ZoneWidth,
};

inline constexpr int kProjectionParameterCount = 14;

/// How a parameter is measured, which decides its written number format.
enum class ParameterKind { Angle, Length, Scale, Integer };

ParameterKind parameterKind(ProjectionParameter parameter);

/// The label under which the user edits a parameter ("Latitude of Origin"),
/// untranslated. Both standard parallels are labelled "Standard Parallel".
const char *parameterLabel(ProjectionParameter parameter);

/// One written parameter of a type: its well-known-text name and the value
/// it carries. "XY_Plane_Rotation" of the oblique Mercator carries the
/// rectified grid angle, the same quantity under another software's name.
struct WrittenParameter {
    const char *wktName;
    ProjectionParameter parameter;
};

/// The parameters of a type in their written order. Empty for the 1927
/// coefficient types (14, 16, 17, 18), which carry coefficient lists.
const std::vector<WrittenParameter> &writtenParameters(ProjectionType type);

/// The parameter a well-known-text name stands for, for any type (the
/// reader takes parameters in any order).
std::optional<ProjectionParameter> parameterFromWktName(std::string_view name);

/// True for the 1927 state plane coefficient types (14, 16, 17, 18).
bool usesCoefficients(ProjectionType type);

/// The written names of the coefficients of a coefficient type: "a" to
/// "lambda0" for type 14, "c" and "cm" for type 18, and "l1", "l2", ... or
/// "t1", "t2", ... for types 16 and 17 (`count` of them).
std::vector<std::string> coefficientNames(ProjectionType type, std::size_t count);

} // namespace tramline::geodesy
