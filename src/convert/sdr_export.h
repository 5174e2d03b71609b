// Export of an RW5 job as a Sokkia SDR file (SDR-33 or SDR-2x): stations,
// backsights, target heights, coordinates, readings and notes.
//
// Usage from the command line:
//   tramline-cli export sdr JOB.rw5 -o OUT.sdr [--format sdr33|sdr2x]
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// Asks "SDR Format" unless `options.format` is "sdr33" or "sdr2x". Angles
/// go out in decimal degrees, lengths in the job's unit. Shots that SDR
/// readings cannot hold (bearings, deflections, angles left) are skipped
/// and counted. Cancelled when the question was cancelled.
Status exportSdr(const std::vector<std::string> &rawLines, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
