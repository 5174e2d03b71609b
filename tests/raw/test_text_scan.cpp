#include "raw/text_scan.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(TextScan, CountsLinesAsTheReaderEndsThem) {
    const std::string longLine(222, 'x'), fullLine(221, 'x');
    struct Case {
        std::string text;
        std::size_t lines;
        std::vector<std::size_t> longLines;
        bool nul;
    };
    const Case cases[] = {
        {"a\nb\n", 2, {}, false},
        {"a\r\nb", 2, {}, false},     // last line without its end
        {"a\rb\r\n\n", 3, {}, false}, // a lone CR ends a line; CR LF is one end
        {fullLine + "\n" + longLine + "\r\n" + longLine, 3, {2, 3}, false},
        {std::string("JB,NM\0x\n", 8), 1, {}, true},
        {"", 0, {}, false},
    };
    for (const Case &c : cases) {
        std::istringstream in(c.text);
        const auto scan = tramline::raw::scanText(in);
        EXPECT_EQ(scan.lines, c.lines) << c.text.size();
        EXPECT_EQ(scan.longLines, c.longLines) << c.text.size();
        EXPECT_EQ(scan.hasNul, c.nul) << c.text.size();
    }
}

} // namespace
