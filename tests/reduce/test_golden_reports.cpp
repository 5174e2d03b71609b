// The bundled example processed by every method, compared byte for byte
// with the reports and coordinate listings kept in tests/data/reduce/<case>/:
// `args` (the options of `tramline-cli process`, one a line),
// `expected-report.txt` and `expected-crd.txt`. A case is a folder; adding
// one needs no code. TRAMLINE_UPDATE_GOLDEN=1 rewrites the expected files
// from what the program gives (read them before committing).
#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace tramline;
namespace fs = std::filesystem;

namespace {

const fs::path kCases = fs::path(TRAMLINE_TEST_DATA) / "reduce";

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto &entry : fs::directory_iterator(kCases, ec))
        if (fs::exists(entry.path() / "args"))
            names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> argsOf(const fs::path &file) {
    std::vector<std::string> args;
    std::string text = test::slurp(file), line;
    for (char c : text + "\n") {
        if (c != '\n') {
            line += c;
            continue;
        }
        if (!line.empty() && line[0] != '#')
            args.push_back(line);
        line.clear();
    }
    return args;
}

// The scratch folder's path is the one machine-specific text a report
// holds (the raw and coordinate file names): it is taken out.
std::string normalised(std::string text, const fs::path &folder) {
    const std::string prefix = folder.string() + "/";
    for (size_t at; (at = text.find(prefix)) != std::string::npos;)
        text.erase(at, prefix.size());
    return text;
}

class GoldenReport : public test::ScratchFolderTest,
                     public ::testing::WithParamInterface<std::string> {
protected:
    void compare(const std::string &actual, const fs::path &expectedFile) {
        if (const char *update = std::getenv("TRAMLINE_UPDATE_GOLDEN");
            update && std::string(update) == "1") {
            test::spit(expectedFile, actual);
            return;
        }
        ASSERT_TRUE(fs::exists(expectedFile))
            << expectedFile << " missing: run with TRAMLINE_UPDATE_GOLDEN=1";
        const std::string expected = test::slurp(expectedFile);
        EXPECT_EQ(actual, expected) << "differs from " << expectedFile;
    }
};

TEST_P(GoldenReport, MatchesByteForByte) {
    const fs::path folder = kCases / GetParam();
    const fs::path raw = dir / "closed-traverse.rw5";
    fs::copy_file(fs::path(TRAMLINE_SOURCE_DIR) / "data/examples/closed-traverse.rw5", raw);
    std::vector<std::string> args = {"process",   raw.string(),
                                     "--crd",     (dir / "job.crd").string(),
                                     "--workdir", (dir / "work").string()};
    const auto extra = argsOf(folder / "args");
    args.insert(args.end(), extra.begin(), extra.end());
    const test::CliResult run = test::runCli(args);
    ASSERT_EQ(run.code, 0) << run.err;
    compare(normalised(run.out, dir), folder / "expected-report.txt");

    const test::CliResult list = test::runCli({"crd", "list", (dir / "job.crd").string()});
    ASSERT_EQ(list.code, 0) << list.err;
    compare(list.out, folder / "expected-crd.txt");
}

INSTANTIATE_TEST_SUITE_P(ExampleJob, GoldenReport, ::testing::ValuesIn(caseNames()),
                         [](const ::testing::TestParamInfo<std::string> &param) {
                             std::string name = param.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GoldenReport);

} // namespace
