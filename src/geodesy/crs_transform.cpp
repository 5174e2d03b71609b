#include "geodesy/crs_transform.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "geodesy/datum_shift.h"
#include "geodesy/proj_support.h"
#include "geodesy/projection.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace tramline::geodesy {

namespace {

using detail::ContextPtr;
using detail::PjPtr;

constexpr const char *kSystemRefused = trNoop("Error: not a coordinate system: %s (%s)");
constexpr const char *kNoOperation = trNoop("Error: no conversion from %s to %s (%s)");
constexpr const char *kNoFactors = trNoop("Error: no grid scale factor here");

std::string number(double v) {
    return format("%.17g", v);
}

bool isGeographic(PJ_TYPE type) {
    return type == PJ_TYPE_GEOGRAPHIC_2D_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS ||
           type == PJ_TYPE_GEODETIC_CRS;
}

// The horizontal part of a system: a bound system (a PROJ string with
// +towgs84) wraps it, a compound one holds it first.
PjPtr horizontalOf(PJ_CONTEXT *ctx, const PJ *crs) {
    PjPtr current(proj_clone(ctx, crs));
    for (int depth = 0; current && depth < 3; ++depth) {
        const PJ_TYPE type = proj_get_type(current.get());
        if (type == PJ_TYPE_BOUND_CRS)
            current.reset(proj_get_source_crs(ctx, current.get()));
        else if (type == PJ_TYPE_COMPOUND_CRS)
            current.reset(proj_crs_get_sub_crs(ctx, current.get(), 0));
        else
            break;
    }
    return current;
}

CrsUnit unitOf(PJ_CONTEXT *ctx, const PJ *crs) {
    CrsUnit unit;
    PjPtr horizontal = horizontalOf(ctx, crs);
    if (!horizontal)
        return unit;
    unit.geographic = isGeographic(proj_get_type(horizontal.get()));
    PjPtr cs(proj_crs_get_coordinate_system(ctx, horizontal.get()));
    const char *name = nullptr;
    double factor = 1.0;
    if (cs && proj_cs_get_axis_info(ctx, cs.get(), 0, nullptr, nullptr, nullptr, &factor, &name,
                                    nullptr, nullptr)) {
        unit.toBase = factor;
        unit.name = name ? name : "";
    }
    return unit;
}

// A box in the system's own coordinates around its area of use. Other
// PROJ strings carry no area: for a transverse Mercator one the zone is taken
// as 6 degrees either side of its meridian, in the hemisphere its false
// northing implies.
CrsArea areaOf(PJ_CONTEXT *ctx, const PJ *crs, const std::string &definition,
               const std::string &areaSystem) {
    CrsArea area;
    double west = 0, south = 0, east = 0, north = 0;
    const char *name = nullptr;
    // A system of this program reaches PROJ as a string without an area;
    // the database system it was taken from knows where it is meant for.
    PjPtr stated(areaSystem.empty() ? nullptr : proj_create(ctx, areaSystem.c_str()));
    bool found = proj_get_area_of_use(ctx, stated ? stated.get() : crs, &west, &south, &east,
                                      &north, &name) &&
                 west > -1000;
    if (found) {
        area.name = name ? name : "";
    } else if (definition.find("+proj=tmerc") != std::string::npos ||
               definition.find("+proj=utm") != std::string::npos) {
        double lon0 = 0, y0 = 0;
        int zone = 0;
        for (const std::string_view token : split(definition, ' ')) {
            std::string_view key, value;
            if (!splitKeyValue(token, '=', key, value))
                continue;
            if (key == "+lon_0")
                parseNumber(value, lon0);
            else if (key == "+y_0")
                parseNumber(value, y0);
            else if (key == "+zone")
                zone = std::atoi(std::string(value).c_str());
        }
        if (zone > 0)
            lon0 = zone * 6.0 - 183.0;
        const bool southern = y0 >= 5e6 || definition.find("+south") != std::string::npos;
        west = lon0 - 6.0;
        east = lon0 + 6.0;
        south = southern ? -84.0 : 0.0;
        north = southern ? 0.0 : 84.0;
        found = true;
    }
    if (!found)
        return area;
    PjPtr horizontal = horizontalOf(ctx, crs);
    if (!horizontal || isGeographic(proj_get_type(horizontal.get())))
        return area;
    PjPtr geographic(proj_crs_get_geodetic_crs(ctx, horizontal.get()));
    if (!geographic)
        return area;
    PjPtr op(
        proj_create_crs_to_crs_from_pj(ctx, geographic.get(), horizontal.get(), nullptr, nullptr));
    PjPtr normalized(op ? proj_normalize_for_visualization(ctx, op.get()) : nullptr);
    if (!normalized)
        return area;
    if (!proj_trans_bounds(ctx, normalized.get(), PJ_FWD, west, south, east, north, &area.xMin,
                           &area.yMin, &area.xMax, &area.yMax, 21))
        return area;
    area.northernOnly = south >= 0.0;
    area.known = true;
    return area;
}

// What proj_factors() takes: the system's projection in metres. PROJ 9.1
// gets the factors of a system in feet wrong (it scales the input), and
// neither factor depends on the unit.
PjPtr factorsProjection(PJ_CONTEXT *ctx, PjPtr crs) {
    const char *text = crs ? proj_as_proj_string(ctx, crs.get(), PJ_PROJ_5, nullptr) : nullptr;
    if (!text)
        return crs;
    std::string definition;
    for (const std::string_view token : split(text, ' ')) {
        if (token.empty() || token.starts_with("+units=") || token.starts_with("+to_meter=") ||
            token.starts_with("+type=") || token.starts_with("+vunits="))
            continue;
        definition += std::string(token) + ' ';
    }
    definition += "+units=m";
    PjPtr projection(proj_create(ctx, definition.c_str()));
    return projection ? std::move(projection) : std::move(crs);
}

} // namespace

Status crsDefinition(const CoordinateSystem &system, bool geographic, std::string &definition) {
    std::string projection = "+proj=longlat";
    if (!geographic)
        if (Status status = projDefinition(system, projection); !status)
            return status;
    const Ellipsoid e = system.ellipsoid();
    const ToWgs84 t = toWgs84(system.shift);
    definition = projection;
    // The projection may carry its own ellipsoid; the system's wins.
    definition += e.f == 0.0 ? " +R=" + number(e.a) : " +a=" + number(e.a) + " +f=" + number(e.f);
    definition += " +towgs84=";
    for (std::size_t i = 0; i < 7; ++i)
        definition += (i ? "," : "") + number(t.values[i]);
    definition += geographic ? " +no_defs +type=crs" : " +units=m +no_defs +type=crs";
    return Status::success();
}

struct CrsTransform::Impl {
    ContextPtr ctx;
    PjPtr op;     // source to target, easting/longitude first
    PjPtr toGrid; // source to the grid side's geographic system, for the factors
    PjPtr grid;   // the grid side's system
    CrsUnit source, target;
    CrsArea area;
    bool areaOnSource = false;
};

CrsTransform::CrsTransform() = default;
CrsTransform::~CrsTransform() = default;
CrsTransform::CrsTransform(CrsTransform &&) noexcept = default;
CrsTransform &CrsTransform::operator=(CrsTransform &&) noexcept = default;

Status CrsTransform::open(const std::string &from, const std::string &to,
                          const std::string &fromArea, const std::string &toArea) {
    m_impl.reset();
    auto impl = std::make_unique<Impl>();
    impl->ctx = detail::newContext();
    PJ_CONTEXT *ctx = impl->ctx.get();
    const auto isLatLon = [](const std::string &s) { return equalsIgnoreCase(trim(s), "latlon"); };
    const auto create = [&](const std::string &text, PjPtr &crs) -> Status {
        crs.reset(proj_create(ctx, text.c_str()));
        if (!crs || !proj_is_crs(crs.get()))
            return Status::failure(StatusCode::InvalidInput,
                                   format(tr(kSystemRefused), text.c_str(),
                                          crs ? "not a system" : detail::lastError(ctx).c_str()));
        return Status::success();
    };
    PjPtr source, target;
    if (!isLatLon(from))
        if (Status status = create(from, source); !status)
            return status;
    if (!isLatLon(to))
        if (Status status = create(to, target); !status)
            return status;
    const auto geographicOf = [&](const PjPtr &other, PjPtr &crs) -> Status {
        if (!other)
            return create("EPSG:4326", crs);
        PjPtr horizontal = horizontalOf(ctx, other.get());
        crs.reset(horizontal ? proj_crs_get_geodetic_crs(ctx, horizontal.get()) : nullptr);
        if (!crs)
            return Status::failure(StatusCode::InvalidInput,
                                   format(tr(kSystemRefused), "latlon", "no datum"));
        return Status::success();
    };
    if (!source)
        if (Status status = geographicOf(target, source); !status)
            return status;
    if (!target)
        if (Status status = geographicOf(source, target); !status)
            return status;
    PjPtr op(proj_create_crs_to_crs_from_pj(ctx, source.get(), target.get(), nullptr, nullptr));
    if (op)
        impl->op.reset(proj_normalize_for_visualization(ctx, op.get()));
    if (!impl->op)
        return Status::failure(
            StatusCode::NotFound,
            format(tr(kNoOperation), from.c_str(), to.c_str(), detail::lastError(ctx).c_str()));
    impl->source = unitOf(ctx, source.get());
    impl->target = unitOf(ctx, target.get());
    impl->areaOnSource = impl->target.geographic && !impl->source.geographic;
    const PjPtr &gridSide = impl->areaOnSource ? source : target;
    impl->area = impl->areaOnSource ? areaOf(ctx, gridSide.get(), from, fromArea)
                                    : areaOf(ctx, gridSide.get(), to, toArea);
    if (!(impl->source.geographic && impl->target.geographic)) {
        PjPtr horizontal = horizontalOf(ctx, gridSide.get());
        PjPtr geographic(horizontal ? proj_crs_get_geodetic_crs(ctx, horizontal.get()) : nullptr);
        PjPtr toGrid(geographic ? proj_create_crs_to_crs_from_pj(ctx, source.get(),
                                                                 geographic.get(), nullptr, nullptr)
                                : nullptr);
        if (toGrid) {
            impl->toGrid.reset(proj_normalize_for_visualization(ctx, toGrid.get()));
            impl->grid = factorsProjection(ctx, std::move(horizontal));
        }
    }
    m_impl = std::move(impl);
    return Status::success();
}

const CrsUnit &CrsTransform::sourceUnit() const {
    return m_impl->source;
}
const CrsUnit &CrsTransform::targetUnit() const {
    return m_impl->target;
}
const CrsArea &CrsTransform::area() const {
    return m_impl->area;
}
bool CrsTransform::areaOnSource() const {
    return m_impl->areaOnSource;
}

void CrsTransform::transform(double *x, double *y, double *z, std::size_t count) const {
    if (!m_impl || count == 0)
        return;
    proj_trans_generic(m_impl->op.get(), PJ_FWD, x, sizeof(double), count, y, sizeof(double), count,
                       z, z ? sizeof(double) : 0, z ? count : 0, nullptr, 0, 0);
    for (std::size_t i = 0; i < count; ++i)
        if (!std::isfinite(x[i]) || !std::isfinite(y[i])) {
            x[i] = HUGE_VAL;
            y[i] = HUGE_VAL;
        }
}

Status CrsTransform::toGeographic(double x, double y, double &latitude, double &longitude) const {
    if (!m_impl || !m_impl->toGrid)
        return Status::failure(StatusCode::OutOfRange, tr(kNoFactors));
    const PJ_COORD geographic = proj_trans(m_impl->toGrid.get(), PJ_FWD, proj_coord(x, y, 0, 0));
    if (!std::isfinite(geographic.xy.x) || geographic.xy.x == HUGE_VAL)
        return Status::failure(StatusCode::OutOfRange, tr(kNoFactors));
    longitude = geographic.xy.x;
    latitude = geographic.xy.y;
    return Status::success();
}

Status CrsTransform::factors(double x, double y, double &scale, double &convergence) const {
    const auto failure = [] { return Status::failure(StatusCode::OutOfRange, tr(kNoFactors)); };
    double latitude = 0, longitude = 0;
    if (!m_impl || !m_impl->grid || !toGeographic(x, y, latitude, longitude))
        return failure();
    const PJ_FACTORS f = proj_factors(
        m_impl->grid.get(), proj_coord(longitude * M_PI / 180.0, latitude * M_PI / 180.0, 0, 0));
    if (proj_errno(m_impl->grid.get()) != 0 || !std::isfinite(f.meridional_scale) ||
        !std::isfinite(f.meridian_convergence)) {
        proj_errno_reset(m_impl->grid.get());
        return failure();
    }
    scale = std::sqrt(f.meridional_scale * f.parallel_scale);
    convergence = f.meridian_convergence * 180.0 / M_PI;
    return Status::success();
}

} // namespace tramline::geodesy
