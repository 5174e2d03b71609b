// Checks of a raw file's values before they are used: angles that are not
// ddd.mmss, elevation differences longer than their slope distance, heights
// outside the expected range. Findings are warnings, one line each, with
// the value and the grid row; processing decides what to do with them.
#pragma once

#include "raw/reader.h"

#include <functional>
#include <string>
#include <vector>

namespace tramline::raw {

struct HeightLimits {
    bool enabled = false;
    double minInstrument = 0.0, maxInstrument = 0.0;
    double minRod = 0.0, maxRod = 0.0;
};

/// Where the findings of validateRawNode() go: the warning line, and
/// whether it holds only when the file's angles are ddd.mmss.
using ValidationSink = std::function<void(std::string warning, bool dmsOnly)>;

/// The findings of one record at grid row `row`, handed to `sink` in order.
/// Angle findings are made whatever the unit and flagged, so that a
/// streaming reader can decide once it knows the file's unit.
void validateRawNode(const RawNode &node, long row, const HeightLimits &limits,
                     const ValidationSink &sink);

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

/// Counts one line (number `lineNumber`) into `summary` as summarizeRaw()
/// does; true with `unrecognised` set to its "line %zu: %s" entry when the
/// line is one the summary lists (the list itself is left alone).
bool countRawLine(const std::string &line, size_t lineNumber, RawSummary &summary,
                  std::string &unrecognised);

} // namespace tramline::raw
