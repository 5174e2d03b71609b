#include "cli/progress.h"

#include "base/format.h"
#include "base/translation.h"

#include <iostream>
#include <unistd.h>

namespace tramline::cli {

Progress::Progress(std::ostream &err, bool enabled)
    : m_err(err), m_enabled(enabled && &err == &std::cerr && ::isatty(STDERR_FILENO)),
      m_start(std::chrono::steady_clock::now()), m_last(m_start) {}

Progress::~Progress() {
    if (m_shown)
        m_err << "\r\033[K" << std::flush; // the line goes; the results stay
}

void Progress::update(std::size_t done) {
    if (!m_enabled)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now - m_start < std::chrono::seconds(1) ||
        (m_shown && now - m_last < std::chrono::milliseconds(250)))
        return;
    m_last = now;
    m_shown = true;
    m_err << '\r' << format(tr("%zu lines"), done) << std::flush;
}

} // namespace tramline::cli
