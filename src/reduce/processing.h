// Process > No Adjust, Angle Balance, Transit, Compass, Crandall: the whole
// run over a raw file, from the checks before processing to the points
// written to the coordinate file and the "Process Results" report.
//
// Usage from the command line: tramline-cli process job.rw5 --crd job.crd --method compass
#pragma once

#include "base/interaction.h"
#include "base/report.h"
#include "crd/coordinate_file.h"
#include "raw/reader.h"
#include "reduce/process_figures.h"
#include "reduce/process_options.h"

#include <optional>
#include <string>
#include <vector>

namespace tramline::reduce {

/// Where a traverse failed to close: its known end and the misclosure
/// (computed minus known), for the plan view.
struct ClosureVector {
    std::string point;
    double north = 0.0, east = 0.0;
    double errorNorth = 0.0, errorEast = 0.0;
};

/// The 95 % error ellipse of a point a least-squares run adjusted, for the
/// plan view.
struct PointEllipse {
    std::string point;
    double north = 0.0, east = 0.0;          ///< adjusted
    double semiMajor = 0.0, semiMinor = 0.0; ///< length unit
    double azimuth = 0.0;                    ///< of the major axis, degrees from north
};

struct ProcessResult {
    enum class Status {
        Done,           ///< points written, report complete
        Failed,         ///< an error ended the run; the report says which; nothing written
        ReturnToEditor, ///< the user went back to the editor; nothing written
    };
    Status status = Status::Done;
    std::string error;
    Report report;
    bool rawChanged = false; ///< store point records were turned into notes
    long pointsStored = 0;
    /// The report's lines about points that could not be written.
    std::vector<std::string> storeFailures;
    ProcessFigures figures;
    /// The closure the run ended with (after an angle balance, the
    /// balanced one); none without a closing point.
    std::optional<ClosureVector> closure;
    /// After Least-Squares, one per adjusted point; empty otherwise.
    std::vector<PointEllipse> ellipses;
};

/// Runs the processing of `file` (which the store point checks may change)
/// into `coordinates`, asking `ui` what the run cannot decide itself.
ProcessResult processRaw(raw::RawFile &file, const std::string &rawFileName,
                         crd::CoordinateFile &coordinates, const ProcessOptions &options,
                         Interaction &ui);

} // namespace tramline::reduce
