// Export of an RW5 job as a Trimble JobXML (JXL) job file: a field book of
// records and the job's environment.
//
// Usage from the command line:
//   tramline-cli export jxl JOB.rw5 -o OUT.jxl [--ipc]
#pragma once

#include "convert/format.h"

namespace tramline::convert {

/// Writes the document for the RW5 lines. Progress goes to ui.progress()
/// ("Create temporary Trimble JXL file...", then "Searching raw data in
/// Trimble JXL file..."); completion "Conversion Complete".
Status exportJxl(const std::vector<std::string> &rawLines, const ExportOptions &options,
                 Interaction &ui, ExportOutput &out);

/// The same with the time stamp of every record given ("%Y-%m-%dT%H:%M:%S").
Status exportJxlAt(const std::vector<std::string> &rawLines, const std::string &timeStamp,
                   Interaction &ui, ExportOutput &out);

} // namespace tramline::convert
