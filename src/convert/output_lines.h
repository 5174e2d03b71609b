// The RW5 lines an import produces, each with its "\n", in output order.
// Their text lives in large blocks (text_blocks.h), not in a string each:
// a large job is converted without an allocation per line, and written
// out in runs of adjacent bytes.
#pragma once

#include "convert/text_blocks.h"

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace tramline::convert {

class OutputLines {
public:
    using const_iterator = std::vector<std::string_view>::const_iterator;

    /// Appends a copy of `line`.
    void push_back(std::string_view line) { m_lines.push_back(m_text.store(line)); }
    /// Makes room for `lines` lines; a large list gets huge pages.
    void reserve(std::size_t lines);
    /// Puts `line` in place of line `i` (whatever its length).
    void replace(std::size_t i, std::string_view line) { m_lines[i] = m_text.store(line); }
    /// Puts copies of `lines` before the first line, in the order given.
    void insertFront(std::initializer_list<std::string_view> lines);
    /// Removes every line `i` for which `drop(i)` is true, keeping the
    /// order of the rest. `drop` is asked about the lines in order.
    template <class Drop> void removeIf(Drop drop) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < m_lines.size(); ++i)
            if (!drop(i))
                m_lines[kept++] = m_lines[i];
        m_lines.resize(kept);
    }
    /// Forgets every line and gives back their memory.
    void clear() { *this = OutputLines(); }

    std::size_t size() const { return m_lines.size(); }
    bool empty() const { return m_lines.empty(); }
    std::string_view operator[](std::size_t i) const { return m_lines[i]; }
    std::string_view front() const { return m_lines.front(); }
    std::string_view back() const { return m_lines.back(); }
    const_iterator begin() const { return m_lines.begin(); }
    const_iterator end() const { return m_lines.end(); }

    /// Hands the bytes of every line, in order, to `write`: runs of
    /// adjacent lines as they lie in the blocks, short runs gathered into
    /// pieces of about a block, so that a file is written in few large
    /// pieces and with little copying. Stops at the first false.
    bool writeTo(const std::function<bool(std::string_view)> &write) const;

private:
    std::vector<std::string_view> m_lines;
    TextBlocks m_text;
};

} // namespace tramline::convert
