// Feeds arbitrary bytes to the Geodimeter import (every option), the
// Geodimeter point import, the "readgeod.ini" reader, and the lines as a
// raw job to the JobXML export: none may crash, hang or read out of bounds.
#include "base/interaction.h"
#include "convert/geodimeter_import.h"
#include "convert/geodimeter_options.h"
#include "convert/geodimeter_points.h"
#include "convert/jxl_export.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    using namespace tramline;
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    std::istringstream in(bytes);
    convert::SourceLines lines;
    convert::readSourceLines(in, lines);
    for (int flags = 0; flags < 4; ++flags) {
        convert::ImportOutput out;
        if (!convert::importGeodimeterWith(lines, {(flags & 1) != 0, (flags & 2) != 0}, out))
            continue;
        std::vector<std::string> raw;
        for (const auto &line : out.lines)
            raw.emplace_back(line.substr(0, line.size() - 1));
        ScriptedInteraction ui;
        convert::ExportOutput exported;
        convert::exportJxlAt(raw, "2026-01-01T00:00:00", ui, exported);
    }
    ScriptedInteraction ui;
    convert::ImportOutput points;
    convert::importGeodimeterPoints(lines, ui, points);

    std::istringstream ini(bytes);
    convert::GeodimeterOptions options;
    convert::readGeodimeterOptions(ini, options);

    std::vector<std::string> raw;
    for (const auto &line : lines)
        raw.emplace_back(line.text);
    convert::ExportOutput exported;
    convert::exportJxlAt(raw, "2026-01-01T00:00:00", ui, exported);
    return 0;
}
