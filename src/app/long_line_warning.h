// The warning the desktop program shows when a raw file it opens has lines
// longer than the reader takes whole: the reader splits them, and a save
// would write the pieces as lines of their own. One message for the file,
// however many lines, so that a damaged file does not mean a box per line.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tramline::app {

/// How many line numbers the message lists; the rest are counted.
inline constexpr std::size_t kListedLongLines = 10;

/// The message for the 1-based `lines` longer than `limit` characters, or
/// empty when there are none.
std::string longLinesMessage(const std::vector<std::size_t> &lines, std::size_t limit);

/// Scans the raw file at `path`; empty when it has no overlong line or
/// cannot be read (opening it reports that).
std::string longLinesWarning(const std::filesystem::path &path);

} // namespace tramline::app
