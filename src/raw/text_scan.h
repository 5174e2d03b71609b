// A look at the bytes of a file before it is read as raw data: binary
// content (NUL bytes) and lines longer than the reader takes in one piece,
// which it would otherwise split without a word.
#pragma once

#include <cstddef>
#include <istream>
#include <vector>

namespace tramline::raw {

/// The longest line the raw reader takes whole (its buffer holds 221
/// characters and the terminating zero).
inline constexpr std::size_t kLongestRawLine = 221;

struct TextScan {
    bool hasNul = false;
    std::size_t lines = 0;
    /// 1-based numbers of the lines longer than the limit ("\n", "\r\n"
    /// and a lone "\r" end a line, as the reader has it).
    std::vector<std::size_t> longLines;
};

/// Reads `in` to its end.
TextScan scanText(std::istream &in, std::size_t limit = kLongestRawLine);

} // namespace tramline::raw
