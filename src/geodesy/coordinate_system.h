// The description of one grid coordinate system: the datum shift to
// WGS 84, the projection type, the names, the ellipsoid and the projection
// parameters.
#pragma once

#include "geodesy/ellipsoid.h"
#include "geodesy/projection_type.h"

#include <string>
#include <string_view>
#include <vector>

namespace tramline::geodesy {

/// The seven-parameter shift as the record keeps it: translations from
/// WGS 84 to the datum, rotations and scale as the well-known text's
/// TOWGS84 carries them (position-vector rotations, datum to WGS 84). The
/// written form inverts translations and scale only; see wkt.h.
struct DatumShift {
    double dx = 0.0;       ///< metres
    double dy = 0.0;       ///< metres
    double dz = 0.0;       ///< metres
    double rx = 0.0;       ///< arc-seconds
    double ry = 0.0;       ///< arc-seconds
    double rz = 0.0;       ///< arc-seconds
    double scalePpm = 0.0; ///< scale difference, parts per million

    bool isZero() const {
        return dx == 0.0 && dy == 0.0 && dz == 0.0 && rx == 0.0 && ry == 0.0 && rz == 0.0 &&
               scalePpm == 0.0;
    }
};

/// The scale difference (ppm) that inverts a scale difference s (ppm):
/// (1 / (s / 1e6 + 1) - 1) x 1e6. Applying it twice gives s back.
double invertScalePpm(double scalePpm);

/// Projection parameters. Angles are decimal degrees, latitudes north
/// positive, longitudes east positive (Greenwich); lengths are metres.
struct ProjectionParameters {
    double latitudeOfOrigin = 0.0;
    double centralMeridian = 0.0;
    double scaleFactor = 1.0;
    double falseEasting = 0.0;
    double falseNorthing = 0.0;
    double standardParallel1 = 0.0;
    double standardParallel2 = 0.0;
    double latitudeOfCenter = 0.0;
    double longitudeOfCenter = 0.0;
    double azimuth = 0.0;            ///< of the initial line, clockwise from north
    double rectifiedGridAngle = 0.0; ///< from the rectified to the skew grid
    double pseudoStandardParallel = 0.0;
    int denmarkArea = 0;    ///< the "Denmark" area number of type 6
    double zoneWidth = 0.0; ///< degrees, type 8
    /// The coefficients of the 1927 state plane types (14, 16, 17, 18), in
    /// their written order.
    std::vector<double> coefficients;

    /// The value of a named parameter (the Denmark area as a number).
    double value(ProjectionParameter parameter) const;
    void setValue(ProjectionParameter parameter, double value);
};

struct CoordinateSystem {
    DatumShift shift;
    ProjectionType type = ProjectionType::TransverseMercator;
    std::string name;
    std::string datum;
    /// Index into the ellipsoid table; any other value means the system's
    /// own ellipsoid below.
    int ellipsoidIndex = kWgs84;
    double userSemiMajorAxis = 0.0;     ///< metres, for an ellipsoid of its own
    double userInverseFlattening = 0.0; ///< for an ellipsoid of its own, 0 for a sphere
    ProjectionParameters parameters;
    /// The EPSG system the parameters were taken from (0 when none): it
    /// tells where the system is meant to be used.
    int epsgCode = 0;

    /// The ellipsoid the system uses.
    Ellipsoid ellipsoid() const;

    /// Sets the coefficient named `coefficient` ("a", "l3", ...; case does not matter)
    /// of a coefficient type, growing the list as far as it needs (the
    /// coefficients before it stay 0 until set). False when the type has
    /// no coefficient of that name.
    bool setCoefficient(std::string_view coefficient, double value);
};

} // namespace tramline::geodesy
