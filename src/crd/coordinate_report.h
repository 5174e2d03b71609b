// The coordinate listing of File > Print > Coordinates: a heading with the
// file's name and the number of points, then one line a point in file
// order. It is also written to "morvrprt.tmp" in the working folder, where
// printed reports are kept.
//
// Usage from the command line: tramline-cli crd print FILE [--workdir DIR].
#pragma once

#include "base/status.h"
#include "crd/coordinate_file.h"
#include "crd/point_fields.h"

#include <filesystem>
#include <vector>

namespace tramline::crd {

/// The report text. `fileName` is what the heading names ("NONE" for a
/// file not yet saved).
std::string coordinateReport(const std::vector<CrdPoint> &points, std::string_view fileName,
                             CoordinateOrder order);

/// Reads every point of `file`, makes the report into `report` and writes
/// it to "morvrprt.tmp" in `workingFolder`. Fails with "Can't open output
/// file %s" when that file cannot be written, or with the store's message
/// when a damaged record stops the reading.
Status printCoordinates(CoordinateFile &file, std::string_view fileName, CoordinateOrder order,
                        const std::filesystem::path &workingFolder, std::string &report);

} // namespace tramline::crd
