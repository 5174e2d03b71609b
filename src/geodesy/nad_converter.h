// NAD27 to NAD83 by the NADCON grids, through PROJ's grid shift. The grids
// are not part of the program: they come from PROJ's data packages (the
// "us_noaa_conus.tif" family) or are put in the data folder.
#pragma once

#include "geodesy/status.h"

#include <filesystem>
#include <memory>
#include <string>

namespace tramline::geodesy {

/// The NADCON grid of the conterminous United States, as PROJ names it.
inline constexpr const char *kNadconConus = "us_noaa_conus.tif";

class NadConverter {
public:
    NadConverter();
    ~NadConverter();
    NadConverter(NadConverter &&) noexcept;
    NadConverter &operator=(NadConverter &&) noexcept;

    /// Opens the shift grid `grid`, looked for in `dataFolder` and PROJ's
    /// own data folders. Fails with "\nInternal Error1: failed to open
    /// NadConverter" when it cannot be found or read.
    Status open(const std::filesystem::path &dataFolder, const std::string &grid = kNadconConus);

    /// Shifts a NAD27 position (decimal degrees, north and east positive)
    /// to NAD83, or back with `toNad27`. Fails with "Point is outside the
    /// range of the grid" outside the grid.
    Status convert(double &latitude, double &longitude, bool toNad27 = false) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tramline::geodesy
