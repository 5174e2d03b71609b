// The name set of the measurement pass: every name added is found with all
// the flags it was given, and nothing else is.
#include "reduce/name_flags.h"

#include <gtest/gtest.h>

#include <string>

using tramline::reduce::NameFlags;

namespace {

TEST(NameFlags, FindsWhatWasAddedAndNothingElse) {
    NameFlags set;
    EXPECT_EQ(set.find("1"), 0); // before build(): empty
    for (int i = 0; i < 1000; ++i)
        set.add(std::to_string(i * 7), 1);
    set.add("14", 2); // a second add keeps the first flags
    set.add("", 4);   // an empty name is a name like any other
    set.add("A10", 1);
    set.build();
    struct Case {
        const char *name;
        int flags;
    };
    const Case cases[] = {{"0", 1},  {"14", 3},  {"6993", 1}, {"", 4},     {"A10", 1},
                          {"15", 0}, {"a10", 0}, {"A1", 0},   {"6994", 0}, {"140 ", 0}};
    for (const auto &c : cases)
        EXPECT_EQ(set.find(c.name), c.flags) << '"' << c.name << '"';
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(set.find(std::to_string(i * 7)) & 1, 1) << i * 7;
}

} // namespace
