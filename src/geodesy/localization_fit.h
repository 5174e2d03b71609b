// The fits of a localization: a horizontal transformation from grid to
// local coordinates, a vertical adjustment from the elevation differences,
// and the residuals of every point. Pure arithmetic on plane coordinates;
// projecting the GPS positions is localization.h's work.
#pragma once

#include "geodesy/status.h"

#include <span>
#include <vector>

namespace tramline::geodesy {

/// One point as the fits see it: grid coordinates (the projected GPS
/// position, already divided by the project scale factor) and local
/// coordinates, all in one linear unit; X is east, Y north.
struct FitPoint {
    double gridX = 0.0, gridY = 0.0, gridZ = 0.0;
    double localX = 0.0, localY = 0.0, localZ = 0.0;
    bool useHorizontal = true;
    bool useVertical = true;
    /// Meridian convergence at the point, decimal degrees (grid north
    /// east of true north positive); only the geodetic one-point fit uses it.
    double convergence = 0.0;
};

enum class HorizontalMethod {
    Similarity,
    Rigid,
    OnePoint,
    TwoPointFitRotate,
    TwoPointRotateOnly,
};

/// Local_X = a0 + a1*Grid_X - b1*Grid_Y; Local_Y = b0 + b1*Grid_X + a1*Grid_Y.
/// Every method ends in this form (a rigid body has a1 = cos(alpha),
/// b1 = sin(alpha)).
struct HorizontalTransform {
    HorizontalMethod method = HorizontalMethod::Similarity;
    double a0 = 0.0, a1 = 1.0, b0 = 0.0, b1 = 0.0;

    /// Counter-clockwise rotation from grid to local axes, decimal degrees.
    double rotationDegrees() const;
    /// The transformation scale factor, local length over grid length.
    double scale() const;
    void apply(double gridX, double gridY, double &localX, double &localY) const;
};

struct HorizontalOptions {
    bool rigid = false;           ///< three points or more: no scale
    bool geodeticAzimuth = false; ///< one point: local north is true north
    bool rotateOnly = false;      ///< two points: no scale
};

/// Fits the horizontal transformation over the points used horizontally:
/// one point fixes the shift (rotation from the azimuth option), two points
/// use the two-point method, more the similarity or rigid body by least
/// squares. Fails with InvalidInput ("Error: Invalid alignment points.")
/// when no point is used or the used grid points all coincide.
Status fitHorizontal(std::span<const FitPoint> points, const HorizontalOptions &options,
                     HorizontalTransform &transform);

/// The vertical adjustment (local minus grid elevation) at (x, y):
/// (-a*x - b*y - d)/c. A level plane has a = b = 0.
struct VerticalTransform {
    bool tilted = false;
    double a = 0.0, b = 0.0, c = -1.0, d = 0.0;

    double adjustment(double x, double y) const { return (-a * x - b * y - d) / c; }
    /// The plane's rise per 100 units northwards and eastwards.
    double slopeNorthPercent() const { return -b / c * 100.0; }
    double slopeEastPercent() const { return -a / c * 100.0; }
};

/// Below this ratio of the points' spread across their best line to the
/// spread along it, a tilted plane is poorly determined (a warning).
inline constexpr double kCollinearityRatio = 0.1;

/// Fits the vertical adjustment over the points used vertically, at their
/// grid positions: the mean difference for a level plane, a least-squares
/// plane (unit normal, c < 0) for a tilted one. `poorGeometry` is set when
/// the tilted plane's points lie too nearly on a line. Fails with
/// InvalidInput ("Error: Invalid alignment points.") when no point is used,
/// or for a tilted plane with fewer than three points or all on one line.
Status fitVertical(std::span<const FitPoint> points, bool tilted, VerticalTransform &transform,
                   bool &poorGeometry);

struct PointResidual {
    double horizontal = 0.0; ///< length of the horizontal misfit
    double vertical = 0.0;   ///< computed minus control elevation
    double threeD = 0.0;
    double computedX = 0.0, computedY = 0.0, computedZ = 0.0;
};

struct ResidualSummary {
    std::vector<PointResidual> points;                       ///< one for every point, used or not
    double averageHorizontal = 0.0, maximumHorizontal = 0.0; ///< over points used horizontally
    double averageVertical = 0.0, maximumVertical = 0.0; ///< absolute, over points used vertically
};

ResidualSummary residuals(std::span<const FitPoint> points, const HorizontalTransform &horizontal,
                          const VerticalTransform &vertical);

} // namespace tramline::geodesy
