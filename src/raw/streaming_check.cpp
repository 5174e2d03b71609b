#include "raw/streaming_check.h"

#include "base/line_reader.h"
#include "base/translation.h"
#include "raw/reader.h"

namespace tramline::raw {

Status checkRawStream(std::istream &in,
                      const std::function<void(const std::string &)> &unrecognised,
                      const ValidationSink &warning, StreamingCheck &result) {
    result = StreamingCheck{};
    LineReader reader(in, kRawLineBuffer);
    std::string line, entry;
    RawNode node;
    long row = 0;
    while (reader.next(line)) {
        if (countRawLine(line, reader.lineNumber(), result.summary, entry))
            unrecognised(entry);
        applyUnitsLine(line, result.units);
        if (!parseRawLine(line, result.units, node))
            continue;
        validateRawNode(node, ++row, {}, warning);
    }
    if (reader.failed())
        return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"),
                               reader.lineNumber() + 1);
    return Status::success();
}

} // namespace tramline::raw
