// A processing run on raw text in memory, into a fresh coordinate file, for
// the suites that check what a run computes and reports.
#pragma once

#include "../support/raw_support.h"
#include "../support/test_support.h"
#include "base/format.h"
#include "reduce/processing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>

namespace tramline::test {

class ProcessingRun : public ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        crd::CrdContext context;
        context.messages = &ui;
        coordinates = std::make_unique<crd::CoordinateFile>(context);
        ASSERT_TRUE(coordinates->open(dir / "job.crd"));
        options = reduce::ProcessOptions{};
        options.workingFolder = dir / "work";
        ui = ScriptedInteraction{};
    }

    reduce::ProcessResult process(const std::string &text) {
        file = readRawText(text);
        return reduce::processRaw(file, "job.rw5", *coordinates, options, ui);
    }

    std::optional<crd::CrdPoint> point(const std::string &name) {
        crd::CrdPoint p;
        if (!coordinates->readPoint(name, p, 0, true))
            return std::nullopt;
        return p;
    }

    static std::string tab(const reduce::ProcessResult &r, const std::string &title) {
        for (const auto &t : r.report.tabs())
            if (t.title == title)
                return t.text;
        return "<no tab " + title + ">";
    }

    static bool contains(const std::string &text, const std::string &part) {
        return text.find(part) != std::string::npos;
    }

    ScriptedInteraction ui;
    std::unique_ptr<crd::CoordinateFile> coordinates;
    reduce::ProcessOptions options;
    raw::RawFile file;
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
