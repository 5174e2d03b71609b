// Export of an RW5 job as a GSI-16 file: measurement blocks for shots and
// points, code blocks for set-ups, job data and notes.
//
// Usage from the command line:
//   tramline-cli export gsi JOB.rw5 -o OUT.gsi [--angle dms|gon] [--distance m|ft]
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// Asks "Raw File Units" (Angle: "Deg/Min/Sec" or "Gon"; Distance:
/// "Meters" or "Feet"). Shots whose horizontal angle GSI cannot hold
/// (bearings, azimuths, deflections) are skipped and counted. Cancelled
/// when the question was cancelled.
Status exportGsi(const std::vector<std::string> &rawLines, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
