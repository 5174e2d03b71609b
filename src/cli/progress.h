// A progress line on standard error for work that takes more than a
// second, rewritten in place; nothing when standard error is not a
// terminal (a script's log stays clean) or the user asked for quiet.
#pragma once

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace tramline::cli {

class Progress {
public:
    /// `enabled` is false for --quiet; a stream other than the process's
    /// own standard error on a terminal turns it off too.
    Progress(std::ostream &err, bool enabled);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Shows "`done` lines" once a second has passed, at most four times a second.
    void update(std::size_t done);
    /// Shows "`done` of `total` records", timed as update().
    void records(std::size_t done, std::size_t total);
    /// Shows `text` (what the command is doing), timed as update().
    void show(const std::string &text);
    /// Takes the line away (before the command's own output).
    void clear();
    /// Whether a line would be shown at all.
    bool enabled() const { return m_enabled; }

private:
    bool due();

    std::ostream &m_err;
    bool m_enabled;
    bool m_shown = false;
    std::chrono::steady_clock::time_point m_start, m_last;
};

} // namespace tramline::cli
