// A whole localization: the GPS positions of the alignment points projected
// onto the chosen grid (datum shift, projection, geoid, project scale
// factor), the horizontal and vertical fits, the residuals and, when asked,
// the seven parameters of the local datum. Also applies a fitted
// localization to further GPS positions.
#pragma once

#include "geodesy/alignment_points.h"
#include "geodesy/coordinate_system.h"
#include "geodesy/datum_shift.h"
#include "geodesy/localization_fit.h"
#include "geodesy/projection.h"
#include "geodesy/status.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tramline::geodesy {

/// The geoid separation (metres, geoid above the ellipsoid) at a WGS 84
/// position in decimal degrees.
using SeparationSource =
    std::function<Status(double latitude, double longitude, double &separation)>;

/// The grid system a localization's settings name: a family's zone, or
/// "EPSG" with the code as the zone.
Status systemFromSettings(const LocalizationSettings &settings, CoordinateSystem &system);

/// Projects WGS 84 positions onto a system's grid in the localization's
/// units: X east and Y north divided by the project scale factor, Z the
/// ellipsoid height less the geoid separation.
class GridProjector {
public:
    /// `separation` may be empty: heights stay ellipsoidal.
    Status open(const CoordinateSystem &system, const LocalizationSettings &settings,
                SeparationSource separation);

    /// Fails with OutOfRange for a position outside the system's area (the
    /// grid scale there is more than 1% off the projection's own), or with
    /// the geoid's message.
    Status project(double latitude, double longitude, double ellipsoidHeight,
                   FitPoint &point) const;

    const CoordinateSystem &system() const { return m_system; }
    const Projection &projection() const { return m_projection; }
    double unitsPerMetre() const { return m_unitsPerMetre; }
    double projectScale() const { return m_projectScale; }
    /// The separation at a position, metres; 0 without a geoid.
    Status separation(double latitude, double longitude, double &metres) const;

private:
    CoordinateSystem m_system;
    Projection m_projection;
    SevenParameterShift m_shift;
    SeparationSource m_separation;
    double m_unitsPerMetre = 1.0;
    double m_projectScale = 1.0;
    double m_referenceScale = 1.0;
};

struct Localization {
    CoordinateSystem system;
    LocalizationSettings settings;
    std::vector<AlignmentPoint> points;
    std::vector<FitPoint> fitPoints; ///< one for every alignment point
    HorizontalTransform horizontal;
    VerticalTransform vertical;
    ResidualSummary residuals;
    bool poorGeometry = false;     ///< the tilted plane's points are nearly on a line
    bool helmertEstimated = false; ///< settings.defineDatum was set and the estimate done
    DatumShift helmert;
    std::vector<std::string> warnings; ///< the report's warning texts
};

/// Projects the points and fits them as the settings say. Fails with
/// "Error: Invalid alignment points." (no points, more than 99, or too few
/// for the fit), the projection's or geoid's message for a position that
/// cannot be projected (with the point's description), or "Error: unable
/// to calculate grid to lat/lon for current\nprojection for 7-parameter
/// transformation." when the datum cannot be estimated.
Status fitLocalization(const CoordinateSystem &system, const LocalizationSettings &settings,
                       const std::vector<AlignmentPoint> &points,
                       const SeparationSource &separation, Localization &result);

/// The local coordinates (localization units) of a WGS 84 position:
/// latitude and longitude decimal degrees, ellipsoid height in the
/// localization's units.
Status localize(const Localization &localization, const GridProjector &projector, double latitude,
                double longitude, double ellipsoidHeight, double &localX, double &localY,
                double &localZ);

} // namespace tramline::geodesy
