#include "adjust/lsq_run.h"

#include "adjust/lsq_report.h"
#include "adjust/network_plot.h"
#include "base/format.h"
#include "base/translation.h"
#include "base/unset.h"

#include <unordered_map>

namespace tramline::adjust {

LsqRun runLeastSquares(const LsqData &data, const LsqRunOptions &options) {
    LsqRun run;
    run.leastSquares = format("%s\n\n", tr("Least-Squares Closure"));
    if (data.empty()) {
        run.status = Status::failure(
            StatusCode::NotFound,
            tr("Error: no least-squares data found. Run Prepare Least-Squares Data."));
    } else {
        run.leastSquares += inputListing(data, options.angleUnit);
        run.status = buildNetwork(data, run.network);
    }
    if (run.status) {
        SolveOptions solve;
        if (options.debug)
            solve.debug = &run.debug;
        run.status = solveNetwork(run.network, run.solution, solve);
    }
    if (!run.status)
        return run;
    run.leastSquares += solutionText(run.network, run.solution, run.shiftWarning);
    run.statistics = networkStatistics(run.network, run.solution);
    run.statisticsText = statisticsText(run.network, run.solution, run.statistics);
    run.svg = networkSvg(run.network, run.solution, run.statistics);
    return run;
}

const char *plotTabTitle() {
    return tr("Plot");
}

void addLeastSquaresTabs(const LsqRun &run, Report &report) {
    report.append(tr("Least-Squares"), run.leastSquares);
    if (!run.status)
        return;
    report.append(tr("Statistics"), run.statisticsText);
    report.append(plotTabTitle(), run.svg);
}

long storeAdjustedPoints(const LsqRun &run, const LsqData &data, crd::CoordinateFile &coordinates,
                         int historyOperation, std::vector<std::string> &warnings) {
    if (!run.status)
        return 0;
    std::unordered_map<std::string, double> elevations;
    for (const auto &e : data.elevations)
        elevations[e.name] = e.elevation;
    std::vector<crd::CrdPoint> points;
    std::vector<crd::CrdPoint> before;
    std::vector<bool> existed;
    for (std::size_t p = 0; p < run.network.points.size(); ++p) {
        const auto &np = run.network.points[p];
        if (np.control)
            continue;
        crd::CrdPoint old;
        const bool found =
            coordinates.readPoint(np.name, old, crd::PointSearch::Exact, crd::Verbosity::Quiet);
        crd::CrdPoint point = found ? old : crd::CrdPoint{};
        point.name = np.name;
        point.northing = run.solution.north[p];
        point.easting = run.solution.east[p];
        if (!found) {
            const auto it = elevations.find(np.name);
            point.elevation = it == elevations.end() ? kUnsetPositive : it->second;
        }
        points.push_back(point);
        before.push_back(old);
        existed.push_back(found);
    }
    std::vector<int> errors;
    const long stored = coordinates.writePoints(points, crd::Verbosity::Quiet, &errors);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i < errors.size() && errors[i] != 0) {
            warnings.push_back(format(tr("Unable to write point %s"), points[i].name.c_str()));
            continue;
        }
        coordinates.addHistory(existed[i] ? &before[i] : nullptr, &points[i], historyOperation);
    }
    return stored;
}

} // namespace tramline::adjust
