// One processing run for a test: a fresh coordinate file in a scratch
// folder, scripted answers, the raw text processed, and ways to look at
// the result.
#pragma once

#include "../support/raw_support.h"
#include "../support/test_support.h"
#include "reduce/processing.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace tramline::test {

struct ProcessRun {
    explicit ProcessRun(std::deque<std::string> replies = {}) : ui(std::move(replies)) { reset(); }

    /// Starts over: an empty coordinate file and no answers given yet.
    void reset() {
        coordinates.reset();
        std::filesystem::remove_all(scratch.path);
        std::filesystem::create_directories(scratch.path);
        crd::CrdContext context;
        context.messages = &ui;
        coordinates = std::make_unique<crd::CoordinateFile>(context);
        EXPECT_TRUE(coordinates->open(scratch.path / "job.crd"));
    }

    reduce::ProcessResult run(const std::string &rawText, const reduce::ProcessOptions &options) {
        file = readRawText(rawText);
        return reduce::processRaw(file, "job.rw5", *coordinates, options, ui);
    }

    std::optional<crd::CrdPoint> point(const std::string &name) {
        crd::CrdPoint p;
        if (!coordinates->readPoint(name, p, crd::PointSearch::Exact, crd::Verbosity::Quiet))
            return std::nullopt;
        return p;
    }

    /// The text of the first tab titled `title`; empty when there is none.
    static std::string tab(const reduce::ProcessResult &r, const std::string &title) {
        for (const auto &t : r.report.tabs())
            if (t.title == title)
                return t.content();
        return {};
    }

    /// True when any tab of the report holds `text`.
    static bool reports(const reduce::ProcessResult &r, const std::string &text) {
        for (const auto &t : r.report.tabs())
            if (t.content().find(text) != std::string::npos)
                return true;
        return false;
    }

    ScratchFolder scratch;
    ScriptedInteraction ui;
    std::unique_ptr<crd::CoordinateFile> coordinates;
    raw::RawFile file;
};

} // namespace tramline::test
