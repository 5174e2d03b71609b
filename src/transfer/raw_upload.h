// The Sokkia raw upload: an SDR file sent line by line, each line with
// CR LF, the first as the header.
//
// Usage from the command line:
//   tramline-cli transfer upload sdr JOB.sdr --port /dev/ttyUSB0
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "transfer/port_device.h"

#include <filesystem>
#include <string>

namespace tramline::transfer {

/// "Missing Sokkia File Name" with no file, "Error: unable to read file"
/// when it cannot be read, else the lines go out ("Sending Header", then
/// "Sending line") and "Upload completed successfully" ends it.
Status uploadSdrFile(const std::filesystem::path &file, const std::string &device,
                     const LineSettings &line, Interaction &ui);

} // namespace tramline::transfer
