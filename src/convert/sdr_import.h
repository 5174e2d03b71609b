// Import of Sokkia SDR files (SDR-33 and the older SDR-2x layout) into RW5
// lines and points.
//
// Usage from the command line:
//   tramline-cli import sdr FILE.sdr -o JOB.rw5 --crd JOB.crd [--backsight sideshots|notes]
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// Asks "Backsight Measurements" (and "File Format" when the file has no
/// header), then turns every record. Fails with Format ("Error: not a
/// Sokkia SDR file") when no line is an SDR record, with Cancelled when a
/// question was cancelled. Every record of known type is accounted for in
/// `out`: turned into lines, or counted as skipped with its reason.
Status importSdr(const SourceLines &source, Interaction &ui, ImportOutput &out);

/// The RW5 lines after a target-height line that is followed by another
/// before any shot are dropped: only the height in force at the next shot
/// stays. Other lines between them do not end the search.
void dropUnusedTargetHeights(OutputLines &lines);

} // namespace tramline::convert
