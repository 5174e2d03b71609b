// Reference ellipsoids: the program's table of named ellipsoids, their
// derived quantities, and the names under which they are written in
// well-known text.
//
// The flattening values are the program's stored values, kept exactly as
// they are and never recomputed from a rounded inverse flattening, so that
// coordinates computed today match those computed with earlier versions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tramline::geodesy {

/// Number of named ellipsoids in the table (indexes 0 to 27).
inline constexpr int kEllipsoidCount = 28;
/// Index of "GRS 1980" and "WGS 84" in the table.
inline constexpr int kGrs1980 = 19;
inline constexpr int kWgs84 = 27;
/// Any index outside the table means the system's own ellipsoid.
inline constexpr int kUserDefinedEllipsoid = -1;

/// The semi-major axes (metres) a user-defined ellipsoid may have: every
/// planet fits, and the axis survives being written with three decimals.
inline constexpr double kMinSemiMajorAxis = 1.0;
inline constexpr double kMaxSemiMajorAxis = 1e9;

/// Can an ellipsoid of these parameters be computed with and written back?
/// (An inverse flattening of 0 means a sphere.)
inline bool usableEllipsoid(double semiMajorAxis, double inverseFlattening) {
    return semiMajorAxis >= kMinSemiMajorAxis && semiMajorAxis <= kMaxSemiMajorAxis &&
           (inverseFlattening == 0.0 || (inverseFlattening >= 1.0 && inverseFlattening <= 1e9));
}

struct Ellipsoid {
    std::string name;             ///< as in the table, or "User Defined"
    double a = 0.0;               ///< semi-major axis, metres
    double b = 0.0;               ///< semi-minor axis, metres (a - a f)
    double f = 0.0;               ///< flattening
    double e = 0.0;               ///< first eccentricity, sqrt(2f - f^2)
    double inverseFlattening = 0; ///< 1/f, or 0 for a sphere

    /// Builds an ellipsoid from its axis (metres) and flattening.
    static Ellipsoid fromFlattening(std::string name, double a, double f);
    /// Builds an ellipsoid from its axis (metres) and inverse flattening
    /// (0 for a sphere).
    static Ellipsoid fromInverseFlattening(std::string name, double a, double inverseFlattening);

    /// Square of the first eccentricity, 2f - f^2.
    double eccentricitySquared() const { return 2.0 * f - f * f; }
    /// Radius of curvature in the prime vertical at a latitude (radians), metres.
    double primeVerticalRadius(double latitudeRadians) const;
    /// Radius of curvature in the meridian at a latitude (radians), metres.
    double meridianRadius(double latitudeRadians) const;
};

/// The table entry at `index` (0 to 27). Any other index gives "User Defined"
/// with the axis (metres) and flattening passed in.
Ellipsoid ellipsoidAt(int index, double userA = 0.0, double userF = 0.0);

/// The ellipsoid's name as written in well-known text ("WGS 84" is written
/// "WGS_1984"); names without a special spelling come back as given.
std::string_view wktEllipsoidName(std::string_view shownName);

/// The table index of a name, shown or written, compared without regard to
/// case, blanks or underscores; -1 when none matches.
int findEllipsoidByName(std::string_view name);

/// The table index of the ellipsoid with this axis (within 1 mm) and
/// flattening (within 1e-11), the first such entry; -1 when none matches.
int findEllipsoidByParameters(double a, double f);

/// The choice list of the ellipsoid field: the 28 table names in table
/// order, then "User-Defined".
std::vector<std::string> ellipsoidChoices();

} // namespace tramline::geodesy
