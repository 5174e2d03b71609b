// Feeds arbitrary bytes to the GSI import (every coding, both orders),
// the point import, and the import's output to the raw export and its
// points to the point export and to the name order they are stored in:
// none may crash, hang or read out of bounds. The source lines read from
// a file (cut in place) must be those read from a pipe (line by line).
#include "base/interaction.h"
#include "convert/gsi_export.h"
#include "convert/gsi_import.h"
#include "convert/gsi_point_export.h"
#include "convert/import_flow.h"

#include <algorithm>
#include <cstdlib>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <streambuf>
#include <string>

namespace {

// A stream that cannot seek, as a pipe.
class PipeBuffer : public std::streambuf {
public:
    explicit PipeBuffer(std::string &bytes) {
        setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace tramline;
    std::string bytes(reinterpret_cast<const char *>(data), size);
    std::istringstream in(bytes);
    convert::SourceLines lines;
    convert::readSourceLines(in, lines);
    PipeBuffer buffer(bytes);
    std::istream pipe(&buffer);
    convert::SourceLines piped;
    convert::readSourceLines(pipe, piped);
    if (piped.size() != lines.size())
        std::abort();
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (piped[i].text != lines[i].text || piped[i].number != lines[i].number)
            std::abort();
    for (auto coding : {convert::GsiCoding::WildSoft, convert::GsiCoding::Liscad,
                        convert::GsiCoding::TenTwentyThirtyForty}) {
        for (auto order : {convert::gsi::FaceOrder::BFFB, convert::gsi::FaceOrder::BFBF}) {
            convert::GsiImportOptions options;
            options.coding = coding;
            options.order = order;
            options.withThirty = order == convert::gsi::FaceOrder::BFFB;
            convert::ImportOutput out;
            if (!convert::importGsiWith(lines, options, out))
                continue;
            std::vector<std::string> raw;
            for (const auto &line : out.lines)
                raw.emplace_back(line.substr(0, line.size() - 1));
            ScriptedInteraction ui({"Gon|Feet"});
            convert::ExportOutput exported;
            convert::exportGsi(raw, {}, ui, exported);
            convert::ExportOutput points;
            convert::exportGsiPoints(out.points, {"gsi8", "m"}, ui, points);
            // The order the points are stored in must be a permutation.
            auto stored = convert::pointNameOrder(out.points);
            std::sort(stored.begin(), stored.end());
            for (std::size_t i = 0; i < stored.size(); ++i)
                if (stored[i] != i)
                    std::abort();
        }
    }
    return 0;
}
