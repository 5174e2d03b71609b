#include "convert/source_lines.h"

#include "base/line_reader.h"
#include "base/translation.h"

namespace tramline::convert {

Status readSourceLines(std::istream &in, SourceLines &lines) {
    LineReader reader(in, kSourcePieceBytes + 1);
    std::string text;
    while (reader.next(text)) {
        if (text.size() < 2)
            continue;
        lines.push_back({text, reader.lineNumber() - 1, false});
    }
    if (reader.failed())
        return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"),
                               reader.lineNumber());
    return Status::success();
}

} // namespace tramline::convert
