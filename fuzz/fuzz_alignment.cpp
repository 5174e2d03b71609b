// Fuzzes the alignment file reader: any bytes, no crash, and whatever it
// accepts writes and reads back to the same lines.
#include "geodesy/alignment_file.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace tramline::geodesy;
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    AlignmentFile file;
    if (!readAlignment(in, file).ok())
        return 0;
    std::string written;
    for (const AlignmentPoint &p : file.points)
        written += alignmentLine(p, file.systemText, file.geoidName);
    std::istringstream again(written);
    AlignmentFile back;
    if (!readAlignment(again, back).ok() || back.points.size() != file.points.size())
        std::abort();
    std::string rewritten;
    for (const AlignmentPoint &p : back.points)
        rewritten += alignmentLine(p, back.systemText, back.geoidName);
    if (rewritten != written)
        std::abort();
    return 0;
}
