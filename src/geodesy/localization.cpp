#include "geodesy/localization.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "geodesy/coordinate_system_family.h"
#include "geodesy/epsg.h"
#include "geodesy/helmert_estimate.h"
#include "geodesy/zones.h"

#include <cmath>

namespace tramline::geodesy {

namespace {

// Beyond this relative departure of the grid scale from the projection's
// own, a position is taken as outside the system's area (about 8 degrees
// from a transverse Mercator's central meridian).
constexpr double kAreaScaleLimit = 0.01;

const char *const kHelmertError =
    trNoop("Error: unable to calculate grid to lat/lon for current\nprojection for 7-parameter "
           "transformation.");

Status invalidPoints() {
    return Status::failure(StatusCode::InvalidInput, tr("Error: Invalid alignment points."));
}

} // namespace

Status systemFromSettings(const LocalizationSettings &settings, CoordinateSystem &system) {
    if (equalsIgnoreCase(settings.family, "EPSG")) {
        double code = 0;
        if (!parseNumber(settings.zone, code) || code <= 0 || code > 1e9)
            return Status::failure(StatusCode::NotFound, format(tr("No coordinate system EPSG:%s"),
                                                                settings.zone.c_str()));
        return systemFromEpsg(static_cast<int>(code), system);
    }
    const auto family = familyFromName(settings.family);
    if (!family || *family == CoordinateSystemFamily::UserDefined)
        return Status::failure(
            StatusCode::NotFound,
            format(tr("No coordinate system %s: name a family and zone or an EPSG code"),
                   settings.family.c_str()));
    return zoneSystem(*family, zoneByNameOrPosition(*family, settings.zone), {}, system);
}

Status GridProjector::open(const CoordinateSystem &system, const LocalizationSettings &settings,
                           SeparationSource separation) {
    m_system = system;
    m_separation = std::move(separation);
    m_unitsPerMetre = tramline::unitsPerMetre(linearUnit(settings.units));
    m_projectScale = settings.projectScale > 0.0 ? settings.projectScale : 1.0;
    m_referenceScale = system.parameters.scaleFactor > 0.0 ? system.parameters.scaleFactor : 1.0;
    if (Status status = m_projection.open(system); !status)
        return status;
    return m_shift.open(system);
}

Status GridProjector::separation(double latitude, double longitude, double &metres) const {
    metres = 0.0;
    return m_separation ? m_separation(latitude, longitude, metres) : Status{};
}

Status GridProjector::project(double latitude, double longitude, double ellipsoidHeight,
                              FitPoint &point) const {
    double separationMetres = 0.0;
    if (Status status = separation(latitude, longitude, separationMetres); !status)
        return status;
    double lat = latitude, lon = longitude, h = ellipsoidHeight / m_unitsPerMetre;
    double northing = 0, easting = 0;
    GridFactors factors;
    Status status = m_shift.fromWgs84(lat, lon, h);
    if (status)
        status = m_projection.forward(lat, lon, northing, easting);
    if (status)
        status = m_projection.factorsAt(lat, lon, factors);
    if (!status)
        return status;
    if (!std::isfinite(northing) || !std::isfinite(easting) ||
        std::abs(factors.scaleFactor / m_referenceScale - 1.0) > kAreaScaleLimit)
        return Status::failure(StatusCode::OutOfRange,
                               tr("Error: GPS position outside the coordinate system's area"));
    point.gridX = easting * m_unitsPerMetre / m_projectScale;
    point.gridY = northing * m_unitsPerMetre / m_projectScale;
    point.gridZ = ellipsoidHeight - separationMetres * m_unitsPerMetre;
    point.convergence = factors.convergence;
    return {};
}

namespace {

// The local coordinates taken as grid coordinates on the local datum,
// against the GPS positions: both earth-centred.
Status estimateDatum(const GridProjector &projector, Localization &result) {
    const Ellipsoid wgs84 = ellipsoidAt(kWgs84);
    const Ellipsoid datum = result.system.ellipsoid();
    std::vector<CartesianPair> pairs;
    const double toMetres = 1.0 / projector.unitsPerMetre();
    for (const AlignmentPoint &p : result.points) {
        if (!p.useHorizontal || !p.useVertical)
            continue;
        const double northing = p.localY * projector.projectScale() * toMetres;
        const double easting = p.localX * projector.projectScale() * toMetres;
        double lat = 0, lon = 0, separation = 0;
        if (!projector.projection().inverse(northing, easting, lat, lon) || !std::isfinite(lat) ||
            !std::isfinite(lon))
            return Status::failure(StatusCode::InvalidInput, tr(kHelmertError));
        if (Status status = projector.separation(lat, lon, separation); !status)
            return status;
        CartesianPair pair;
        pair.wgs84 =
            geodeticToCartesian(wgs84, p.latitude, p.longitude, p.ellipsoidHeight * toMetres);
        pair.datum = geodeticToCartesian(datum, lat, lon, p.localZ * toMetres + separation);
        pairs.push_back(pair);
    }
    if (pairs.empty())
        return Status::failure(StatusCode::InvalidInput, tr(kHelmertError));
    return estimateHelmert(pairs, result.helmert);
}

} // namespace

Status fitLocalization(const CoordinateSystem &system, const LocalizationSettings &settings,
                       const std::vector<AlignmentPoint> &points,
                       const SeparationSource &separation, Localization &result) {
    result = Localization{};
    result.system = system;
    result.settings = settings;
    result.points = points;
    if (points.empty() || points.size() > kMaxAlignmentPoints)
        return invalidPoints();
    GridProjector projector;
    if (Status status = projector.open(system, settings, separation); !status)
        return status;
    for (const AlignmentPoint &p : points) {
        FitPoint f;
        if (Status status = projector.project(p.latitude, p.longitude, p.ellipsoidHeight, f);
            !status) {
            status.message += " (" + p.description + ")";
            return status;
        }
        f.localX = p.localX;
        f.localY = p.localY;
        f.localZ = p.localZ;
        f.useHorizontal = p.useHorizontal;
        f.useVertical = p.useVertical;
        result.fitPoints.push_back(f);
    }
    HorizontalOptions options;
    options.rigid = settings.rigid;
    options.geodeticAzimuth = settings.geodeticAzimuth;
    options.rotateOnly = settings.rotateOnly;
    if (Status status = fitHorizontal(result.fitPoints, options, result.horizontal); !status)
        return status;
    if (Status status =
            fitVertical(result.fitPoints, settings.tilted, result.vertical, result.poorGeometry);
        !status)
        return status;
    if (result.poorGeometry)
        result.warnings.emplace_back(
            tr("Warning: poor geometry of vertical alignment "
               "points.\nPoints too linear and should be more spread out."));
    result.residuals = residuals(result.fitPoints, result.horizontal, result.vertical);
    if (settings.defineDatum) {
        if (Status status = estimateDatum(projector, result); !status)
            return status;
        result.helmertEstimated = true;
    }
    return {};
}

Status localize(const Localization &localization, const GridProjector &projector, double latitude,
                double longitude, double ellipsoidHeight, double &localX, double &localY,
                double &localZ) {
    FitPoint f;
    if (Status status = projector.project(latitude, longitude, ellipsoidHeight, f); !status)
        return status;
    localization.horizontal.apply(f.gridX, f.gridY, localX, localY);
    localZ = f.gridZ + localization.vertical.adjustment(f.gridX, f.gridY);
    return {};
}

} // namespace tramline::geodesy
