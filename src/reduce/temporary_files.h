// The temporary files of a run in the working folder ("rawedit.tmp",
// "sideshot.tmp", "warnings.tmp", ...): rewritten on every run and read
// back into the report, so that what the report shows is what they hold.
#pragma once

#include "base/interaction.h"

#include <filesystem>
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

    /// Writes `text` to the file `name` and gives back what the file
    /// holds; `text` itself when it cannot be written (with the message).
    std::string through(const char *name, const std::string &text);

private:
    std::filesystem::path m_folder;
    Interaction &m_ui;
};

} // namespace tramline::reduce
