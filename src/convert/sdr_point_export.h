// Export of points as a Sokkia SDR file: the header, a job record, and
// one 08 coordinate record a point. The serial upload to Sokkia
// instruments sends the same records.
//
// Usage from the command line:
//   tramline-cli points export sdr JOB.crd -o POINTS.sdr
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// `options.variant` "sdr2x" writes the SDR-2x layout (4-character names,
/// 10-character numbers); anything else SDR-33. `options.unit` "ft" marks
/// the file in feet, anything else metres. Coordinates are written with
/// four decimals, northing first. Never fails.
Status exportSdrPoints(std::span<const crd::CrdPoint> points, const PointExportOptions &options,
                       Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
