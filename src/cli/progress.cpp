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
    clear();
}

void Progress::clear() {
    if (m_shown)
        m_err << "\r\033[K" << std::flush; // the line goes; the results stay
    m_shown = false;
}

bool Progress::due() {
    if (!m_enabled)
        return false;
    const auto now = std::chrono::steady_clock::now();
    if (now - m_start < std::chrono::seconds(1) ||
        (m_shown && now - m_last < std::chrono::milliseconds(250)))
        return false;
    m_last = now;
    return true;
}

void Progress::update(std::size_t done) {
    if (due())
        show(format(tr("%zu lines"), done));
}

void Progress::records(std::size_t done, std::size_t total) {
    if (due())
        show(format(tr("%zu of %zu records"), done, total));
}

void Progress::show(const std::string &text) {
    if (!m_enabled)
        return;
    if (!m_shown && std::chrono::steady_clock::now() - m_start < std::chrono::seconds(1))
        return;
    m_shown = true;
    m_err << "\r\033[K" << text << std::flush;
}

} // namespace tramline::cli
