// One input line of a point conversion: two coordinates, perhaps a height,
// and whatever follows (a point name, a description) carried through as it
// is. Fields are separated by blanks, tabs or commas.
#pragma once

#include <string_view>

namespace tramline::cli {

struct CoordinateLine {
    double first = 0, second = 0, third = 0;
    bool hasThird = false;
    std::string_view rest; ///< the text after the numbers, without its leading separators
};

enum class LineKind { Point, Skip, Bad };

/// Reads `line`. Blank lines and lines starting with '#' are Skip; a line
/// that does not start with two numbers is Bad.
LineKind parseCoordinateLine(std::string_view line, CoordinateLine &out);

} // namespace tramline::cli
