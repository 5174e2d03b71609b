// Feeds arbitrary bytes to the RW5 classifier, the reader and the raw
// document's fill-and-write path: none may crash, hang or read out of bounds.
#include "raw/classify.h"
#include "raw/document.h"
#include "raw/reader.h"
#include "raw/validate.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string bytes(reinterpret_cast<const char *>(data), size);

    tramline::raw::RawFields fields;
    size_t start = 0;
    while (start <= bytes.size()) {
        size_t end = bytes.find('\n', start);
        if (end == std::string::npos)
            end = bytes.size();
        const std::string_view line(bytes.data() + start, end - start);
        tramline::raw::ClassifyRawLine(line, tramline::raw::JobRecords::Recognised, fields);
        tramline::raw::ClassifyRawLine(line, tramline::raw::JobRecords::Unrecognised, fields);
        start = end + 1;
    }

    std::istringstream in(bytes);
    tramline::raw::RawFile file;
    tramline::raw::readRaw(in, file);
    tramline::raw::validateRaw(file);

    for (int vertical = 1; vertical <= 4; ++vertical) {
        tramline::raw::RawDocument doc;
        tramline::raw::DisplayModes modes;
        modes.vertical = static_cast<tramline::raw::VerticalMode>(vertical);
        modes.distance = static_cast<tramline::raw::DistanceMode>(vertical % 2 + 1);
        doc.setModes(modes);
        doc.load(file);
        const std::string text = doc.text();
        doc.modifyMeasurements(tramline::raw::ModifyField::HorizontalAngle, 0.0200, {"", 1, 1000});
        doc.find("0", {0, 0});
    }
    return 0;
}
