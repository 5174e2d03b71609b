// The combined scale factor at a set-up's station: the grid scale factor of
// the job's projection there times the elevation factor of its ellipsoid
// height (elevation plus geoid separation).
#pragma once

#include "base/units.h"
#include "reduce/process_options.h"
#include "reduce/traverse_adjustment.h"

#include <string>
#include <vector>

namespace tramline::reduce {

/// The factor at `station` (grid coordinates in `unit`); 1.0 for the grid
/// part, with a warning in `warnings`, where the projection cannot give one.
double combinedFactorAt(const TraversePoint &station, LinearUnit unit,
                        const ProcessOptions &options, std::vector<std::string> &warnings);

} // namespace tramline::reduce
