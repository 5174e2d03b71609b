// The block-kept line lists of the importers: every line reads back as it
// was given, and the lines reach the file byte for byte whatever happened
// to them (replaced, removed, put in front, across blocks).
#include "convert/output_lines.h"
#include "convert/text_blocks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tramline::test {
namespace {

// Lines of every length from 1 to 299, so that they cross the first
// blocks' ends at every offset.
std::vector<std::string> manyLines(std::size_t count) {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < count; ++i)
        lines.push_back(std::string(i % 299, char('a' + i % 26)) + std::to_string(i) + "\n");
    return lines;
}

std::string joined(const std::vector<std::string> &lines) {
    std::string all;
    for (const auto &line : lines)
        all += line;
    return all;
}

// What writeTo hands on, with the size of every piece.
std::string written(const convert::OutputLines &lines, std::vector<std::size_t> *pieces = nullptr) {
    std::string all;
    EXPECT_TRUE(lines.writeTo([&](std::string_view piece) {
        EXPECT_FALSE(piece.empty());
        if (pieces)
            pieces->push_back(piece.size());
        all += piece;
        return true;
    }));
    return all;
}

TEST(TextBlocks, KeepEveryTextAcrossBlocksAndMoves) {
    const std::vector<std::string> texts = {
        std::string(100, 'x'),
        std::string(convert::TextBlocks::kFirstBlock, 'y'),
        std::string(convert::TextBlocks::kLargestBlock + 7, 'z'),
        "short",
        std::string(3 << 20, 'w'),
        "end"};
    convert::TextBlocks blocks;
    std::vector<std::string_view> views;
    for (int round = 0; round < 3; ++round)
        for (const auto &text : texts)
            views.push_back(blocks.store(text));
    EXPECT_TRUE(blocks.store("").empty());
    const convert::TextBlocks moved = std::move(blocks);
    for (std::size_t i = 0; i < views.size(); ++i)
        EXPECT_EQ(views[i], texts[i % texts.size()]) << i;
}

TEST(OutputLines, WriteEveryLineInOrderWhateverWasDoneToThem) {
    struct Case {
        const char *what;
        std::size_t count;
        // Applied to the list and to the plain copy alike.
        void (*change)(convert::OutputLines &, std::vector<std::string> &);
    };
    const Case cases[] = {
        {"nothing", 0, [](convert::OutputLines &, std::vector<std::string> &) {}},
        {"one line", 1, [](convert::OutputLines &, std::vector<std::string> &) {}},
        {"many blocks", 40000, [](convert::OutputLines &, std::vector<std::string> &) {}},
        {"a line replaced", 5000,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             l.replace(17, "SP,PN1,N 1.0000,E 2.0000,EL,--a longer description\n");
             v[17] = "SP,PN1,N 1.0000,E 2.0000,EL,--a longer description\n";
         }},
        {"the last line replaced", 5000,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             l.replace(v.size() - 1, "x\n");
             v.back() = "x\n";
         }},
        {"head put in front", 5000,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             l.insertFront({"JB,NM,DT,TM\n", "--note\n", "MO,AD0\n"});
             v.insert(v.begin(), {"JB,NM,DT,TM\n", "--note\n", "MO,AD0\n"});
         }},
        {"every third line removed", 5000,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             l.removeIf([](std::size_t i) { return i % 3 == 0; });
             std::vector<std::string> kept;
             for (std::size_t i = 0; i < v.size(); ++i)
                 if (i % 3 != 0)
                     kept.push_back(v[i]);
             v = kept;
         }},
        {"first and last removed", 5000,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             const std::size_t last = v.size() - 1;
             l.removeIf([&](std::size_t i) { return i == 0 || i == last; });
             v.erase(v.begin() + long(last));
             v.erase(v.begin());
         }},
        {"a line longer than a piece", 3,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             const std::string huge(3 << 20, 'h');
             l.push_back(huge);
             l.push_back("after\n");
             v.push_back(huge);
             v.push_back("after\n");
         }},
        {"empty lines among them", 10,
         [](convert::OutputLines &l, std::vector<std::string> &v) {
             l.push_back("");
             l.push_back("a\n");
             l.replace(3, "");
             v.push_back("");
             v.push_back("a\n");
             v[3].clear();
         }},
    };
    for (const auto &c : cases) {
        std::vector<std::string> expected = manyLines(c.count);
        convert::OutputLines lines;
        for (const auto &line : expected)
            lines.push_back(line);
        c.change(lines, expected);
        ASSERT_EQ(lines.size(), expected.size()) << c.what;
        EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.end()), expected) << c.what;
        std::vector<std::size_t> pieces;
        EXPECT_EQ(written(lines, &pieces), joined(expected)) << c.what;
        // Few large pieces, not one per line.
        EXPECT_LE(pieces.size(), joined(expected).size() / (256 << 10) + 8) << c.what;
    }
}

TEST(OutputLines, StopWritingAtTheFirstRefusal) {
    convert::OutputLines lines;
    for (const auto &line : manyLines(40000))
        lines.push_back(line);
    lines.push_back(std::string(3 << 20, 'h'));
    for (int refuseAt = 0; refuseAt < 3; ++refuseAt) {
        int calls = 0;
        EXPECT_FALSE(lines.writeTo([&](std::string_view) { return calls++ != refuseAt; }));
        EXPECT_EQ(calls, refuseAt + 1);
    }
}

TEST(OutputLines, ClearForgetsEverything) {
    convert::OutputLines lines;
    lines.push_back("a\n");
    lines.clear();
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(written(lines), "");
    lines.push_back("b\n");
    EXPECT_EQ(written(lines), "b\n");
}

} // namespace
} // namespace tramline::test
