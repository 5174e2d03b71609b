#include "base/csv_writer.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(CsvWriter, QuotesOnlyWhatNeedsIt) {
    struct Case {
        const char *field, *written;
    };
    const Case cases[] = {
        {"IP FOUND", "IP FOUND"},       {"IP, FOUND", "\"IP, FOUND\""},
        {"5\" bolt", "\"5\"\" bolt\""}, {"two\nlines", "\"two\nlines\""},
        {"cr\r", "\"cr\r\""},           {"", ""},
        {" padded ", " padded "},
    };
    for (const Case &c : cases) {
        std::string out;
        tramline::appendCsvField(out, c.field);
        EXPECT_EQ(out, c.written) << c.field;
    }
}

TEST(CsvWriter, RecordsEndWithCrLfAndKeepEmptyFields) {
    std::ostringstream out;
    tramline::CsvWriter csv(out);
    csv.field("1").field("").field("a,b").endRecord();
    csv.field("2").endRecord();
    EXPECT_EQ(out.str(), "1,,\"a,b\"\r\n2\r\n");
}

} // namespace
