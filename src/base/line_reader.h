// Reads text line by line into a buffer of fixed size, as our text formats
// are defined: a line longer than the buffer comes back in pieces, each
// piece a line of its own. Line ends are "\n", "\r\n" and a lone "\r"
// (old collector downloads); none of them is part of the returned text.
#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace tramline {

class LineReader {
public:
    /// `capacity` is the size of the fixed buffer including its terminating
    /// zero, so pieces hold at most capacity - 1 characters (221 for RW5).
    explicit LineReader(std::istream &in, std::size_t capacity = 222);

    /// The next line or piece; false at the end of the input. A newline
    /// that directly follows a full piece ends that piece: no empty line is
    /// returned for it.
    bool next(std::string &line);

    /// 1-based number of the piece last returned.
    std::size_t lineNumber() const { return m_lineNumber; }

    /// True when the stream failed for another reason than its end.
    bool failed() const { return m_failed; }

private:
    bool fill();
    void swallowLineEnd();

    std::istream &m_in;
    std::size_t m_limit;
    std::vector<char> m_chunk;
    std::size_t m_pos = 0;
    std::size_t m_end = 0;
    std::size_t m_lineNumber = 0;
    bool m_eof = false;
    bool m_failed = false;
};

} // namespace tramline
