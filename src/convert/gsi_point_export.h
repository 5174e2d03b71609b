// Export of points to a Leica GSI-8 or GSI-16 file: one block a point with
// its name, description and coordinates.
//
// Usage from the command line:
//   tramline-cli points export gsi X.crd -o OUT.gsi [--gsi8|--gsi16] [--unit m|ft]
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// Asks "Leica Options" (Coordinate Unit, File Format; GSI-16 preselected)
/// unless `options` gives both the variant ("gsi8", "gsi16") and the unit
/// ("m", "ft"). Coordinates are written in the file's own units; the unit
/// code only says which they are. A GSI-8 file whose northing or easting
/// does not fit is still written whole, and its completion is "Error:
/// coordinates exceed record length. Try GSI-16 format." instead of
/// "Done". Cancelled when the question was cancelled.
Status exportGsiPoints(std::span<const crd::CrdPoint> points, const PointExportOptions &options,
                       Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
