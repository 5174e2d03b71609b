// Traverses from public course material, entered as raw data and processed
// as a surveyor would; each folder under tests/data/reduce/published holds
// the job, the run's options and the published coordinates.
#include "../support/test_support.h"
#include "reduce/processing.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace tramline;
namespace fs = std::filesystem;

namespace {

const fs::path kCases = fs::path(TRAMLINE_TEST_DATA) / "reduce" / "published";

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(kCases))
        if (entry.is_directory())
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class PublishedTraverse : public test::ScratchFolderTest,
                          public ::testing::WithParamInterface<std::string> {};

TEST_P(PublishedTraverse, MatchesThePublishedCoordinates) {
    const fs::path folder = kCases / GetParam();
    reduce::ProcessOptions options;
    options.workingFolder = dir / "work";
    std::vector<std::string> reportLines;
    std::ifstream run(folder / "run.txt");
    for (std::string line; std::getline(run, line);) {
        const size_t eq = line.find('=');
        const std::string key = line.substr(0, eq), value = line.substr(eq + 1);
        const auto *method = reduce::adjustMethodByCliWord(value);
        if (key == "method" && method)
            options.method = method->method;
        else if (key == "start")
            options.startPoint = value;
        else if (key == "end")
            options.endPoint = value;
        else if (key == "closing")
            options.closingPoint.name = value;
        else if (key == "report")
            reportLines.push_back(value);
    }
    std::ifstream in(folder / "job.rw5", std::ios::binary);
    raw::RawFile file;
    ASSERT_TRUE(raw::readRaw(in, file));
    ScriptedInteraction ui;
    crd::CrdContext context;
    context.messages = &ui;
    crd::CoordinateFile coordinates(context);
    ASSERT_TRUE(coordinates.open(dir / "job.crd"));
    const auto result = reduce::processRaw(file, "job.rw5", coordinates, options, ui);
    ASSERT_EQ(result.status, reduce::ProcessResult::Status::Done) << result.error;

    std::ifstream expected(folder / "expected.csv");
    int checked = 0;
    for (std::string line; std::getline(expected, line);) {
        std::istringstream fields(line);
        std::string name, north, east, tolerance;
        std::getline(fields, name, ',');
        std::getline(fields, north, ',');
        std::getline(fields, east, ',');
        std::getline(fields, tolerance, ',');
        crd::CrdPoint p;
        ASSERT_TRUE(coordinates.readPoint(name, p, crd::PointSearch::Exact, crd::Verbosity::Quiet))
            << name;
        EXPECT_NEAR(p.northing, std::stod(north), std::stod(tolerance))
            << GetParam() << " point " << name;
        EXPECT_NEAR(p.easting, std::stod(east), std::stod(tolerance))
            << GetParam() << " point " << name;
        ++checked;
    }
    EXPECT_GT(checked, 0);
    const std::string report = result.report.toText();
    for (const auto &line : reportLines)
        EXPECT_NE(report.find(line), std::string::npos) << GetParam() << ": " << line << "\n"
                                                        << report;
}

INSTANTIATE_TEST_SUITE_P(Published, PublishedTraverse, ::testing::ValuesIn(caseNames()),
                         [](const auto &param) {
                             std::string name = param.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace
