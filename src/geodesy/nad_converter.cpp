#include "geodesy/nad_converter.h"

#include "base/angles.h"
#include "base/translation.h"
#include "geodesy/messages.h"
#include "geodesy/proj_support.h"

#include <cmath>
#include <vector>

namespace tramline::geodesy {

struct NadConverter::Impl {
    detail::ContextPtr ctx;
    detail::PjPtr pj;
};

NadConverter::NadConverter() = default;
NadConverter::~NadConverter() = default;
NadConverter::NadConverter(NadConverter &&) noexcept = default;
NadConverter &NadConverter::operator=(NadConverter &&) noexcept = default;

Status NadConverter::open(const std::filesystem::path &dataFolder, const std::string &grid) {
    m_impl.reset();
    auto impl = std::make_unique<Impl>();
    impl->ctx = detail::newContext();
    // The data folder first, then PROJ's own search path.
    const std::string folder = dataFolder.string();
    const char *defaultPath = proj_info().searchpath;
    const std::string projPath = defaultPath ? defaultPath : "";
    std::vector<std::string> paths = {folder};
    std::size_t start = 0;
    while (start <= projPath.size() && !projPath.empty()) {
        const std::size_t colon = std::min(projPath.find(':', start), projPath.size());
        if (colon > start)
            paths.push_back(projPath.substr(start, colon - start));
        start = colon + 1;
    }
    std::vector<const char *> pointers;
    for (const auto &p : paths)
        pointers.push_back(p.c_str());
    proj_context_set_search_paths(impl->ctx.get(), static_cast<int>(pointers.size()),
                                  pointers.data());
    proj_context_set_enable_network(impl->ctx.get(), 0);
    impl->pj.reset(proj_create(impl->ctx.get(), ("+proj=hgridshift +grids=" + grid).c_str()));
    if (!impl->pj)
        return Status::failure(StatusCode::NotFound, tr(messages::kNadConverter));
    m_impl = std::move(impl);
    return Status::success();
}

Status NadConverter::convert(double &latitude, double &longitude, bool toNad27) const {
    if (!m_impl)
        return Status::failure(StatusCode::NotFound, tr(messages::kNadConverter));
    if (!std::isfinite(latitude) || !std::isfinite(longitude) || std::fabs(latitude) > 90.0)
        return Status::failure(StatusCode::InvalidInput, tr(messages::kLatitudeBeyondPoles));
    const PJ_COORD out = proj_trans(m_impl->pj.get(), toNad27 ? PJ_INV : PJ_FWD,
                                    proj_coord(radians(longitude), radians(latitude), 0, 0));
    if (!std::isfinite(out.lp.phi) || !std::isfinite(out.lp.lam) || out.lp.lam == HUGE_VAL) {
        proj_errno_reset(m_impl->pj.get());
        return Status::failure(StatusCode::OutOfRange, tr(messages::kOutsideShiftGrid));
    }
    latitude = degrees(out.lp.phi);
    longitude = degrees(out.lp.lam);
    return Status::success();
}

} // namespace tramline::geodesy
