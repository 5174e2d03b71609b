// The figures of a processing run as numbers, beside the report that
// shows them as text: for scripts (tramline-cli process --json) that want
// the closure, the adjusted and the stored points without reading prose.
#pragma once

#include "reduce/traverse_adjustment.h"

#include <string>
#include <vector>

namespace tramline::reduce {

/// A closure as one section of the report titles it.
struct ClosureFigures {
    std::string title; ///< "Closure Results", "Closure Results (After Angle Balance)", ...
    Closure closure;
};

struct ProcessFigures {
    std::vector<ClosureFigures> closures; ///< in the report's order
    std::vector<AdjustedPoint> adjusted;  ///< traverse points of a linear adjustment
    /// The points of the final pass, as written (with keepStoredPoints).
    std::vector<TraversePoint> stored;
    std::vector<std::string> warnings; ///< the report's warnings, one a line
};

} // namespace tramline::reduce
