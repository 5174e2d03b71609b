// Find and replace over the points of a coordinate file, cell by cell as
// the coordinate grid shows them (see point_fields.h): rows in file order,
// columns name, the two coordinates, elevation, description.
//
// Usage from the command line: tramline-cli crd replace FILE --find TEXT --replace TEXT.
#pragma once

#include "base/interaction.h"
#include "crd/coordinate_file.h"
#include "crd/point_fields.h"

#include <optional>
#include <vector>

namespace tramline::crd {

/// A cell of the point table: row in file order, column as pointColumns().
struct PointCell {
    int row = 0;
    int column = 0;

    bool operator==(const PointCell &) const = default;
};

/// The first cell after (`row`, `column`) whose text holds `what`, going
/// left to right and row by row, wrapping round once so that the starting
/// cell comes last. (rows - 1, 4) starts at the first cell.
std::optional<PointCell> findInPoints(const std::vector<CrdPoint> &points, CoordinateOrder order,
                                      std::string_view what, int row, int column);

struct PointReplace {
    std::string find;
    std::string replace;
    /// The fields to look in; empty means all of them.
    std::vector<PointField> fields;
    /// Numbers the columns in questions.
    CoordinateOrder order = CoordinateOrder::NorthingEasting;
    /// Asks "Replace in row %ld column %ld?" (Yes, No, Cancel) before each
    /// change, as Replace does; Replace All does not ask.
    bool confirmEach = false;
};

/// Replaces the text in every chosen cell of every point; a cell whose new
/// text the file refuses (a coordinate that is no number, a name in use)
/// is left as it was and its message shown. A renamed point takes its
/// notes along and is visited only once. Returns the number of
/// occurrences replaced; Cancel stops with those done so far.
long replaceInPoints(CoordinateFile &file, const PointReplace &replace, Interaction &ui);

} // namespace tramline::crd
