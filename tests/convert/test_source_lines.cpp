// A file is read in one piece and cut into lines in place; a stream that
// cannot seek goes through the line reader. Both must give the same lines
// with the same numbers as the line reader itself, whatever the line ends.
#include "base/line_reader.h"
#include "convert/source_lines.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace tramline::test {
namespace {

using Lines = std::vector<std::pair<std::string, std::size_t>>;

// A stream over bytes that cannot seek, as a pipe.
class PipeBuffer : public std::streambuf {
public:
    explicit PipeBuffer(std::string bytes) : m_bytes(std::move(bytes)) {
        setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + m_bytes.size());
    }

private:
    std::string m_bytes;
};

Lines linesOf(const convert::SourceLines &lines) {
    Lines out;
    for (const auto &line : lines)
        out.emplace_back(std::string(line.text), line.number);
    return out;
}

// What the line reader gives, with the list's rule for short lines.
Lines byLineReader(const std::string &bytes) {
    std::istringstream in(bytes);
    LineReader reader(in, convert::kSourcePieceBytes + 1);
    Lines out;
    std::string text;
    while (reader.next(text))
        if (text.size() >= 2)
            out.emplace_back(text, reader.lineNumber() - 1);
    return out;
}

TEST(SourceLines, FileAndPipeGiveTheLineReadersLines) {
    const std::string full(convert::kSourcePieceBytes, 'f');
    const std::string cases[] = {
        "",
        "\n",
        "a",
        "ab",
        "ab\n",
        "ab\r\ncd\rxy\n\nef",
        "ab\r\r\ncd\n\r\nef\r",
        "a\nb\nab\n",
        full,
        full + "\n" + "next\n",
        full + "\r\n" + "next",
        full + "\r" + "\n" + "\n" + "next",
        full + "\n\n" + "next",
        full + "x\n" + "next",
        full + full + "\n" + "next",
        full + full + full + "tail",
        full.substr(1) + "\r\n" + full + "\r",
    };
    for (const auto &bytes : cases) {
        const Lines expected = byLineReader(bytes);
        std::istringstream file(bytes);
        convert::SourceLines fromFile;
        ASSERT_TRUE(convert::readSourceLines(file, fromFile).ok());
        EXPECT_EQ(linesOf(fromFile), expected) << bytes;

        PipeBuffer buffer(bytes);
        std::istream pipe(&buffer);
        convert::SourceLines fromPipe;
        ASSERT_TRUE(convert::readSourceLines(pipe, fromPipe).ok());
        EXPECT_EQ(linesOf(fromPipe), expected) << bytes;
    }
}

TEST(SourceLines, SecondReadAppendsToTheListAndKeepsTheFirstLines) {
    convert::SourceLines lines;
    std::istringstream first("one\ntwo\n"), second("three\n");
    ASSERT_TRUE(convert::readSourceLines(first, lines).ok());
    ASSERT_TRUE(convert::readSourceLines(second, lines).ok());
    EXPECT_EQ(linesOf(lines), (Lines{{"one", 0}, {"two", 1}, {"three", 0}}));
}

} // namespace
} // namespace tramline::test
