#include "base/line_reader.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace tramline;

namespace {

std::vector<std::string> readAll(const std::string &text, size_t capacity) {
    std::istringstream in(text);
    LineReader reader(in, capacity);
    std::vector<std::string> lines;
    std::string line;
    while (reader.next(line))
        lines.push_back(line);
    return lines;
}

TEST(LineReader, LineEnds) {
    using V = std::vector<std::string>;
    struct Case {
        const char *name;
        std::string text;
        V lines;
    };
    const Case cases[] = {
        {"lf", "a\nb\n", V{"a", "b"}},
        {"crlf", "a\r\nb\r\n", V{"a", "b"}},
        {"cr only", "a\rb\r", V{"a", "b"}},
        {"no final end", "a\nb", V{"a", "b"}},
        {"empty lines kept", "a\n\nb\n", V{"a", "", "b"}},
        {"empty input", "", V{}},
        {"zero byte inside", std::string("a\0b\n", 4), V{std::string("a\0b", 3)}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(readAll(c.text, 222), c.lines) << c.name;
}

TEST(LineReader, LongLinesComeInPieces) {
    // Capacity 5 holds four characters a piece.
    EXPECT_EQ(readAll("abcdefghij\nxy\n", 5),
              (std::vector<std::string>{"abcd", "efgh", "ij", "xy"}));
    // A line end right after a full piece ends it; no empty line follows.
    EXPECT_EQ(readAll("abcd\nxy\n", 5), (std::vector<std::string>{"abcd", "xy"}));
    EXPECT_EQ(readAll("abcd\r\nxy", 5), (std::vector<std::string>{"abcd", "xy"}));
    const std::string huge(5000, 'q');
    const auto pieces = readAll(huge + "\n", 222);
    ASSERT_EQ(pieces.size(), 23u); // 22 pieces of 221 and one of 138
    EXPECT_EQ(pieces.back().size(), 5000u - 22 * 221);
}

TEST(LineReader, PiecesAcrossChunkBoundaries) {
    // Lines that straddle the reader's internal 64 KiB chunks stay whole.
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += "line" + std::to_string(i) + "\r\n";
    const auto lines = readAll(text, 222);
    ASSERT_EQ(lines.size(), 20000u);
    for (int i = 0; i < 20000; i += 997)
        EXPECT_EQ(lines[static_cast<size_t>(i)], "line" + std::to_string(i));
}

} // namespace
