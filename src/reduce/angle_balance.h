// The angle balance of a traverse as pure functions: the correction each
// angle gets, the corrected angles in the forms they were measured in, and
// the search for one bad angle.
#pragma once

#include "base/units.h"
#include "raw/reader.h"
#include "reduce/traverse_adjustment.h"

#include <optional>
#include <string>
#include <vector>

namespace tramline::reduce {

/// Angular error spread evenly: error / sides (0 without sides), degrees.
double correctionPerAngle(double angularErrorDegrees, int sides);

/// A corrected horizontal angle written in its own form: "N%.4fE" and
/// its siblings for bearings, "AZ%.4f", "AL%.4f", "AR%.4f", "DL%.4f",
/// "DR%.4f", "GN%.4f" (ddd.mmss, or decimal gons in a gon file). `angle`
/// is the measured value in decimal degrees; `turns` is how many
/// corrections the direction takes (an angle turned from the backsight
/// takes one, the k-th direction of its own takes k).
std::string correctedAngle(raw::HorizontalKind kind, double angle, double correction, int turns,
                           AngleUnit unit);

/// The "Corrected Angles" section: one line per traverse side of `sides`
/// found in `file`, "%-9.9s %-9.9s %s" (occupied, foresight, angle).
std::string correctedAngles(const raw::RawFile &file, const std::vector<TraverseSide> &sides,
                            double correction);

/// Find Bad Angle: the traverse computed forward from its start (so that
/// it ends at `computedEnd`) and, with every direction turned by the
/// angular error, backward from `knownEnd`. One bad angle leaves the station
/// where it was turned at the same place in both; the side whose start
/// agrees best, within a tenth of the horizontal closure error, is named.
/// Returns the index of that side in `sides`, or nothing.
std::optional<size_t> findBadAngle(const TraversePoint &computedEnd, const TraversePoint &knownEnd,
                                   const std::vector<TraverseSide> &sides,
                                   double angularErrorDegrees, double horizontalError);

/// The "Find Bad Angle" section: "Bad Angle at Setup" with the set-up's
/// occupied and backsight points, or "Bad angle not found".
std::string findBadAngleText(const std::vector<TraverseSide> &sides, std::optional<size_t> bad);

/// The "Angle Balance" section: reference and measured closing azimuths
/// (decimal degrees), "Angular Error: %s for %d traverse sides", "Adjusting
/// Each Angle", the corrected angles and the bad angle search's finding.
std::string angleBalanceText(double referenceAzimuth, double measuredAzimuth,
                             const raw::RawFile &file, const std::vector<TraverseSide> &sides,
                             std::optional<size_t> badAngle);

/// "-0.0003" style: the sign, then ddd.mmss of the absolute value.
std::string signedDms(double degreesValue);

} // namespace tramline::reduce
