// Saving a user's file so that it is never half-written: the new content
// goes to a temporary file beside the old one, is flushed to disk, and then
// renamed over it. A failure at any step leaves the old file as it was.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

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

/// A file written in pieces that takes its place whole, for output too
/// large to hold in memory: the pieces go to a temporary file beside it
/// (made at the first write), commit() puts it in place. Without a commit,
/// or after a failed write, the temporary is removed and the file is left
/// as it was.
class AtomicFileWriter {
public:
    explicit AtomicFileWriter(std::filesystem::path target) : m_target(std::move(target)) {}
    ~AtomicFileWriter();
    AtomicFileWriter(const AtomicFileWriter &) = delete;
    AtomicFileWriter &operator=(const AtomicFileWriter &) = delete;

    /// Appends bytes; false once anything has failed.
    bool write(std::string_view bytes);
    /// Flushes and renames the temporary over the file.
    bool commit(std::string *error = nullptr);

private:
    std::filesystem::path m_target, m_path;
    std::string m_temporary, m_error;
    int m_fd = -1;
    bool m_failed = false;
};

} // namespace tramline
