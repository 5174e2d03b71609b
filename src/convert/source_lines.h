// The source line list of the raw importers: the whole foreign file read
// before any record is turned, so that converters can look ahead (the
// header, the readings of a set) and mark what they have used.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace tramline::convert {

/// Lines are read in pieces of at most this many bytes.
inline constexpr std::size_t kSourcePieceBytes = 254;

struct SourceLine {
    std::string text;       ///< the bytes as read, without the line end
    std::size_t number = 0; ///< 0-based line (piece) number in the source
    bool consumed = false;  ///< set once the line has been turned into output
};

using SourceLines = std::vector<SourceLine>;

/// Reads every line of `in` into `lines`: pieces of at most 254 bytes, line
/// ends "\n", "\r\n" and "\r", lines under two bytes skipped (they keep
/// their number). Fails with Io ("Error: unable to read raw file") when
/// the stream breaks.
Status readSourceLines(std::istream &in, SourceLines &lines);

} // namespace tramline::convert
