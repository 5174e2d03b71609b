// A processing run on raw text in memory, into a fresh coordinate file, for
// the suites that check what a run computes and reports.
#pragma once

#include "base/format.h"
#include "process_run.h"
#include "reduce/processing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

namespace tramline::test {

class ProcessingRun : public ::testing::Test {
protected:
    ProcessingRun() { options.workingFolder = run.scratch.path / "work"; }

    /// Table-driven tests call this again before each row.
    void SetUp() override {
        run.ui = ScriptedInteraction{};
        run.reset();
    }

    reduce::ProcessResult process(const std::string &text) { return run.run(text, options); }
    std::optional<crd::CrdPoint> point(const std::string &name) { return run.point(name); }

    static std::string tab(const reduce::ProcessResult &r, const std::string &title) {
        const std::string text = ProcessRun::tab(r, title);
        return text.empty() ? "<no tab " + title + ">" : text;
    }

    static bool contains(const std::string &text, const std::string &part) {
        return text.find(part) != std::string::npos;
    }

    ProcessRun run;
    ScriptedInteraction &ui = run.ui;
    raw::RawFile &file = run.file;
    reduce::ProcessOptions options;
};

/// Decimal degrees as ddd.mmss with the seconds to 1e-6 (raw files take
/// any number of decimals), so a test can aim a shot at any point.
inline std::string packedDms(double degrees) {
    const double total = std::round(degrees * 3600.0 * 1e6) / 1e6;
    const long whole = static_cast<long>(total / 3600.0);
    const long minutes = static_cast<long>((total - whole * 3600.0) / 60.0);
    const double seconds = total - whole * 3600.0 - minutes * 60.0;
    std::string s = format("%.6f", seconds + 100.0); // keeps the leading zero
    return format("%ld.%02ld", whole, minutes) + s.substr(1, 2) + s.substr(4);
}

} // namespace tramline::test
