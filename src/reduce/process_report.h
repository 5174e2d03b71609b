// The texts of the "Process Results" report: the header, the summary of the
// unadjusted listing, the closure sections, the adjusted point table's
// heading, the unadjusted point list and the lists appended at the end.
#pragma once

#include "reduce/point_computation.h"
#include "reduce/process_options.h"
#include "reduce/traverse_adjustment.h"

#include <string>
#include <vector>

namespace tramline::reduce {

/// The counts of a pass that the summary and the closure sections show.
struct PassCounts {
    int traverseLines = 0, sideshotTraverses = 0, sideshotCount = 0, storePoints = 0;
};
PassCounts countsOf(const PassResult &pass);

/// "Report Header": raw, coordinate and control file, stadia, scale
/// factor or combined factor with the geoid, curvature, SDR adjustments.
std::string reportHeader(const std::string &rawFileName, const std::string &coordinateFileName,
                         const ProcessOptions &options,
                         const std::optional<SdrHorizontalAdjustment> &horizontal,
                         const std::optional<SdrVerticalAdjustment> &vertical);

/// "Units: Metres, Degrees (ddd.mmss)": what the report's lengths and
/// angles are in.
std::string unitsLine(LinearUnit linear, AngleUnit angle);

/// The summary after the listing: "Traverse Lines  : %d" and its siblings.
std::string passSummary(const PassCounts &counts);

/// The names a closure section shows.
struct ClosureNames {
    std::string start, closingReference, end;
};

/// A closure section under `title` ("Closure Results" and its siblings).
std::string closureText(const char *title, const Closure &closure, const ClosureNames &names,
                        const PassCounts &counts);

/// What the closure after the angle balance adds: the starting and ending
/// coordinates and the totals traversed.
std::string balancedClosureExtra(const TraversePoint &start, const TraversePoint &end,
                                 const Closure &closure);

/// The head of a linear adjustment's tab: its closure title and the columns.
std::string adjustmentHeading(const char *closureTitle);

/// The latest position of each point of a pass, in point-name order.
std::string pointList(const PassResult &pass);

/// The lists that end the report, in order: sideshots (when reported),
/// multiple backsight orientations, depth adjustments, warnings.
struct ReportTail {
    std::string sideshots, multipleBacksights, depths, warnings;
    bool reportSideshots = false;
};
std::string reportTail(const ReportTail &tail);

} // namespace tramline::reduce
