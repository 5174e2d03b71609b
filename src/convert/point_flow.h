// The flow of the point imports and exports of the registry: a foreign
// point file into the open coordinate file, and the coordinate file's
// points out to a foreign file, saved atomically.
#pragma once

#include "base/file_output.h"
#include "base/interaction.h"
#include "base/status.h"
#include "convert/format.h"
#include "convert/import_flow.h"

#include <filesystem>

namespace tramline::convert {

/// Reads `source` with `import` and stores its points in `file` (open for
/// update). "Error: unable to read file" when the source cannot be read;
/// the converter's failure is shown (unless cancelled) and returned; on success the
/// converter's completion message, or "Read in %ld points." when it has
/// none. `summary` tells what was stored.
Status runPointImport(PointImportFunction import, const std::filesystem::path &source,
                      crd::CoordinateFile &file, Interaction &ui, ImportSummary &summary);

/// Writes every point of `file` with `exporter` to `destination`
/// atomically. The exporter's write error when it cannot be written (the
/// old file stays whole); its completion message otherwise.
Status runPointExport(PointExportFunction exporter, crd::CoordinateFile &file,
                      const std::filesystem::path &destination, const PointExportOptions &options,
                      Interaction &ui, ExportOutput &out);
/// The same into a file or a stream (standard output).
Status runPointExport(PointExportFunction exporter, crd::CoordinateFile &file,
                      FileOutput &destination, const PointExportOptions &options, Interaction &ui,
                      ExportOutput &out);

} // namespace tramline::convert
