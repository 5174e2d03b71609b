// Feeds arbitrary bytes to the SDR import (both layouts, both backsight
// choices) and its output to the SDR export: none may crash, hang or read
// out of bounds, whatever the header says.
#include "base/interaction.h"
#include "convert/sdr_export.h"
#include "convert/sdr_import.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace tramline;
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    convert::SourceLines lines;
    convert::readSourceLines(in, lines);
    for (const char *layout : {"SDR-33", "All Others"}) {
        for (const char *backsight : {"Sideshots", "Notes"}) {
            ScriptedInteraction ui({backsight, layout});
            convert::ImportOutput out;
            if (!convert::importSdr(lines, ui, out))
                continue;
            std::vector<std::string> raw;
            for (const auto &line : out.lines)
                raw.emplace_back(line.substr(0, line.size() - 1));
            convert::ExportOutput exported;
            convert::exportSdr(raw, {layout[0] == 'S' ? "sdr33" : "sdr2x"}, ui, exported);
        }
    }
    return 0;
}
