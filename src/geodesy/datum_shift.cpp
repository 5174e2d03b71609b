#include "geodesy/datum_shift.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"
#include "geodesy/proj_support.h"

#include <cmath>

namespace tramline::geodesy {

ToWgs84 toWgs84(const DatumShift &s) {
    return {{0.0 - s.dx, 0.0 - s.dy, 0.0 - s.dz, s.rx, s.ry, s.rz, invertScalePpm(s.scalePpm)}};
}

struct SevenParameterShift::Impl {
    detail::ContextPtr ctx;
    detail::PjPtr pj; // datum to WGS 84

    Status run(PJ_DIRECTION direction, double &latitude, double &longitude, double &height) const {
        if (!std::isfinite(latitude) || !std::isfinite(longitude) || !std::isfinite(height) ||
            std::fabs(latitude) > 90.0)
            return Status::failure(StatusCode::InvalidInput, tr(messages::kLatitudeBeyondPoles));
        const PJ_COORD out = proj_trans(
            pj.get(), direction, proj_coord(radians(longitude), radians(latitude), height, 0));
        if (!std::isfinite(out.lpz.phi) || !std::isfinite(out.lpz.lam) || out.lpz.lam == HUGE_VAL) {
            proj_errno_reset(pj.get());
            return Status::failure(StatusCode::OutOfRange, tr(messages::kDatumShiftFailed));
        }
        latitude = degrees(out.lpz.phi);
        longitude = degrees(out.lpz.lam);
        height = out.lpz.z;
        return Status::success();
    }
};

SevenParameterShift::SevenParameterShift() = default;
SevenParameterShift::~SevenParameterShift() = default;
SevenParameterShift::SevenParameterShift(SevenParameterShift &&) noexcept = default;
SevenParameterShift &SevenParameterShift::operator=(SevenParameterShift &&) noexcept = default;

Status SevenParameterShift::open(const CoordinateSystem &system) {
    m_impl.reset();
    const Ellipsoid e = system.ellipsoid();
    const ToWgs84 t = geodesy::toWgs84(system.shift);
    const std::string ellipsoid =
        e.f == 0.0 ? format("+R=%.17g", e.a) : format("+a=%.17g +f=%.17g", e.a, e.f);
    const std::string definition =
        format("+proj=pipeline +step +proj=cart %s +step +proj=helmert +x=%.17g +y=%.17g +z=%.17g "
               "+rx=%.17g "
               "+ry=%.17g +rz=%.17g +s=%.17g +convention=position_vector +step +inv +proj=cart "
               "+ellps=WGS84",
               ellipsoid.c_str(), t.values[0], t.values[1], t.values[2], t.values[3], t.values[4],
               t.values[5], t.values[6]);
    auto impl = std::make_unique<Impl>();
    if (Status status = detail::createOperation(definition, impl->ctx, impl->pj); !status)
        return status;
    m_impl = std::move(impl);
    return Status::success();
}

Status SevenParameterShift::fromWgs84(double &latitude, double &longitude, double &height) const {
    if (!m_impl)
        return Status::failure(StatusCode::InvalidInput, tr(messages::kDatumShiftFailed));
    return m_impl->run(PJ_INV, latitude, longitude, height);
}

Status SevenParameterShift::toWgs84(double &latitude, double &longitude, double &height) const {
    if (!m_impl)
        return Status::failure(StatusCode::InvalidInput, tr(messages::kDatumShiftFailed));
    return m_impl->run(PJ_FWD, latitude, longitude, height);
}

} // namespace tramline::geodesy
