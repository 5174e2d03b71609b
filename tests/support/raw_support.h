// Raw data for tests, read from text in memory.
#pragma once

#include "raw/reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace tramline::test {

/// The records of an RW5 text, as the reader gives them.
inline raw::RawFile readRawText(const std::string &text) {
    std::istringstream in(text);
    raw::RawFile file;
    EXPECT_TRUE(raw::readRaw(in, file));
    return file;
}

} // namespace tramline::test
