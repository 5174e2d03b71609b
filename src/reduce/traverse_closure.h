// Closing the chosen traverse of a pass against its known closing point:
// the starting point, the sides from the start to the closing shot, the
// computed end (start plus sides) and the closure.
#pragma once

#include "crd/coordinate_file.h"
#include "reduce/point_computation.h"
#include "reduce/process_options.h"
#include "reduce/traverse_selection.h"

#include <optional>
#include <string>
#include <vector>

namespace tramline::reduce {

/// A point known before the run: in the coordinate file, or a control
/// point (store point record) of the raw file.
std::optional<TraversePoint>
knownBeforeRun(const PassResult &pass, crd::CoordinateFile &coordinates, const std::string &name);

/// The known closing point `name`: with the coordinates the user gave, or
/// as known before the run.
std::optional<TraversePoint> knownClosingPoint(const PassResult &pass,
                                               crd::CoordinateFile &coordinates,
                                               const KnownPoint &given, const std::string &name);

struct TraverseClosure {
    bool ok = false;
    std::string error; ///< "Error: unable to find starting point %s." and its siblings
    Closure closure;
    TraversePoint start, computedEnd, knownEnd;
    std::vector<TraverseSide> sides;
};

/// The closure of `pass` along `choice` up to the closing shot on
/// `closingLine`, against the closing point `closingName`.
TraverseClosure closeTraverse(const PassResult &pass, const TraverseChoice &choice,
                              long closingLine, const KnownPoint &given,
                              const std::string &closingName, crd::CoordinateFile &coordinates);

} // namespace tramline::reduce
