// The temporary files of a run in the working folder ("rawedit.tmp",
// "sideshot.tmp", "warnings.tmp", ...): rewritten on every run with the
// text the report shows. The text goes on into the report as it is, not
// read back: a listing of a million shots is 120 MB.
#pragma once

#include "base/interaction.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace tramline::reduce {

class TemporaryFiles {
public:
    /// An empty folder keeps everything in memory.
    TemporaryFiles(std::filesystem::path folder, Interaction &ui)
        : m_folder(std::move(folder)), m_ui(ui) {}

    /// Creates the folder and an empty "warnings.tmp". False, after the
    /// message "Can't open output file %s", when it cannot.
    bool open(std::string &error);

    /// Writes `text` to the file `name` and gives it back (also when it
    /// cannot be written, after the message "Can't open output file %s").
    std::string through(const char *name, std::string text);

    /// Opens the file `name` for a text written as it is produced; false
    /// (and nothing opened) without a folder or when it cannot be opened.
    bool stream(const char *name, std::ofstream &out) const;

private:
    std::filesystem::path m_folder;
    Interaction &m_ui;
};

} // namespace tramline::reduce
