// Helpers of the converter tests: source lines from memory, imports run
// with scripted answers.
#pragma once

#include "base/interaction.h"
#include "convert/format.h"
#include "convert/sdr_import.h"
#include "convert/source_lines.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace tramline::test {

inline convert::SourceLines sourceOf(const std::string &bytes) {
    std::istringstream in(bytes);
    convert::SourceLines lines;
    EXPECT_TRUE(convert::readSourceLines(in, lines).ok());
    return lines;
}

inline std::filesystem::path samplePath(const std::string &relative) {
    return std::filesystem::path(TRAMLINE_SAMPLES_DIR) / relative;
}

/// Skips the calling test, visibly, when the field samples are not there.
#define TRAMLINE_REQUIRE_SAMPLES()                                                                 \
    if (!std::filesystem::exists(TRAMLINE_SAMPLES_DIR))                                            \
    GTEST_SKIP() << "field samples not found at " << TRAMLINE_SAMPLES_DIR

inline std::string readBytes(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

/// Imports SDR bytes answering the questions with `replies` (by default
/// backsight readings as sideshots).
inline convert::ImportOutput importSdrBytes(const std::string &bytes,
                                            std::deque<std::string> replies = {"Sideshots"},
                                            Status *status = nullptr) {
    ScriptedInteraction ui(std::move(replies));
    convert::ImportOutput out;
    const Status s = convert::importSdr(sourceOf(bytes), ui, out);
    if (status)
        *status = s;
    else
        EXPECT_TRUE(s.ok()) << s.message;
    return out;
}

/// The output lines that start with `prefix`.
inline std::vector<std::string> linesStarting(const convert::ImportOutput &out,
                                              const std::string &prefix) {
    std::vector<std::string> found;
    for (const auto &line : out.lines)
        if (line.starts_with(prefix))
            found.emplace_back(line);
    return found;
}

} // namespace tramline::test
