// Fuzzes the ".grd" grid reader (geoid and shift grids) and the GTX reader
// of the importer: any bytes, no crash, bounded memory, and a grid that is
// read gives finite separations inside its bounds.
#include "geodesy/geoid_grid.h"
#include "geodesy/gtx_import.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace tramline::geodesy;
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    GeoidGrid grid;
    std::istringstream text(bytes);
    if (GeoidGrid::read(text, "fuzz.grd", grid).ok()) {
        const GridBounds &b = grid.bounds();
        double n = 0;
        if (grid.separation((b.south + b.north) / 2, (b.west + b.east) / 2, n) && !std::isfinite(n))
            std::abort();
    }
    std::istringstream binary(bytes);
    if (readGtx(binary, "fuzz.gtx", grid).ok()) {
        std::ostringstream out;
        grid.write(out);
    }
    return 0;
}
