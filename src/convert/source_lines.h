// The source line list of the raw importers: the whole foreign file read
// before any record is turned, so that converters can look ahead (the
// header, the readings of a set) and mark what they have used.
#pragma once

#include "base/status.h"
#include "convert/text_blocks.h"

#include <cstddef>
#include <istream>
#include <string_view>
#include <vector>

namespace tramline::convert {

/// Lines are read in pieces of at most this many bytes.
inline constexpr std::size_t kSourcePieceBytes = 254;

struct SourceLine {
    std::string_view text;  ///< the bytes as read, without the line end; kept by the list
    std::size_t number = 0; ///< 0-based line (piece) number in the source
    bool consumed = false;  ///< set once the line has been turned into output
};

/// The lines in file order. Their text lives in blocks that the list owns
/// (text_blocks.h); moving the list keeps every line's text where it is.
class SourceLines {
public:
    using iterator = std::vector<SourceLine>::iterator;
    using const_iterator = std::vector<SourceLine>::const_iterator;

    /// Appends a copy of `text` as the line numbered `number`.
    void push_back(std::string_view text, std::size_t number) {
        m_lines.push_back({m_text.store(text), number, false});
    }
    /// A block of `bytes` bytes that the list keeps, for the caller to fill
    /// and hand out again through adopt().
    char *block(std::size_t bytes) { return m_text.block(bytes); }
    /// Appends `text`, which lies in a block() of this list, without a copy.
    void adopt(std::string_view text, std::size_t number) {
        m_lines.push_back({text, number, false});
    }
    /// Makes room for `lines` lines; a large list gets huge pages.
    void reserve(std::size_t lines);
    /// Forgets every line and gives back their memory.
    void clear() { *this = SourceLines(); }

    std::size_t size() const { return m_lines.size(); }
    bool empty() const { return m_lines.empty(); }
    SourceLine &operator[](std::size_t i) { return m_lines[i]; }
    const SourceLine &operator[](std::size_t i) const { return m_lines[i]; }
    const SourceLine &front() const { return m_lines.front(); }
    const SourceLine &back() const { return m_lines.back(); }
    iterator begin() { return m_lines.begin(); }
    iterator end() { return m_lines.end(); }
    const_iterator begin() const { return m_lines.begin(); }
    const_iterator end() const { return m_lines.end(); }

private:
    std::vector<SourceLine> m_lines;
    TextBlocks m_text;
};

/// Reads every line of `in` into `lines`: pieces of at most 254 bytes, line
/// ends "\n", "\r\n" and "\r", lines under two bytes skipped (they keep
/// their number). Fails with Io ("Error: unable to read raw file") when
/// the stream breaks.
Status readSourceLines(std::istream &in, SourceLines &lines);

} // namespace tramline::convert
