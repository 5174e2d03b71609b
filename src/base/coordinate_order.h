// The order in which northing and easting are shown and printed: the
// raw grid, the coordinate grid, find and replace and the reports all
// follow the user's one choice. The values are the settings file's.
#pragma once

namespace tramline {

enum class CoordinateOrder : int { NorthingEasting = 0, EastingNorthing = 1 };

} // namespace tramline
