// The working coordinate file: the copy that the desktop program edits (and
// that uploads read), so that the user's own file changes only when the
// user saves. Opening a user's file copies it, with its notes and history,
// into the working copy; saving copies the working copy back the same way.
// Each file is replaced whole or not at all, so a failed save leaves the
// user's file as it was.
#pragma once

#include "base/status.h"
#include "crd/coordinate_file.h"

#include <filesystem>

namespace tramline::crd {

class WorkingCopy {
public:
    /// `file` is the store the program edits; it is (re)opened here.
    explicit WorkingCopy(CoordinateFile &file) : m_file(file) {}

    /// Starts an empty working copy at `path`: an old one there goes,
    /// with its notes and history. No user's file is open afterwards.
    Status create(const std::filesystem::path &path);

    /// Reads a user's coordinate file into the working copy. The file is
    /// tried first, so that one that is missing, damaged or of a kind this
    /// program does not read leaves the working copy as it was (the failure
    /// holds the store's messages). A copy that fails (StatusCode::Io)
    /// leaves a new empty working copy. History keeping follows the file:
    /// on when it has a history.
    Status open(const std::filesystem::path &userFile);

    /// Copies the working copy (with its notes and history) over the user's
    /// file; fails when there is none yet (see saveAs).
    Status save();
    /// Copies it to `target`, which becomes the user's file. Only ".crd"
    /// targets are written; one held by another writer is left alone.
    Status saveAs(const std::filesystem::path &target);

    const std::filesystem::path &path() const { return m_path; }
    /// The user's file the working copy came from or was saved to; empty
    /// when there is none.
    const std::filesystem::path &userFile() const { return m_userFile; }

private:
    Status copyOut(const std::filesystem::path &target);

    CoordinateFile &m_file;
    std::filesystem::path m_path;
    std::filesystem::path m_userFile;
};

} // namespace tramline::crd
