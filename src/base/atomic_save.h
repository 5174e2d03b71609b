// Saving a user's file so that it is never half-written: the new content
// goes to a temporary file beside the old one, is flushed to disk, and then
// renamed over it. A failure at any step leaves the old file as it was.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace tramline {

/// Writes `path` through `writer`, which fills the stream and returns false
/// to abandon the save. Returns true when the new file is in place; on
/// failure `error` (when given) says what went wrong, and the temporary file
/// is removed. The permissions of an existing file are kept.
bool saveAtomically(const std::filesystem::path &path,
                    const std::function<bool(std::ostream &)> &writer,
                    std::string *error = nullptr);

/// Convenience: saves a whole text.
bool saveTextAtomically(const std::filesystem::path &path, const std::string &text,
                        std::string *error = nullptr);

/// Copies the file `from` to `to` the same way: afterwards `to` is either
/// the file it was or the whole copy, never a part of it. An existing `to`
/// keeps its permissions; a new one gets those of `from`. The source is
/// read in pieces, so a large file is never held in memory.
bool copyAtomically(const std::filesystem::path &from, const std::filesystem::path &to,
                    std::string *error = nullptr);

} // namespace tramline
