// Asking the user for the coordinates of a point a run needs but does not
// know (an occupied or backsight point).
#pragma once

#include "base/interaction.h"
#include "reduce/traverse_adjustment.h"

#include <optional>
#include <string>

namespace tramline::reduce {

/// Shows `intro` and asks for "Northing", "Easting", "Elevation" and
/// "Description" under `title`; an entry without northing or easting is
/// refused ("Error: missing Northing") and asked again, a few times.
/// Nothing when the user goes back to the editor.
std::optional<TraversePoint> askCoordinates(Interaction &ui, const std::string &title,
                                            const std::string &name, const std::string &intro);

} // namespace tramline::reduce
