#include "convert/export_flow.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/translation.h"
#include "raw/reader.h"

#include <fstream>

namespace tramline::convert {

Status runExport(ExportFunction exporter, const std::filesystem::path &rawFile,
                 const std::filesystem::path &destination, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out) {
    std::vector<std::string> lines;
    {
        std::ifstream in(rawFile, std::ios::binary);
        std::error_code ec;
        if (!in || std::filesystem::is_directory(rawFile, ec)) {
            ui.message(tr("Error: unable to read raw file"));
            return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"));
        }
        LineReader reader(in, raw::kRawLineBuffer);
        for (std::string line; reader.next(line);)
            if (line.size() >= 3)
                lines.push_back(line);
        if (reader.failed()) {
            ui.message(tr("Error: unable to read raw file"));
            return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"),
                                   reader.lineNumber());
        }
    }
    return runExport(exporter, lines, destination, options, ui, out);
}

Status runExport(ExportFunction exporter, const std::vector<std::string> &lines,
                 const std::filesystem::path &destination, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out) {
    if (Status made = exporter(lines, options, ui, out); !made)
        return made;
    if (!saveTextAtomically(destination, out.bytes)) {
        // A write error may name the file ("... gsi file %s").
        const std::string message =
            out.writeError.find("%s") != std::string::npos
                ? format(out.writeError.c_str(), destination.string().c_str())
                : out.writeError;
        ui.message(message);
        return Status::failure(StatusCode::Io, message);
    }
    if (!out.completion.empty())
        ui.message(out.completion);
    return Status::success();
}

} // namespace tramline::convert
