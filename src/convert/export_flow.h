// The flow of the raw-data exports: read the RW5 file's lines, let the
// exporter write the foreign file, save it atomically.
#pragma once

#include "base/file_output.h"
#include "base/interaction.h"
#include "base/status.h"
#include "convert/format.h"

#include <filesystem>

namespace tramline::convert {

/// Runs one export. "Error: unable to read raw file" when the RW5 file
/// cannot be read, the exporter's write error when the destination cannot
/// be written (the old destination stays whole); its completion message on
/// success. `out` tells what was written.
Status runExport(ExportFunction exporter, const std::filesystem::path &rawFile,
                 const std::filesystem::path &destination, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out);

/// The same from RW5 lines in memory (without line ends): the desktop
/// program exports the raw grid as it stands.
Status runExport(ExportFunction exporter, const std::vector<std::string> &rawLines,
                 const std::filesystem::path &destination, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out);

/// The same into a file or a stream (standard output).
Status runExport(ExportFunction exporter, const std::filesystem::path &rawFile,
                 FileOutput &destination, const ExportOptions &options, Interaction &ui,
                 ExportOutput &out);
Status runExport(ExportFunction exporter, const std::vector<std::string> &rawLines,
                 FileOutput &destination, const ExportOptions &options, Interaction &ui,
                 ExportOutput &out);

} // namespace tramline::convert
