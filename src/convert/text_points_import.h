// Points from a delimited text file, in a column order the user describes
// with letters: P point, N northing, E easting, Z elevation, D description
// (the rest of the line), S a field to skip; "P,N,E,Z,D" or "P N E Z D".
//
// Usage from the command line:
//   tramline-cli points import text FILE --crd X.crd [--order "P,N,E,Z,D"]
#pragma once

#include "base/status.h"
#include "crd/crd_point.h"

#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace tramline::convert {

/// The column order of an import.
struct PointColumns {
    std::string letters; ///< "PNEZD": one letter a field, upper case
    char delimiter = ',';
};

/// The common formats the import dialog offers, in its order.
const std::vector<std::string> &commonPointFormats();

/// Reads an order text. Fails (InvalidInput) with "Invalid Coordinate Order
/// - no identifiers found" or "Invalid Coordinate Order - no delimiter
/// between identifiers". The delimiter is the character after the first
/// letter: a comma or a blank.
Status parseCoordinateOrder(std::string_view text, PointColumns &columns);

/// How point names are read.
enum class PointNames {
    Numeric,     ///< P as an integer (numeric coordinate files)
    Alphanumeric ///< P as text, trimmed (alphanumeric coordinate files)
};

/// What a read found besides the points.
struct TextPointsRead {
    std::vector<crd::CrdPoint> points; ///< in file order; unnamed when no P column
    long lines = 0;                    ///< lines of at least three characters
    long notPoints = 0;                ///< lines without numbers where numbers belong
};

/// Reads one line into `point`. False when the line holds no point: a
/// field meant for a coordinate holds text that is not a number (a header,
/// a title), no coordinate field is there at all, or P gives no name.
/// Empty fields keep their place and read as 0. A tab counts as the
/// delimiter.
bool readPointLine(std::string_view line, const PointColumns &columns, PointNames names,
                   crd::CrdPoint &point);

/// Reads every line of at most 123 characters (longer lines come in
/// pieces); lines under three characters are skipped. Fails with Io only
/// when the stream breaks.
Status readTextPoints(std::istream &in, const PointColumns &columns, PointNames names,
                      TextPointsRead &read);

/// Names the points read without a P column: one after another, after the
/// highest numeric name of `existingHighest` (or from 1).
void numberUnnamedPoints(std::vector<crd::CrdPoint> &points, std::string_view existingHighest);

} // namespace tramline::convert
