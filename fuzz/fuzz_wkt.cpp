// Fuzzes the reader of compound well-known text: any bytes, no crash, and
// whatever it accepts writes and reads back to the same line.
#include "geodesy/wkt.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace tramline::geodesy;
    const std::string text(reinterpret_cast<const char *>(data), size);
    CoordinateSystem system;
    if (!readWkt(text, system).ok())
        return 0;
    const std::string line = writeWkt(system);
    CoordinateSystem again;
    if (!readWkt(line, again).ok() || writeWkt(again) != line)
        std::abort();
    return 0;
}
