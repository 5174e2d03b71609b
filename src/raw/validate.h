// Checks of a raw file's values before they are used: angles that are not
// ddd.mmss, elevation differences longer than their slope distance, heights
// outside the expected range. Findings are warnings, one line each, with
// the value and the grid row; processing decides what to do with them.
#pragma once

#include "raw/reader.h"

#include <string>
#include <vector>

namespace tramline::raw {

struct HeightLimits {
    bool enabled = false;
    double minInstrument = 0.0, maxInstrument = 0.0;
    double minRod = 0.0, maxRod = 0.0;
};

/// The warning lines for `file`, in file order. Rows are 1-based positions
/// of the records in the file's record list (the grid row). Angles of a gon
/// file are not ddd.mmss and are not checked for it.
std::vector<std::string> validateRaw(const RawFile &file, const HeightLimits &limits = {});

/// A summary of what a file holds: records of each kind and the lines the
/// strict classifier does not recognise.
struct RawSummary {
    size_t lines = 0;   ///< lines read (short ones included)
    size_t records = 0; ///< records kept by the reader
    size_t observations = 0;
    size_t setups = 0; ///< OC records
    size_t storePoints = 0;
    size_t notes = 0;
    std::vector<std::string> unrecognised; ///< "line %zu: %s"
};

/// Classifies every line of a stream (the job flag on) and counts.
RawSummary summarizeRaw(std::istream &in);

} // namespace tramline::raw
