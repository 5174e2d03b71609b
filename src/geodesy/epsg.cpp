// Reading zone definitions from proj.db. The projection parameters map
// from EPSG parameter codes onto the program's parameters; the datum shift
// is the first grid-free Helmert transformation PROJ ranks for the zone's
// area, which is what a surveyor without national grid files would use.
#include "geodesy/epsg.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"
#include "geodesy/proj_support.h"

#include <cmath>
#include <cstring>
#include <map>

namespace tramline::geodesy {

namespace {

using detail::ObjListPtr;
using detail::PjPtr;

Status databaseError(int code) {
    return Status::failure(StatusCode::NotFound,
                           format(tr(messages::kNoZoneDatabase), format("EPSG:%d", code).c_str()));
}

// EPSG method codes that have a projection type here.
std::optional<ProjectionType> typeForMethod(int method) {
    switch (method) {
    case 9807:
        return ProjectionType::TransverseMercator;
    case 9801:
        return ProjectionType::LambertConformalConic1SP;
    case 9802:
    case 1051: // the Michigan variant: an ellipsoid scaled by a factor
        return ProjectionType::LambertConformalConic2SP;
    case 9809:
        return ProjectionType::DoubleStereographic;
    case 9810: // polar stereographic: the oblique formulas at a pole
        return ProjectionType::ObliqueStereographic;
    case 9812:
        return ProjectionType::HotineObliqueMercator;
    case 9815:
        return ProjectionType::ObliqueMercator;
    case 9819:
        return ProjectionType::Krovak;
    case 9806:
        return ProjectionType::CassiniSoldner;
    case 9811:
        return ProjectionType::NewZealandMapGrid;
    default:
        return std::nullopt;
    }
}

// Where an EPSG parameter goes; false for one the program has no use for.
bool assignParameter(int epsgCode, double value, ProjectionParameters &p) {
    switch (epsgCode) {
    case 8801: // latitude of natural origin
    case 8821: // latitude of false origin
        p.latitudeOfOrigin = value;
        return true;
    case 8802: // longitude of natural origin
    case 8822: // longitude of false origin
        p.centralMeridian = value;
        return true;
    case 8805: // scale factor at natural origin
    case 8815: // scale factor on initial line
    case 8819: // scale factor on pseudo standard parallel
    case 1038: // ellipsoid scaling factor (Michigan)
        p.scaleFactor = value;
        return true;
    case 8806:
    case 8826:
    case 8816:
        p.falseEasting = value;
        return true;
    case 8807:
    case 8827:
    case 8817:
        p.falseNorthing = value;
        return true;
    case 8823:
        p.standardParallel1 = value;
        return true;
    case 8824:
        p.standardParallel2 = value;
        return true;
    case 8811: // latitude of projection centre
        p.latitudeOfCenter = value;
        return true;
    case 8812: // longitude of projection centre
    case 8833: // longitude of origin (Krovak)
        p.longitudeOfCenter = value;
        return true;
    case 8813: // azimuth of initial line
    case 1036: // co-latitude of cone axis (Krovak)
        p.azimuth = value;
        return true;
    case 8814:
        p.rectifiedGridAngle = value;
        return true;
    case 8818:
        p.pseudoStandardParallel = value;
        return true;
    default:
        return false;
    }
}

// The Helmert values of an operation, also inside a concatenation whose
// other steps only turn the prime meridian.
bool helmertValues(PJ_CONTEXT *ctx, PJ *op, double values[7]) {
    if (proj_coordoperation_get_towgs84_values(ctx, op, values, 7, 0))
        return true;
    if (proj_get_type(op) != PJ_TYPE_CONCATENATED_OPERATION)
        return false;
    const int steps = proj_concatoperation_get_step_count(ctx, op);
    int found = 0;
    for (int i = 0; i < steps; ++i) {
        PjPtr step(proj_concatoperation_get_step(ctx, op, i));
        if (!step)
            return false;
        double v[7];
        if (proj_coordoperation_get_towgs84_values(ctx, step.get(), v, 7, 0)) {
            std::memcpy(values, v, sizeof v);
            ++found;
            continue;
        }
        const char *code = nullptr;
        proj_coordoperation_get_method_info(ctx, step.get(), nullptr, nullptr, &code);
        if (!code || std::strcmp(code, "9601") != 0) // longitude rotation
            return false;
    }
    return found == 1;
}

bool shiftToWgs84(PJ_CONTEXT *ctx, PJ *crs, PJ *geodetic, double values[7]) {
    PjPtr wgs84(proj_create_from_database(ctx, "EPSG", "4326", PJ_CATEGORY_CRS, 0, nullptr));
    PJ_OPERATION_FACTORY_CONTEXT *factory = proj_create_operation_factory_context(ctx, nullptr);
    if (!wgs84 || !factory) {
        proj_operation_factory_context_destroy(factory);
        return false;
    }
    proj_operation_factory_context_set_grid_availability_use(
        ctx, factory, PROJ_GRID_AVAILABILITY_DISCARD_OPERATION_IF_MISSING_GRID);
    proj_operation_factory_context_set_spatial_criterion(
        ctx, factory, PROJ_SPATIAL_CRITERION_PARTIAL_INTERSECTION);
    double west = 0, south = 0, east = 0, north = 0;
    if (proj_get_area_of_use(ctx, crs, &west, &south, &east, &north, nullptr) && west > -1000)
        proj_operation_factory_context_set_area_of_interest(ctx, factory, west, south, east, north);
    ObjListPtr ops(proj_create_operations(ctx, geodetic, wgs84.get(), factory));
    proj_operation_factory_context_destroy(factory);
    if (!ops)
        return false;
    const int count = proj_list_get_count(ops.get());
    for (int i = 0; i < count; ++i) {
        PjPtr op(proj_list_get(ctx, ops.get(), i));
        if (op && helmertValues(ctx, op.get(), values))
            return true;
    }
    return false;
}

} // namespace

std::string epsgName(int code) {
    auto db = detail::database();
    PjPtr crs(proj_create_from_database(db.ctx, "EPSG", std::to_string(code).c_str(),
                                        PJ_CATEGORY_CRS, 0, nullptr));
    const char *name = crs ? proj_get_name(crs.get()) : nullptr;
    return name ? name : "";
}

Status systemFromEpsg(int code, CoordinateSystem &system) {
    // Each zone is read once per run: the operation search takes a while.
    static std::mutex cacheMutex;
    static std::map<int, CoordinateSystem> cache;
    {
        std::lock_guard<std::mutex> guard(cacheMutex);
        if (auto it = cache.find(code); it != cache.end()) {
            system = it->second;
            return Status::success();
        }
    }

    auto db = detail::database();
    PJ_CONTEXT *ctx = db.ctx;
    PjPtr crs(proj_create_from_database(ctx, "EPSG", std::to_string(code).c_str(), PJ_CATEGORY_CRS,
                                        0, nullptr));
    if (!crs || proj_get_type(crs.get()) != PJ_TYPE_PROJECTED_CRS)
        return databaseError(code);
    PjPtr conversion(proj_crs_get_coordoperation(ctx, crs.get()));
    PjPtr geodetic(proj_crs_get_geodetic_crs(ctx, crs.get()));
    PjPtr ellipsoid(geodetic ? proj_get_ellipsoid(ctx, geodetic.get()) : nullptr);
    PjPtr meridian(geodetic ? proj_get_prime_meridian(ctx, geodetic.get()) : nullptr);
    if (!conversion || !ellipsoid || !meridian)
        return databaseError(code);

    const char *methodCode = nullptr;
    const char *methodName = nullptr;
    proj_coordoperation_get_method_info(ctx, conversion.get(), &methodName, nullptr, &methodCode);
    const auto type = methodCode ? typeForMethod(std::atoi(methodCode)) : std::nullopt;
    if (!type)
        return Status::failure(StatusCode::NotSupported, format(tr(messages::kTypeNotSupported),
                                                                methodName ? methodName : "?"));

    CoordinateSystem cs;
    cs.type = *type;
    cs.name = proj_get_name(crs.get());
    cs.datum = proj_get_name(geodetic.get());

    double a = 0, b = 0, inverseF = 0;
    int inverseComputed = 0;
    proj_ellipsoid_get_parameters(ctx, ellipsoid.get(), &a, &b, &inverseComputed, &inverseF);
    const double f = inverseF > 0 ? 1.0 / inverseF : (a - b) / a;
    const char *ellipsoidName = proj_get_name(ellipsoid.get());
    int index = findEllipsoidByName(ellipsoidName ? ellipsoidName : "");
    if (index >= 0 &&
        (std::fabs(ellipsoidAt(index).a - a) > 1e-3 || std::fabs(ellipsoidAt(index).f - f) > 1e-11))
        index = -1;
    if (index < 0)
        index = findEllipsoidByParameters(a, f);
    cs.ellipsoidIndex = index >= 0 ? index : kUserDefinedEllipsoid;
    if (index < 0) {
        cs.userSemiMajorAxis = a;
        cs.userInverseFlattening = f == 0.0 ? 0.0 : 1.0 / f;
    }

    double meridianLongitude = 0, meridianFactor = 1;
    proj_prime_meridian_get_parameters(ctx, meridian.get(), &meridianLongitude, &meridianFactor,
                                       nullptr);
    double greenwichOffset = degrees(meridianLongitude * meridianFactor);
    // The dataset gives Paris as 2.5969213 grads, which rounds the
    // meridian's published 2°20'14.025"; PROJ's own +pm=paris, and so every
    // French grid it computes, uses the latter (0.3 mm apart over France).
    if (const char *name = proj_get_name(meridian.get()); name && std::strcmp(name, "Paris") == 0)
        greenwichOffset = 2.0 + 20.0 / 60.0 + 14.025 / 3600.0;

    ProjectionParameters &p = cs.parameters;
    p.scaleFactor = 1.0;
    const int count = proj_coordoperation_get_param_count(ctx, conversion.get());
    for (int i = 0; i < count; ++i) {
        const char *paramCode = nullptr;
        const char *category = nullptr;
        double value = 0, factor = 1;
        if (!proj_coordoperation_get_param(ctx, conversion.get(), i, nullptr, nullptr, &paramCode,
                                           &value, nullptr, &factor, nullptr, nullptr, nullptr,
                                           &category) ||
            !paramCode)
            return databaseError(code);
        value *= factor; // metres, radians or unity
        if (category && std::strcmp(category, "angular") == 0)
            value = degrees(value);
        const int epsgParameter = std::atoi(paramCode);
        if (epsgParameter == 8802 || epsgParameter == 8822 || epsgParameter == 8812 ||
            epsgParameter == 8833)
            value += greenwichOffset;
        assignParameter(epsgParameter, value, p);
    }
    if (cs.type == ProjectionType::LambertConformalConic1SP)
        p.standardParallel1 = p.latitudeOfOrigin;
    // Variant A with the skew and rectified angles equal is the state plane
    // oblique Mercator of 1983 (Alaska zone 1).
    if (cs.type == ProjectionType::HotineObliqueMercator && p.rectifiedGridAngle == p.azimuth &&
        cs.datum.starts_with("NAD83"))
        cs.type = ProjectionType::ObliqueMercator83;

    double towgs84[7];
    if (shiftToWgs84(ctx, crs.get(), geodetic.get(), towgs84)) {
        // The record keeps the translations from WGS 84 to the datum and the
        // rotations as TOWGS84 has them.
        cs.shift = {0.0 - towgs84[0], 0.0 - towgs84[1], 0.0 - towgs84[2],          towgs84[3],
                    towgs84[4],       towgs84[5],       invertScalePpm(towgs84[6])};
    }

    cs.epsgCode = code;
    std::lock_guard<std::mutex> guard(cacheMutex);
    cache[code] = cs;
    system = std::move(cs);
    return Status::success();
}

} // namespace tramline::geodesy
