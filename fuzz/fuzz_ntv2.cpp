// Fuzzes the NTv2 ASCII reader: any bytes, no crash, bounded memory, and a
// grid that is read shifts a point inside it by a finite amount.
#include "geodesy/ntv2_grid.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace tramline::geodesy;
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    Ntv2Grid grid;
    if (!Ntv2Grid::read(in, grid).ok())
        return 0;
    double dLat = 0, dLon = 0;
    const double latitude = (grid.southSeconds() + grid.northSeconds()) / 7200.0;
    const double longitude = -(grid.eastSeconds() + grid.westSeconds()) / 7200.0;
    if (grid.shiftAt(latitude, longitude, dLat, dLon).ok() &&
        (!std::isfinite(dLat) || !std::isfinite(dLon)))
        std::abort();
    return 0;
}
