// The notes file beside a coordinate file (see notesPathFor): free text
// attached to points. It is a text file, so that a user can read it and
// other tools can write it:
//
//   Tramline point notes 1
//   <point name><TAB><note>
//   ...
//
// one line a note, a point may have several. In names and notes a
// backslash, a tab, a line feed and a carriage return are written as
// "\\", "\t", "\n" and "\r". Lines that do not hold a tab are skipped.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tramline::crd {

struct PointNote {
    std::string name;
    std::string text;
};

class NotesFile {
public:
    /// Reads the notes at `path`; a missing file is an empty list. False
    /// when the file exists but cannot be read or is not a notes file.
    bool load(const std::filesystem::path &path);
    /// Writes the notes to `path` (never half-written); with no notes left
    /// the file is removed.
    bool save(const std::filesystem::path &path) const;

    const std::vector<PointNote> &notes() const { return m_notes; }
    void add(std::string_view name, std::string_view text);
    /// The notes of one point (names compare as point names do).
    std::vector<std::string> notesFor(std::string_view name) const;
    /// Moves the notes of point `from` to point `to`, in place; returns
    /// how many moved.
    long rename(std::string_view from, std::string_view to);
    /// Unlinks every note whose point is selected; returns how many went.
    long removeIf(const std::function<bool(std::string_view name)> &selected);

private:
    std::vector<PointNote> m_notes;
};

/// Removes the notes of the selected points from the notes file at `path`:
/// reads the list, unlinks their notes and writes it back. Returns the
/// number removed, or -1 when the file could not be read or written.
long removeNotes(const std::filesystem::path &path,
                 const std::function<bool(std::string_view name)> &selected);

} // namespace tramline::crd
