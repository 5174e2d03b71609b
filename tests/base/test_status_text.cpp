#include "base/status_text.h"

#include <gtest/gtest.h>

using namespace tramline;

// A reader's failure names its line; other failures show their message alone.
TEST(StatusText, NamesTheLineWhenThereIsOne) {
    const struct {
        Status status;
        const char *text;
    } cases[] = {
        {Status::failure(StatusCode::Io, "Error: unable to read raw file", 12),
         "Error: unable to read raw file (line 12)"},
        {Status::failure(StatusCode::NotFound, "Error: unable to read raw file"),
         "Error: unable to read raw file"},
        {Status::success(), ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(statusText(c.status), c.text);
}
