#include "base/text.h"

#include <gtest/gtest.h>

namespace tramline {
namespace {

TEST(Text, TrimDropsBlanksAtBothEndsOnly) {
    EXPECT_EQ(trim("  a b \t\r\n"), "a b");
    EXPECT_EQ(trim(""), "");
    EXPECT_EQ(trim(" \t "), "");
    EXPECT_EQ(trimLeft("  x "), "x ");
    EXPECT_EQ(trimRight("  x "), "  x");
}

TEST(Text, CaseFoldingIsAsciiOnly) {
    EXPECT_EQ(toLower("State Plane 83 \xC4"), "state plane 83 \xC4");
    EXPECT_EQ(toUpper("gsi-16 z"), "GSI-16 Z");
    EXPECT_TRUE(equalsIgnoreCase("COMPD_cs", "compd_CS"));
    EXPECT_FALSE(equalsIgnoreCase("abc", "abcd"));
    EXPECT_FALSE(equalsIgnoreCase("[", "{")); // differ by 0x20 but are not letters
    EXPECT_TRUE(startsWithIgnoreCase("--Elevation: 2D", "--ELEVATION"));
    EXPECT_FALSE(startsWithIgnoreCase("--E", "--ELEVATION"));
}

TEST(Text, SplitKeepsEmptyFieldsAndTheRest) {
    struct Case {
        std::string_view text;
        std::size_t most;
        std::vector<std::string_view> fields;
    };
    const Case cases[] = {
        {"a,,b", 10, {"a", "", "b"}},
        {"", 10, {""}},
        {"a,", 10, {"a", ""}},
        {"SS,OP1,FP2,--note, with comma", 4, {"SS", "OP1", "FP2", "--note, with comma"}},
        {"a,b,c", 1, {"a,b,c"}},
    };
    std::vector<std::string_view> out;
    for (const Case &c : cases) {
        splitAtMost(c.text, ',', c.most, out);
        EXPECT_EQ(out, c.fields) << c.text;
    }
    EXPECT_EQ(split("1,2,,", ','), (std::vector<std::string_view>{"1", "2", "", ""}));
}

TEST(Text, ReplaceAllGoesLeftToRightWithoutOverlaps) {
    struct Case {
        std::string_view text, what, with, result;
        long count;
    };
    const Case cases[] = {
        {"aaa", "aa", "b", "ba", 1},
        {"IRON IRON", "IRON", "STEEL", "STEEL STEEL", 2},
        {"5000.0000", "0", "00", "5000000.00000000", 7},
        {"abc", "", "x", "abc", 0},
        {"abc", "z", "x", "abc", 0},
    };
    for (const Case &c : cases) {
        long count = -1;
        EXPECT_EQ(replaceAll(c.text, c.what, c.with, count), c.result) << c.text;
        EXPECT_EQ(count, c.count) << c.text;
    }
}

TEST(Text, KeyValueSplitsAtTheFirstSeparator) {
    std::string_view key, value;
    ASSERT_TRUE(splitKeyValue(" tmpdir = /a=b ", '=', key, value));
    EXPECT_EQ(key, "tmpdir");
    EXPECT_EQ(value, "/a=b");
    EXPECT_FALSE(splitKeyValue("no separator", '=', key, value));
}

} // namespace
// Point names and descriptions go into the SVG pictures: one unescaped
// character or a control byte makes the whole picture unreadable.
TEST(Text, XmlEscapedMakesAnyNameSafeInsideAnAttributeOrText) {
    const struct {
        std::string in, out;
    } cases[] = {
        {"IP <FOUND> & \"SET\"", "IP &lt;FOUND&gt; &amp; &quot;SET&quot;"},
        {"a\x01"
         "b\x1f"
         "c",
         "abc"},
        {"tab\tkept", "tab\tkept"},
        {"O'Brien's pin", "O&apos;Brien&apos;s pin"}, // safe in '...' attributes too
        {"\n\r", "\n"},
        {"\xd0\x9f\xd1\x83", "\xd0\x9f\xd1\x83"}, // UTF-8 passes through
        {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(xmlEscaped(c.in), c.out) << c.in;
}

} // namespace tramline

TEST(Text, CutAtCharacterNeverSplitsAUtf8Character) {
    const struct {
        std::string text;
        std::size_t max;
        std::string cut;
    } cases[] = {
        {"abc", 5, "abc"},
        {"abcdef", 3, "abc"},
        {"ab\xC3\xA9", 3, "ab"},             // é would need 2 bytes
        {"ab\xC3\xA9", 4, "ab\xC3\xA9"},     // fits whole
        {"a\xE2\x82\xAC", 3, "a"},           // € cut after its second byte
        {"a\xF0\x9F\x93\x8D", 4, "a"},       // a 4-byte character
        {"\xC3\xA9\xC3\xA9", 3, "\xC3\xA9"}, // the second é goes
    };
    for (const auto &c : cases)
        EXPECT_EQ(tramline::cutAtCharacter(c.text, c.max), c.cut) << c.text << " " << c.max;
}
