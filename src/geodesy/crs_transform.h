// Conversion of many points from one coordinate reference system to
// another through PROJ: EPSG codes, PROJ strings, well-known text, or a
// system of this program. Coordinates are in each system's own unit (US
// survey feet for EPSG:2231), easting or longitude first.
#pragma once

#include "geodesy/coordinate_system.h"
#include "geodesy/status.h"

#include <cstddef>
#include <memory>
#include <string>

namespace tramline::geodesy {

/// The PROJ definition of a system of this program: its projection on its
/// ellipsoid with its shift to WGS 84 ("+proj=tmerc ... +towgs84=... +type=crs").
/// With `geographic` the latitude and longitude on the same datum.
Status crsDefinition(const CoordinateSystem &system, bool geographic, std::string &definition);

/// The linear or angular unit of one side of a conversion.
struct CrsUnit {
    std::string name;        ///< PROJ's name: "metre", "US survey foot", "degree"
    double toBase = 1.0;     ///< metres (or radians) per unit
    bool geographic = false; ///< latitude and longitude rather than grid coordinates
};

/// Where a system is meant to be used, in its own coordinates (a box that
/// holds the database's area of use; a little generous at the corners).
struct CrsArea {
    bool known = false;
    double xMin = 0, yMin = 0, xMax = 0, yMax = 0;
    bool northernOnly = false; ///< the area lies north of the equator
    std::string name;
};

class CrsTransform {
public:
    CrsTransform();
    ~CrsTransform();
    CrsTransform(CrsTransform &&) noexcept;
    CrsTransform &operator=(CrsTransform &&) noexcept;
    CrsTransform(const CrsTransform &) = delete;
    CrsTransform &operator=(const CrsTransform &) = delete;

    /// Prepares the conversion. Each side is anything PROJ takes as a
    /// system ("EPSG:2231", "+proj=utm +zone=13 +datum=NAD83", WKT) or
    /// "latlon": the latitude and longitude on the datum of the other side
    /// (WGS 84 when both are "latlon"). Fails with InvalidInput naming the
    /// side PROJ refuses, and NotFound when no operation joins the two.
    /// `fromArea` and `toArea` may name a system ("EPSG:26953") whose area
    /// of use in PROJ's database stands for that side's.
    Status open(const std::string &from, const std::string &to, const std::string &fromArea = {},
                const std::string &toArea = {});

    const CrsUnit &sourceUnit() const;
    const CrsUnit &targetUnit() const;
    /// The area of use of the side that is a grid (the target when both are).
    const CrsArea &area() const;
    /// Whether area() is in source coordinates (else in target ones).
    bool areaOnSource() const;

    /// Converts `count` points in place: x is easting or longitude, y
    /// northing or latitude, z a height (may be null). A point PROJ cannot
    /// convert gets HUGE_VAL in x and y.
    void transform(double *x, double *y, double *z, std::size_t count) const;

    /// The latitude and longitude (degrees) on the grid side's datum of a
    /// source point.
    Status toGeographic(double x, double y, double &latitude, double &longitude) const;

    /// Grid scale factor and meridian convergence (degrees, clockwise from
    /// true north to grid north) of the grid side at a source point. Fails
    /// when neither side is a grid or PROJ cannot compute them there.
    Status factors(double x, double y, double &scale, double &convergence) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tramline::geodesy
