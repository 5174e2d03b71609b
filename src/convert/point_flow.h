// The flows of the point imports and exports that sit behind the registry's
// function types: read the foreign file into the coordinate file, or write
// the coordinate file's points to a foreign file, with the messages of
// both.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "convert/format.h"
#include "convert/import_flow.h"

#include <filesystem>

namespace tramline::convert {

/// Reads `source` with `import` and stores its points in `file` (open for
/// update). "Error: unable to read raw file" when the source cannot be
/// read; the converter's failure as it is; its completion message on
/// success. `summary` tells what was stored.
Status runPointImport(PointImportFunction import, const std::filesystem::path &source,
                      crd::CoordinateFile &file, Interaction &ui, ImportSummary &summary);

/// Writes every point of `file` with `exporter` to `destination`
/// atomically. The exporter's write error when it cannot be written (the
/// old file stays whole); its completion message otherwise.
Status runPointExport(PointExportFunction exporter, crd::CoordinateFile &file,
                      const std::filesystem::path &destination, const PointExportOptions &options,
                      Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
