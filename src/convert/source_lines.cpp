#include "convert/source_lines.h"

#include "base/line_reader.h"
#include "base/translation.h"

#include <algorithm>

namespace tramline::convert {

namespace {

// The lines a large file will give, from the line length of its first
// 64 KB; 0 for a small file or a stream that cannot seek. Reserved up
// front, a million lines are not moved again and again as the list grows.
std::size_t expectedLines(std::istream &in) {
    constexpr std::streamoff kSample = 1 << 16;
    const std::streampos start = in.tellg();
    if (start < 0)
        return 0;
    in.seekg(0, std::ios::end);
    const std::streamoff size = in ? std::streamoff(in.tellg() - start) : 0;
    in.clear();
    in.seekg(start);
    if (size < 16 * kSample)
        return 0;
    std::string sample(std::size_t(kSample), '\0');
    in.read(sample.data(), kSample);
    const std::streamoff got = in.gcount();
    in.clear();
    in.seekg(start);
    std::size_t ends = 0;
    for (std::streamoff i = 0; i < got; ++i)
        ends += sample[std::size_t(i)] == '\n';
    if (ends == 0 || !in)
        return 0;
    return std::size_t(size / (got / std::streamoff(ends))) + 64;
}

} // namespace

void SourceLines::push_back(std::string_view text, std::size_t number) {
    constexpr std::size_t kBlock = std::size_t(1) << 20;
    if (text.size() > m_room) {
        const std::size_t size = std::max(kBlock, text.size());
        m_blocks.push_back(std::make_unique_for_overwrite<char[]>(size));
        m_used = 0;
        m_room = size;
    }
    char *at = m_blocks.back().get() + m_used;
    std::copy(text.begin(), text.end(), at);
    m_used += text.size();
    m_room -= text.size();
    m_lines.push_back({std::string_view(at, text.size()), number, false});
}

Status readSourceLines(std::istream &in, SourceLines &lines) {
    lines.reserve(lines.size() + expectedLines(in));
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
