// National datum shifts by interpolation in ".grd" grid files (the geoid
// grid layout of geoid_grid.h, node values in metres): a set of grids per
// system, one per shifted quantity, looked for in the data folder.
#pragma once

#include "geodesy/geoid_grid.h"
#include "geodesy/status.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tramline::geodesy {

/// The systems shifted by grid files, and their files in order (east,
/// north, then height or the further quantities).
struct ShiftGridSystem {
    const char *name;
    std::vector<const char *> files;
};
const std::vector<ShiftGridSystem> &shiftGridSystems();

class ShiftGrids {
public:
    /// Opens every file of the system `name` ("Belgium", "Czech", "Greece",
    /// "VITEL", "VITEL2009", "VITEL2014", "Ireland", "YKJ North",
    /// "YKJ South") from `dataFolder`. A missing file fails with "Error:
    /// missing datum shift file %s" (its path); an unknown system with
    /// NotFound.
    Status open(const std::string &name, const std::filesystem::path &dataFolder);

    /// The shifts at a point (decimal degrees), one per file in the
    /// system's order, metres. Fails with "Point is outside the range of
    /// the grid" outside any of the grids.
    Status shiftsAt(double latitude, double longitude, std::vector<double> &shifts) const;

    std::size_t size() const { return m_grids.size(); }

private:
    std::vector<GeoidGrid> m_grids;
};

} // namespace tramline::geodesy
