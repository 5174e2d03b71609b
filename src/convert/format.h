// The one small interface every converter sits behind. An importer turns
// the lines of a foreign field file into RW5 lines and points; an exporter
// turns the lines of an RW5 file into a foreign file. Neither ever sees a
// path: the import flow (import_flow.h) reads and writes the files, so
// tests and fuzzers hand the converters memory.
//
// Writing a new converter: a function of the ImportFunction or
// ExportFunction type in its own file, and one row in the registry table
// (registry.cpp) that names it.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "convert/output_lines.h"
#include "convert/source_lines.h"
#include "crd/crd_point.h"

#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace tramline::convert {

/// What an import produced, before anything is written.
struct ImportOutput {
    /// The RW5 lines, each with its "\n", the job line first: the output
    /// line list, written to the destination in one pass.
    OutputLines lines;
    /// Every coordinate met, in order, for the coordinate file. A later
    /// point of the same name replaces an earlier one there.
    std::vector<crd::CrdPoint> points;
    /// Report text (warnings) shown at the end of the run.
    std::string report;
    /// The message shown when the conversion is complete.
    std::string completion;
    // Counts for the summary line.
    long records = 0;                    ///< source lines turned into output
    long observations = 0;               ///< shots written
    std::map<std::string, long> skipped; ///< lines left out, by reason
};

/// Turns the source lines into `out`. Questions ("File Format",
/// "Backsight Measurements") go through `ui`; a cancelled question returns
/// Cancelled and nothing is written. Never throws.
using ImportFunction = Status (*)(const SourceLines &source, Interaction &ui, ImportOutput &out);

/// Options an exporter may take; the form it offers fills them when unset.
struct ExportOptions {
    std::string format; ///< a variant of the format ("sdr33", "sdr2x"), empty: ask
};

/// What an export produced, before anything is written.
struct ExportOutput {
    std::string bytes;      ///< the foreign file
    std::string completion; ///< shown when the file has been written
    std::string writeError; ///< shown when the file cannot be written
    /// Shown when the RW5 file cannot be read; empty: the frame's message.
    std::string readError;
    /// Set by the export flow: an exporter of large output may hand its
    /// bytes on in pieces (false: they could not be written) instead of
    /// holding the whole file in `bytes`.
    std::function<bool(std::string_view)> sink;
    long records = 0;                    ///< records written
    std::map<std::string, long> skipped; ///< RW5 lines left out, by reason
};

/// Writes the foreign file for the RW5 lines (without line ends) into
/// `out`. Points come with the store-point records of the lines.
using ExportFunction = Status (*)(const std::vector<std::string> &rawLines,
                                  const ExportOptions &options, Interaction &ui, ExportOutput &out);

/// Options of a point export; each format reads what it needs.
struct PointExportOptions {
    std::string variant; ///< a variant of the format ("gsi8", "gsi16"), empty: ask or default
    std::string unit;    ///< "m" or "ft", empty: ask or the coordinate file's own
};

/// Reads the points of a foreign point file into `out.points` (and its
/// counts and completion message); `out.lines` stays empty.
using PointImportFunction = Status (*)(const SourceLines &source, Interaction &ui,
                                       ImportOutput &out);

/// Writes the points, in order, as a foreign point file into `out.bytes`.
/// The serial upload uses the same functions to send points.
using PointExportFunction = Status (*)(std::span<const crd::CrdPoint> points,
                                       const PointExportOptions &options, Interaction &ui,
                                       ExportOutput &out);

} // namespace tramline::convert
