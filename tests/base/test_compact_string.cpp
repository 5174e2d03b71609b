#include "base/bulk_allocator.h"
#include "base/compact_string.h"
#include "base/text_hash.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tramline;

// Lengths on both sides of the inline limit: the tag, the length bits and
// the heap block each break one of these.
TEST(CompactString, KeepsTextOfEveryLength) {
    const std::string texts[] = {
        "", "1", "123456", "1234567", "12345678", std::string(64, 'x'), std::string("a\0b", 3)};
    for (const std::string &text : texts) {
        CompactString s(text);
        EXPECT_EQ(s.view(), text);
        EXPECT_EQ(s.size(), text.size());
        EXPECT_EQ(s.empty(), text.empty());

        CompactString copy = s;
        CompactString moved = std::move(s);
        EXPECT_EQ(copy.view(), text);
        EXPECT_EQ(moved.view(), text);
        EXPECT_TRUE(s.empty()) << "a moved-from text is empty";

        CompactString assigned("old value longer than seven");
        assigned = copy;
        EXPECT_EQ(assigned, text);
        const CompactString &same = assigned;
        assigned = same; // assigning itself keeps the text
        EXPECT_EQ(assigned, text);
        // Assigning a part of its own text must not read freed memory.
        assigned.assign(assigned.view().substr(text.empty() ? 0 : 1));
        EXPECT_EQ(assigned.view(), std::string_view(text).substr(text.empty() ? 0 : 1));
        assigned.clear();
        EXPECT_TRUE(assigned.empty());
    }
}

TEST(CompactString, ComparesAndHashesAsItsText) {
    const CompactString a("PN1"), b("PN1"), longer("PN1-EXTENSION");
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, "PN1");
    EXPECT_EQ(a, std::string("PN1"));
    EXPECT_NE(a, longer);
    EXPECT_LT(a, longer);
    EXPECT_EQ(longer, CompactString("PN1-EXTENSION"));
    EXPECT_EQ(std::hash<CompactString>{}(a), std::hash<std::string_view>{}("PN1"));
    EXPECT_EQ(std::string("x") + a, "xPN1");

    TextMap<int> map{{"PN1", 1}, {"PN1-EXTENSION", 2}};
    EXPECT_EQ(map.find(a)->second, 1);
    EXPECT_EQ(map.find(longer)->second, 2);
    EXPECT_EQ(map.find(CompactString("PN2")), map.end());
}

// Large blocks are mapped rather than taken from the heap; they must hold
// their contents through growth like any other vector.
TEST(BulkAllocator, GrowsPastTheMappedSize) {
    std::vector<CompactString, BulkAllocator<CompactString>> v;
    const size_t n = (std::size_t{16} << 20) / sizeof(CompactString) + 3;
    for (size_t i = 0; i < n; ++i)
        v.emplace_back(std::to_string(i * 7919));
    ASSERT_EQ(v.size(), n);
    for (size_t i = 0; i < n; i += 4099)
        EXPECT_EQ(v[i], std::to_string(i * 7919));
    EXPECT_EQ(v.back(), std::to_string((n - 1) * 7919));
}
