#include "convert/output_lines.h"

#include "base/huge_pages.h"

#include <string>

namespace tramline::convert {

void OutputLines::reserve(std::size_t lines) {
    if (lines <= m_lines.capacity())
        return;
    m_lines.reserve(lines);
    adviseHugePages(m_lines.data(), m_lines.capacity() * sizeof(std::string_view));
}

void OutputLines::insertFront(std::initializer_list<std::string_view> lines) {
    std::vector<std::string_view> stored;
    stored.reserve(lines.size());
    for (const std::string_view line : lines)
        stored.push_back(m_text.store(line));
    m_lines.insert(m_lines.begin(), stored.begin(), stored.end());
}

bool OutputLines::writeTo(const std::function<bool(std::string_view)> &write) const {
    // Runs at least this long go out as they lie; shorter ones are copied.
    constexpr std::size_t kDirect = 64 * 1024, kPiece = 1024 * 1024;
    std::string piece;
    const auto flushPiece = [&] {
        const bool ok = piece.empty() || write(piece);
        piece.clear();
        return ok;
    };
    const auto endRun = [&](std::string_view run) {
        if (run.size() >= kDirect)
            return flushPiece() && write(run);
        piece += run;
        return piece.size() < kPiece || flushPiece();
    };
    const char *start = nullptr;
    std::size_t length = 0;
    for (const std::string_view line : m_lines) {
        if (line.empty())
            continue;
        if (start && start + length != line.data()) {
            if (!endRun({start, length}))
                return false;
            start = nullptr;
        }
        if (!start) {
            start = line.data();
            length = 0;
        }
        length += line.size();
    }
    return (!start || endRun({start, length})) && flushPiece();
}

} // namespace tramline::convert
