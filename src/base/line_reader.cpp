#include "base/line_reader.h"

#include <cstring>

namespace tramline {

LineReader::LineReader(std::istream &in, std::size_t capacity)
    : m_in(in), m_limit(capacity > 1 ? capacity - 1 : 1), m_chunk(1 << 16) {}

bool LineReader::fill() {
    if (m_eof)
        return false;
    m_in.read(m_chunk.data(), static_cast<std::streamsize>(m_chunk.size()));
    const std::streamsize got = m_in.gcount();
    if (m_in.bad())
        m_failed = true;
    if (got <= 0) {
        m_eof = true;
        return false;
    }
    m_pos = 0;
    m_end = static_cast<std::size_t>(got);
    return true;
}

// Consumes the line end at the current position: "\n", "\r" or "\r\n".
void LineReader::swallowLineEnd() {
    const char c = m_chunk[m_pos++];
    if (c != '\r')
        return;
    if (m_pos == m_end)
        fill();
    if (m_pos < m_end && m_chunk[m_pos] == '\n')
        ++m_pos;
}

bool LineReader::next(std::string &line) {
    line.clear();
    bool any = false;
    for (;;) {
        if (m_pos == m_end && !fill()) {
            if (!any)
                return false;
            break;
        }
        any = true;
        // Copy up to the next line end or until the piece is full.
        const std::size_t room = m_limit - line.size();
        const std::size_t avail = m_end - m_pos;
        const std::size_t span = avail < room ? avail : room;
        const char *start = m_chunk.data() + m_pos;
        std::size_t n = 0;
        while (n < span && start[n] != '\n' && start[n] != '\r')
            ++n;
        line.append(start, n);
        m_pos += n;
        if (n < span) { // stopped at a line end
            swallowLineEnd();
            break;
        }
        if (line.size() >= m_limit) {
            // Full piece: a line end that follows at once belongs to it.
            if (m_pos == m_end)
                fill();
            if (m_pos < m_end && (m_chunk[m_pos] == '\n' || m_chunk[m_pos] == '\r'))
                swallowLineEnd();
            break;
        }
    }
    ++m_lineNumber;
    return true;
}

} // namespace tramline
