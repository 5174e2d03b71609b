// Forward and inverse projection of a coordinate system, with the grid
// scale factor and the meridian convergence at any point.
//
// The formulas are PROJ's. Latitudes and longitudes are on the system's
// own datum (apply a DatumShift first for WGS 84 positions).
#pragma once

#include "geodesy/coordinate_system.h"
#include "geodesy/status.h"

#include <memory>
#include <string>

namespace tramline::geodesy {

/// The local properties of the grid at one point.
struct GridFactors {
    /// Grid scale factor: grid distance over ellipsoid distance (point
    /// scale; conformal projections have one scale in every direction, and
    /// for Cassini-Soldner it is the geometric mean of the scales along the
    /// meridian and the parallel).
    double scaleFactor = 1.0;
    /// Meridian convergence, decimal degrees: the angle from true north to
    /// grid north, clockwise positive (east of a transverse Mercator's
    /// central meridian in the northern hemisphere it is positive).
    double convergence = 0.0;
};

/// The PROJ definition of a system's projection (without datum shift),
/// for instance "+proj=tmerc +lat_0=49 ...". Fails with NotSupported for
/// the types that PROJ lacks: the Danish System 34 (6) and the 1927
/// coefficient types (14, 16, 17, 18).
Status projDefinition(const CoordinateSystem &system, std::string &definition);

class Projection {
public:
    Projection();
    ~Projection();
    Projection(Projection &&) noexcept;
    Projection &operator=(Projection &&) noexcept;
    Projection(const Projection &) = delete;
    Projection &operator=(const Projection &) = delete;

    /// Prepares the system's formulas. Fails with NotSupported for the
    /// types listed at projDefinition() and InvalidInput for parameters
    /// the formulas reject (a cone with no standard parallel, say).
    Status open(const CoordinateSystem &system);
    bool isOpen() const;

    /// Grid coordinates (metres) of a latitude and longitude (decimal
    /// degrees, north and east positive).
    Status forward(double latitude, double longitude, double &northing, double &easting) const;

    /// Latitude and longitude (decimal degrees, north and east positive,
    /// longitude in -180..180) of grid coordinates (metres).
    Status inverse(double northing, double easting, double &latitude, double &longitude) const;

    /// Scale factor and convergence at a latitude and longitude (decimal
    /// degrees).
    Status factorsAt(double latitude, double longitude, GridFactors &factors) const;

    /// Scale factor and convergence at a grid point (metres).
    Status gridFactors(double northing, double easting, GridFactors &factors) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tramline::geodesy
