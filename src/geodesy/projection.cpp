// Projections through PROJ: each system becomes a "+proj=..." definition
// of the projection alone, run directly (no CRS-to-CRS pipeline), which
// keeps a conversion to one call of PROJ's formulas.
#include "geodesy/projection.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "geodesy/messages.h"
#include "geodesy/proj_support.h"

#include <cmath>
#include <cstring>
#include <string_view>

namespace tramline::geodesy {

namespace {

using detail::PjPtr;

std::string number(double v) {
    return format("%.17g", v);
}

std::string ellipsoidDefinition(const Ellipsoid &e) {
    if (e.f == 0.0)
        return " +R=" + number(e.a);
    // The stored flattening goes in as it is, not through a rounded 1/f.
    return " +a=" + number(e.a) + " +f=" + number(e.f);
}

Status notSupported(ProjectionType type) {
    return Status::failure(StatusCode::NotSupported,
                           format(tr(messages::kTypeNotSupported), tr(projectionTypeName(type))));
}

// The Hungarian EOV grid is fixed but for its false origin: the other
// constants are the EPSG definition of HD72 / EOV.
Status eovDefinition(std::string &definition) {
    auto db = detail::database();
    PjPtr crs(proj_create_from_database(db.ctx, "EPSG", "23700", PJ_CATEGORY_CRS, 0, nullptr));
    PjPtr conversion(crs ? proj_crs_get_coordoperation(db.ctx, crs.get()) : nullptr);
    const char *text =
        conversion ? proj_as_proj_string(db.ctx, conversion.get(), PJ_PROJ_5, nullptr) : nullptr;
    if (!text)
        return Status::failure(StatusCode::NotFound,
                               format(tr(messages::kNoZoneDatabase), "EPSG:23700"));
    // "+proj=pipeline +step +proj=..." or a single step: keep the step,
    // without its false origin.
    std::string step = text;
    if (const auto at = step.rfind("+proj="); at != std::string::npos)
        step = step.substr(at);
    std::string kept;
    for (const std::string_view token : split(step, ' ')) {
        if (token.empty() || token.starts_with("+x_0=") || token.starts_with("+y_0=") ||
            token.starts_with("+ellps=") || token.starts_with("+step"))
            continue;
        if (!kept.empty())
            kept += ' ';
        kept += token;
    }
    definition = kept;
    return Status::success();
}

bool isEastWestLine(const ProjectionParameters &p) {
    return std::fabs(p.azimuth - 90.0) < 1e-12 && std::fabs(p.rectifiedGridAngle - 90.0) < 1e-12;
}

} // namespace

Status projDefinition(const CoordinateSystem &cs, std::string &out) {
    const ProjectionParameters &p = cs.parameters;
    const std::string origin =
        " +x_0=" + number(p.falseEasting) + " +y_0=" + number(p.falseNorthing);
    std::string d;
    switch (cs.type) {
    case ProjectionType::TransverseMercator:
    case ProjectionType::TransverseMercatorGgrs87:
    case ProjectionType::TransverseMercatorOstn02:
        d = "+proj=tmerc +lat_0=" + number(p.latitudeOfOrigin) +
            " +lon_0=" + number(p.centralMeridian) + " +k_0=" + number(p.scaleFactor) + origin;
        break;
    case ProjectionType::LambertConformalConic1SP: {
        // One standard parallel: the latitude of origin (or, when only the
        // parallel was given, that parallel).
        const double parallel =
            p.latitudeOfOrigin != 0.0 ? p.latitudeOfOrigin : p.standardParallel1;
        d = "+proj=lcc +lat_1=" + number(parallel) + " +lat_0=" + number(parallel) +
            " +lon_0=" + number(p.centralMeridian) + " +k_0=" + number(p.scaleFactor) + origin;
        break;
    }
    case ProjectionType::LambertConformalConic2SP:
        d = "+proj=lcc +lat_0=" + number(p.latitudeOfOrigin) +
            " +lon_0=" + number(p.centralMeridian) + " +lat_1=" + number(p.standardParallel1) +
            " +lat_2=" + number(p.standardParallel2) + origin;
        // The Michigan zones of 1927 scale the ellipsoid; a plain two-
        // parallel cone leaves the factor at 1.
        if (p.scaleFactor != 1.0 && p.scaleFactor > 0.0)
            d += " +k_0=" + number(p.scaleFactor);
        break;
    case ProjectionType::DoubleStereographic:
    case ProjectionType::ObliqueStereographicRd2000:
    case ProjectionType::ObliqueStereographicRd2004:
        d = "+proj=sterea +lat_0=" + number(p.latitudeOfOrigin) +
            " +lon_0=" + number(p.centralMeridian) + " +k=" + number(p.scaleFactor) + origin;
        break;
    case ProjectionType::ObliqueStereographic:
        d = "+proj=stere +lat_0=" + number(p.latitudeOfOrigin) +
            " +lon_0=" + number(p.centralMeridian) + " +k=" + number(p.scaleFactor) + origin;
        break;
    case ProjectionType::ObliqueMercator:
        // With the initial line running east-west and the grid rectified
        // onto it (the Swiss grids), the general formulas lose up to a
        // decimetre near the centre; the oblique cylinder tangent along that
        // line (somerc) is the same projection in closed form.
        if (isEastWestLine(p)) {
            d = "+proj=somerc +lat_0=" + number(p.latitudeOfCenter) +
                " +lon_0=" + number(p.longitudeOfCenter) + " +k_0=" + number(p.scaleFactor) +
                origin;
            break;
        }
        // False origin at the projection centre.
        d = "+proj=omerc +lat_0=" + number(p.latitudeOfCenter) +
            " +lonc=" + number(p.longitudeOfCenter) + " +alpha=" + number(p.azimuth) +
            " +gamma=" + number(p.rectifiedGridAngle) + " +k=" + number(p.scaleFactor) + origin;
        break;
    case ProjectionType::HotineObliqueMercator:
        // False origin at the natural origin.
        d = "+proj=omerc +no_uoff +lat_0=" + number(p.latitudeOfCenter) +
            " +lonc=" + number(p.longitudeOfCenter) + " +alpha=" + number(p.azimuth) +
            " +gamma=" + number(p.rectifiedGridAngle) + " +k=" + number(p.scaleFactor) + origin;
        break;
    case ProjectionType::ObliqueMercator83:
        // The Alaska zone 1 form: the grid is rectified by the azimuth itself.
        d = "+proj=omerc +no_uoff +lat_0=" + number(p.latitudeOfCenter) +
            " +lonc=" + number(p.longitudeOfCenter) + " +alpha=" + number(p.azimuth) +
            " +gamma=" + number(p.azimuth) + " +k=" + number(p.scaleFactor) + origin;
        break;
    case ProjectionType::ObliqueMercatorEov: {
        std::string eov;
        if (Status status = eovDefinition(eov); !status)
            return status;
        d = eov + origin;
        break;
    }
    case ProjectionType::Krovak:
        // Grid axes east and north (negative over the Czech and Slovak
        // republics), like the written AXIS["East",East],AXIS["North",North].
        d = "+proj=krovak +lat_0=" + number(p.latitudeOfCenter) +
            " +lon_0=" + number(p.longitudeOfCenter) + " +alpha=" + number(p.azimuth) +
            " +k=" + number(p.scaleFactor) + " +lat_ts=" + number(p.pseudoStandardParallel) +
            origin;
        break;
    case ProjectionType::CassiniSoldner:
        d = "+proj=cass +lat_0=" + number(p.latitudeOfOrigin) +
            " +lon_0=" + number(p.centralMeridian) + origin;
        break;
    case ProjectionType::NewZealandMapGrid:
        // The grid's complex polynomial holds its own origin and ellipsoid
        // (International 1924); the given ones are for the written text.
        d = "+proj=nzmg +lat_0=" + number(p.latitudeOfOrigin) +
            " +lon_0=" + number(p.centralMeridian) + origin;
        break;
    case ProjectionType::TransverseMercator34:
    case ProjectionType::ObliqueMercator27:
    case ProjectionType::LambertConformalConic27:
    case ProjectionType::TransverseMercator27:
    case ProjectionType::TransverseMercatorAlaska27:
        return notSupported(cs.type);
    }
    out = d + ellipsoidDefinition(cs.ellipsoid()) + " +no_defs";
    return Status::success();
}

struct Projection::Impl {
    detail::ContextPtr ctx;
    PjPtr pj;

    Status failure(StatusCode code = StatusCode::OutOfRange) const {
        proj_errno_reset(pj.get());
        return Status::failure(code, tr(messages::kOutsideProjection));
    }
};

Projection::Projection() = default;
Projection::~Projection() = default;
Projection::Projection(Projection &&) noexcept = default;
Projection &Projection::operator=(Projection &&) noexcept = default;

Status Projection::open(const CoordinateSystem &system) {
    m_impl.reset();
    std::string definition;
    if (Status status = projDefinition(system, definition); !status)
        return status;
    auto impl = std::make_unique<Impl>();
    if (Status status = detail::createOperation(definition, impl->ctx, impl->pj); !status)
        return status;
    m_impl = std::move(impl);
    return Status::success();
}

bool Projection::isOpen() const {
    return m_impl != nullptr;
}

namespace {

Status checkGeographic(double latitude, double longitude) {
    if (!std::isfinite(latitude) || !std::isfinite(longitude))
        return Status::failure(StatusCode::InvalidInput, tr(messages::kOutsideProjection));
    if (std::fabs(latitude) > 90.0)
        return Status::failure(StatusCode::OutOfRange, tr(messages::kLatitudeBeyondPoles));
    return Status::success();
}

} // namespace

Status Projection::forward(double latitude, double longitude, double &northing,
                           double &easting) const {
    if (!m_impl)
        return Status::failure(StatusCode::InvalidInput, tr(messages::kOutsideProjection));
    if (Status status = checkGeographic(latitude, longitude); !status)
        return status;
    const PJ_COORD out = proj_trans(m_impl->pj.get(), PJ_FWD,
                                    proj_coord(radians(longitude), radians(latitude), 0, 0));
    if (!std::isfinite(out.xy.x) || !std::isfinite(out.xy.y) || out.xy.x == HUGE_VAL)
        return m_impl->failure();
    easting = out.xy.x;
    northing = out.xy.y;
    return Status::success();
}

Status Projection::inverse(double northing, double easting, double &latitude,
                           double &longitude) const {
    if (!m_impl || !std::isfinite(northing) || !std::isfinite(easting))
        return Status::failure(StatusCode::InvalidInput, tr(messages::kOutsideProjection));
    const PJ_COORD out = proj_trans(m_impl->pj.get(), PJ_INV, proj_coord(easting, northing, 0, 0));
    if (!std::isfinite(out.lp.lam) || !std::isfinite(out.lp.phi) || out.lp.lam == HUGE_VAL)
        return m_impl->failure();
    latitude = degrees(out.lp.phi);
    longitude = degrees(out.lp.lam);
    return Status::success();
}

Status Projection::factorsAt(double latitude, double longitude, GridFactors &factors) const {
    if (!m_impl)
        return Status::failure(StatusCode::InvalidInput, tr(messages::kOutsideProjection));
    if (Status status = checkGeographic(latitude, longitude); !status)
        return status;
    const PJ_FACTORS f =
        proj_factors(m_impl->pj.get(), proj_coord(radians(longitude), radians(latitude), 0, 0));
    if (proj_errno(m_impl->pj.get()) != 0 || !std::isfinite(f.meridional_scale) ||
        !std::isfinite(f.meridian_convergence))
        return m_impl->failure();
    // Conformal types have one scale in every direction. Cassini-Soldner is
    // not conformal: it gets the geometric mean of its meridian and
    // parallel scales, the mean distortion of a length of any bearing.
    factors.scaleFactor = std::sqrt(f.meridional_scale * f.parallel_scale);
    factors.convergence = degrees(f.meridian_convergence);
    return Status::success();
}

Status Projection::gridFactors(double northing, double easting, GridFactors &factors) const {
    double latitude = 0, longitude = 0;
    if (Status status = inverse(northing, easting, latitude, longitude); !status)
        return status;
    return factorsAt(latitude, longitude, factors);
}

} // namespace tramline::geodesy
