#include "geodesy/shift_grids.h"

#include "base/format.h"
#include "base/translation.h"
#include "geodesy/messages.h"

#include <filesystem>

namespace tramline::geodesy {

const std::vector<ShiftGridSystem> &shiftGridSystems() {
    static const std::vector<ShiftGridSystem> systems = {
        {"Belgium", {"Belgium72_dEast.grd", "Belgium72_dNorth.grd"}},
        {"Czech", {"CzechJtskGrid_dx.grd", "CzechJtskGrid_dy.grd"}},
        {"Greece", {"Greece_HEPOS_dEast.grd", "Greece_HEPOS_dNorth.grd"}},
        {"VITEL",
         {"HungarianEOV_dEast.grd", "HungarianEOV_dNorth.grd", "HungarianEOV_dHeight.grd"}},
        {"VITEL2009",
         {"HungarianEOV2009_dE.grd", "HungarianEOV2009_dN.grd", "HungarianEOV2009_dH.grd"}},
        {"VITEL2014",
         {"HungarianEOV2014_dE.grd", "HungarianEOV2014_dN.grd", "HungarianEOV2014_dH.grd"}},
        {"Ireland",
         {"IrelandIG_East.grd", "IrelandIG_North.grd", "IrelandIG_Lat.grd", "IrelandIG_Lon.grd"}},
        {"YKJ North", {"YKJN_dEast.grd", "YKJN_dNorth.grd"}},
        {"YKJ South", {"YKJS_dEast.grd", "YKJS_dNorth.grd"}},
    };
    return systems;
}

Status ShiftGrids::open(const std::string &name, const std::filesystem::path &dataFolder) {
    m_grids.clear();
    const ShiftGridSystem *system = nullptr;
    for (const auto &s : shiftGridSystems())
        if (name == s.name)
            system = &s;
    if (!system)
        return Status::failure(StatusCode::NotFound,
                               format(tr(messages::kMissingDatumShiftFile), name.c_str()));
    std::vector<GeoidGrid> grids;
    for (const char *file : system->files) {
        const auto path = dataFolder / file;
        std::error_code ec;
        if (!std::filesystem::is_regular_file(path, ec))
            return Status::failure(
                StatusCode::NotFound,
                format(tr(messages::kMissingDatumShiftFile), path.string().c_str()));
        GeoidGrid grid;
        if (Status status = GeoidGrid::load(path, grid); !status)
            return status;
        grids.push_back(std::move(grid));
    }
    m_grids = std::move(grids);
    return Status::success();
}

Status ShiftGrids::shiftsAt(double latitude, double longitude, std::vector<double> &shifts) const {
    std::vector<double> values;
    for (const auto &grid : m_grids) {
        double v = 0;
        if (!grid.separation(latitude, longitude, v))
            return Status::failure(StatusCode::OutOfRange, tr(messages::kOutsideShiftGrid));
        values.push_back(v);
    }
    if (m_grids.empty())
        return Status::failure(StatusCode::OutOfRange, tr(messages::kOutsideShiftGrid));
    shifts = std::move(values);
    return Status::success();
}

} // namespace tramline::geodesy
