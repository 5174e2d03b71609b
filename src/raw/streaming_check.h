// The check of a raw file in one pass over its lines, for files of any
// size: the counts of summarizeRaw() and the findings of validateRaw(),
// handed out as they are found instead of kept, so that memory stays the
// same for a thousand lines or ten million.
#pragma once

#include "base/status.h"
#include "raw/validate.h"

#include <functional>
#include <istream>
#include <string>

namespace tramline::raw {

struct StreamingCheck {
    RawSummary summary; ///< the counts; its list of unrecognised lines stays empty
    RawUnits units;     ///< as the file declared them (last seen)
};

/// Reads `in` line by line, records parsed as readRaw() parses them. Each
/// line summarizeRaw() would list goes to `unrecognised`, each finding of
/// validateRawNode() (default height limits) to `warning`; a finding
/// flagged ddd.mmss-only counts only when `result.units` says degrees.
/// Fails as readRaw() does when the stream itself fails.
Status checkRawStream(std::istream &in,
                      const std::function<void(const std::string &)> &unrecognised,
                      const ValidationSink &warning, StreamingCheck &result);

} // namespace tramline::raw
