// The report of a least-squares solve: the "Least-Squares" tab (the input
// listings, iterations, reference standard deviation, chi-square test,
// shift check and adjusted points) and the "Statistics" tab (ellipses,
// redundancy, standardized residuals, suspects, relative ellipses).
#pragma once

#include "adjust/lsq_file.h"
#include "adjust/network.h"
#include "adjust/solve.h"
#include "adjust/statistics.h"
#include "base/units.h"

#include <optional>
#include <string>

namespace tramline::adjust {

/// Lower and upper 95 % bounds of the chi-square test for `r` degrees of
/// freedom; empty outside 1..30 (no test is made).
std::optional<std::pair<double, double>> chiSquareBounds(int r);

/// True when r s0^2 lies within the bounds (empty when no test is made).
std::optional<bool> chiSquarePasses(const Solution &solution);

/// The listings of the input: control and adjust points, distances, angles
/// and azimuths (angles in `angleUnit`'s display format).
std::string inputListing(const LsqData &data, AngleUnit angleUnit);

/// The solution part: iterations, s0, chi-square, shift check and the
/// adjusted points. `shiftWarning` receives the shift check's warning, or
/// stays empty.
std::string solutionText(const Network &network, const Solution &solution,
                         std::string &shiftWarning);

/// The "Statistics" tab.
std::string statisticsText(const Network &network, const Solution &solution,
                           const NetworkStatistics &statistics);

/// "Suspect: distance 3-4, residual -0.215, standardized 8.3".
std::string suspectSentence(const Network &network, const NetworkStatistics &statistics,
                            int observation);

/// The largest shift allowed before the shift check warns: the closure
/// error (none here) raised to 0.7, times 1.1.
inline constexpr double kAllowedShift = 0.7 * 1.1;

} // namespace tramline::adjust
