#include "convert/export_flow.h"

#include "base/format.h"
#include "base/line_reader.h"
#include "base/translation.h"
#include "raw/reader.h"

#include <fstream>

namespace tramline::convert {

Status runExport(ExportFunction exporter, const std::filesystem::path &rawFile,
                 const std::filesystem::path &destination, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out) {
    FileOutput file(destination);
    return runExport(exporter, rawFile, file, options, ui, out);
}

Status runExport(ExportFunction exporter, const std::vector<std::string> &lines,
                 const std::filesystem::path &destination, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out) {
    FileOutput file(destination);
    return runExport(exporter, lines, file, options, ui, out);
}

Status runExport(ExportFunction exporter, const std::filesystem::path &rawFile,
                 FileOutput &destination, const ExportOptions &options, Interaction &ui,
                 ExportOutput &out) {
    std::vector<std::string> lines;
    {
        std::ifstream in(rawFile, std::ios::binary);
        std::error_code ec;
        const std::string readError =
            out.readError.empty() ? tr("Error: unable to read raw file") : out.readError;
        if (!in || std::filesystem::is_directory(rawFile, ec)) {
            ui.message(readError);
            return Status::failure(StatusCode::Io, readError);
        }
        LineReader reader(in, raw::kRawLineBuffer);
        for (std::string line; reader.next(line);)
            if (line.size() >= 3)
                lines.push_back(line);
        if (reader.failed()) {
            ui.message(readError);
            return Status::failure(StatusCode::Io, readError, reader.lineNumber());
        }
    }
    return runExport(exporter, lines, destination, options, ui, out);
}

Status runExport(ExportFunction exporter, const std::vector<std::string> &lines, FileOutput &file,
                 const ExportOptions &options, Interaction &ui, ExportOutput &out) {
    // Pieces an exporter hands on go straight to the file; the file takes
    // the destination's place only when the export is complete.
    out.sink = [&file](std::string_view bytes) { return file.write(bytes); };
    Status made = exporter(lines, options, ui, out);
    out.sink = nullptr;
    if (!made)
        return made;
    if (!file.write(out.bytes) || !file.commit()) {
        // A write error may name the file ("... gsi file %s").
        const std::string message = out.writeError.find("%s") != std::string::npos
                                        ? format(out.writeError.c_str(), file.name().c_str())
                                        : out.writeError;
        ui.message(message);
        return Status::failure(StatusCode::Io, message);
    }
    if (!out.completion.empty())
        ui.message(out.completion);
    return Status::success();
}

} // namespace tramline::convert
