// The text a user reads for a failed Status: its message and, for a reader
// of files, the line where the trouble is.
#pragma once

#include "base/status.h"

#include <string>

namespace tramline {

/// "Error: unable to read raw file (line 12)"; the message alone when no
/// line applies.
std::string statusText(const Status &status);

} // namespace tramline
