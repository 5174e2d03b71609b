// Which traverse a run closes and adjusts: its starting and ending points
// (given, or asked in "Traverse Points"), with "Prompt" the points between
// them in order, the closing shot, and the sides that make it up.
#pragma once

#include "base/interaction.h"
#include "raw/reader.h"
#include "reduce/point_computation.h"
#include "reduce/process_options.h"

#include <optional>
#include <string>
#include <vector>

namespace tramline::reduce {

struct TraverseChoice {
    std::string start, end;
    /// With "Prompt": every traverse point from start to end, in order.
    /// Empty: "Automatic", the sides in file order from the start.
    std::vector<std::string> route;
};

/// Asks "Traverse Points" unless `options` gives both ends, then, with
/// "Prompt", the traverse points one by one from the start until the
/// ending point. Nothing when the user cancels.
std::optional<TraverseChoice> chooseTraversePoints(const raw::RawFile &file,
                                                   const ProcessOptions &options, Interaction &ui);

struct ClosingShot {
    enum class Status { Found, NotFound, Cancelled };
    Status status = Status::NotFound;
    long line = 0;
};

/// The closing shot: the traverse shot onto `end` that the options name,
/// the only one, or the one the user picks in "Closing Shot Measurement".
ClosingShot chooseClosingShot(const raw::RawFile &file, const std::string &end,
                              const ProcessOptions &options, Interaction &ui);

/// The sides of the traverse among all the pass computed: from the first
/// side leaving the start up to the closing shot, or, with a route, the
/// side between each two route points in turn (the last one the closing
/// shot).
std::vector<TraverseSide> traverseSides(const std::vector<TraverseSide> &all,
                                        const TraverseChoice &choice, long closingLine);

/// "Reference Closing Angle": the reference direction for an angle balance
/// shot, asked of the user; decimal degrees, nothing when cancelled.
std::optional<double> askReferenceAzimuth(const BalanceShot &shot, AngleUnit unit, Interaction &ui);

} // namespace tramline::reduce
