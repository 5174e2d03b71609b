// The flow of the point imports and exports of the registry: a foreign
// point file into the open coordinate file ("Read in %ld points."), and
// the coordinate file's points out to a foreign file, saved atomically.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "convert/format.h"
#include "convert/import_flow.h"

#include <filesystem>

namespace tramline::crd {
class CoordinateFile;
}

namespace tramline::convert {

/// Reads `source` and writes its points into `file` (open for update).
/// "Error: unable to read file" when it cannot be read; the converter's
/// failure is shown and returned; else "Read in %ld points." is shown.
Status runPointImport(PointImportFunction import, const std::filesystem::path &source,
                      crd::CoordinateFile &file, Interaction &ui, ImportSummary &summary);

/// Writes every point of `file` with the exporter. The exporter's write
/// error when the destination cannot be written (an old destination stays
/// whole), its completion message on success.
Status runPointExport(PointExportFunction exporter, crd::CoordinateFile &file,
                      const std::filesystem::path &destination, const PointExportOptions &options,
                      Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
