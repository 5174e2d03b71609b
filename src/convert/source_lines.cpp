#include "convert/source_lines.h"

#include "base/huge_pages.h"
#include "base/line_reader.h"
#include "base/translation.h"

#include <algorithm>

namespace tramline::convert {

namespace {

// The bytes left in a stream that can seek, -1 for one that cannot.
std::streamoff bytesLeft(std::istream &in) {
    const std::streampos start = in.tellg();
    if (start < 0)
        return -1;
    in.seekg(0, std::ios::end);
    const std::streampos end = in.tellg();
    in.clear();
    in.seekg(start);
    return end < start || !in ? -1 : std::streamoff(end - start);
}

// The lines `bytes` will give, from the line length of its first 64 KB;
// 0 for a small file. Reserved up front, a million lines are not moved
// again and again as the list grows.
std::size_t expectedLines(std::string_view bytes) {
    constexpr std::size_t kSample = 1 << 16;
    if (bytes.size() < 16 * kSample)
        return 0;
    const auto ends = std::size_t(std::count(bytes.begin(), bytes.begin() + kSample, '\n'));
    return ends == 0 ? 0 : bytes.size() / (kSample / ends) + 64;
}

bool isLineEnd(char c) {
    return c == '\n' || c == '\r';
}

// Cuts `bytes` into the pieces the line reader gives (base/line_reader.h):
// at most kSourcePieceBytes each, ended by "\n", "\r\n" or "\r", a line
// end right after a full piece belonging to that piece. The pieces are
// views of `bytes`; those under two bytes are left out but counted.
void cutPieces(std::string_view bytes, SourceLines &lines) {
    const char *data = bytes.data();
    const std::size_t size = bytes.size();
    std::size_t pos = 0, number = 0;
    const auto swallowLineEnd = [&] {
        if (data[pos++] == '\r' && pos < size && data[pos] == '\n')
            ++pos;
    };
    while (pos < size) {
        const std::size_t span = std::min(kSourcePieceBytes, size - pos);
        std::size_t n = 0;
        while (n < span && !isLineEnd(data[pos + n]))
            ++n;
        const std::string_view piece(data + pos, n);
        pos += n;
        if (n < span || (n == kSourcePieceBytes && pos < size && isLineEnd(data[pos])))
            swallowLineEnd();
        if (piece.size() >= 2)
            lines.adopt(piece, number);
        ++number;
    }
}

} // namespace

void SourceLines::reserve(std::size_t lines) {
    if (lines <= m_lines.capacity())
        return;
    m_lines.reserve(lines);
    adviseHugePages(m_lines.data(), m_lines.capacity() * sizeof(SourceLine));
}

Status readSourceLines(std::istream &in, SourceLines &lines) {
    // A stream of known size (a file) is read in one piece and its lines
    // are views of it: no copy per line, and no scan twice.
    if (const std::streamoff size = bytesLeft(in); size > 0) {
        char *bytes = lines.block(std::size_t(size));
        in.read(bytes, size);
        if (in.bad())
            return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"));
        const std::string_view text(bytes, std::size_t(in.gcount()));
        lines.reserve(lines.size() + expectedLines(text));
        cutPieces(text, lines);
        return Status::success();
    }
    LineReader reader(in, kSourcePieceBytes + 1);
    std::string text;
    while (reader.next(text)) {
        if (text.size() < 2)
            continue;
        lines.push_back(text, reader.lineNumber() - 1);
    }
    if (reader.failed())
        return Status::failure(StatusCode::Io, tr("Error: unable to read raw file"),
                               reader.lineNumber());
    return Status::success();
}

} // namespace tramline::convert
