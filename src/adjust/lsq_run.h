// One least-squares adjustment from observation data to its report: the
// network built, solved, its statistics and picture made, and the report
// tabs filled. Shared by Process > Least-Squares and `tramline-cli lsq solve`.
//
// Usage:
//   LsqData data;  loadLsq("job.lsq", data);
//   LsqRun run = runLeastSquares(data, {});
//   if (run.status) storeAdjustedPoints(run, coordinates, 30);
#pragma once

#include "adjust/lsq_file.h"
#include "adjust/network.h"
#include "adjust/solve.h"
#include "adjust/statistics.h"
#include "base/report.h"
#include "base/units.h"
#include "crd/coordinate_file.h"

#include <string>

namespace tramline::adjust {

struct LsqRunOptions {
    AngleUnit angleUnit = AngleUnit::DegreesMinutesSeconds; ///< how angles are listed
    bool debug = false;                                     ///< make the debug listing
};

struct LsqRun {
    Status status; ///< the first error; the adjusted points are valid only when ok
    Network network;
    Solution solution;
    NetworkStatistics statistics;
    std::string leastSquares; ///< the "Least-Squares" tab; the caller adds the error
    std::string statisticsText;
    std::string svg;
    std::string debug;
    std::string shiftWarning;
};

LsqRun runLeastSquares(const LsqData &data, const LsqRunOptions &options);

/// Adds the run's tabs "Least-Squares", "Statistics" and (as SVG text)
/// "Plot" to `report`; the last two only after a solution.
void addLeastSquaresTabs(const LsqRun &run, Report &report);

/// Title of the tab holding the SVG picture; its text is the SVG document.
const char *plotTabTitle();

/// Stores the adjusted points of a successful run in `coordinates` with one
/// write, keeping a stored point's elevation and description (a ZVAL record
/// gives the elevation of a point that has none), and records each under
/// history operation `historyOperation`. Returns the number stored;
/// `warnings` gets a line per point that failed.
long storeAdjustedPoints(const LsqRun &run, const LsqData &data, crd::CoordinateFile &coordinates,
                         int historyOperation, std::vector<std::string> &warnings);

} // namespace tramline::adjust
