// Points in Geodimeter label form: the point import reads labels 5 (or 2
// and 62), 4, 37, 38 and 39; the point export writes each point as the
// five lines "5=%s\n4=%s\n37=%.5f\n38=%.5f\n39=%.5f\n".
//
// Usage from the command line:
//   tramline-cli points import geodimeter FILE --crd X.crd
//   tramline-cli points export geodimeter X.crd -o FILE
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// Every point with a northing and an easting; a missing elevation is 0.
/// Fails with Format ("Error: not a Geodimeter file") when no line holds
/// a label.
Status importGeodimeterPoints(const SourceLines &source, Interaction &ui, ImportOutput &out);

/// The five lines of every point; completion "Done", write error "Error:
/// unable to write file".
Status exportGeodimeterPoints(std::span<const crd::CrdPoint> points,
                              const PointExportOptions &options, Interaction &ui,
                              ExportOutput &out);

} // namespace tramline::convert
