#include "../support/test_support.h"
#include "cli/cli.h"

#include "../support/cli_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>

using namespace tramline;

namespace {

using Result = tramline::test::CliResult;

using tramline::test::runCli;

class ProcessCli : public test::ScratchFolderTest {
protected:
    std::string example() const {
        return std::string(TRAMLINE_SOURCE_DIR) + "/data/examples/closed-traverse.rw5";
    }
    std::vector<std::string> process(std::vector<std::string> extra) {
        std::vector<std::string> args = {"process",   example(),
                                         "--crd",     (dir / "job.crd").string(),
                                         "--workdir", (dir / "work").string()};
        args.insert(args.end(), extra.begin(), extra.end());
        return args;
    }
};

// The main job from the command line: report on standard output, points in
// the coordinate file.
TEST_F(ProcessCli, CompassRunStoresAndReports) {
    Result r =
        runCli(process({"--method", "compass", "--start", "1", "--end", "1", "--angle-balance"}));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("Process Compass Results\n", 0), 0u);
    for (const char *heading :
         {"Report Header\n=============", "Unadjusted Data\n", "Angle Balance\n",
          "Closure Results (After Angle Balance)\n", "Compass\n=======\nCompass Closure"})
        EXPECT_NE(r.out.find(heading), std::string::npos) << heading;
    const Result list = runCli({"crd", "list", (dir / "job.crd").string()});
    EXPECT_NE(list.out.find("\n6,4768.9"), std::string::npos) << list.out; // true 4768.902

    // Again, into the same file: every point is now there already.
    r = runCli(process({"--method", "none", "--json"}));
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("The \"Point Protect\" dialog needs an answer: give --answer \"Point "
                         "Protect=Continue Processing\""),
              std::string::npos)
        << r.err;
    r = runCli(
        process({"--method", "none", "--json", "--answer", "Point Protect=Continue Processing"}));
    ASSERT_EQ(r.code, 0) << r.err;
    const auto doc = nlohmann::json::parse(r.out);
    EXPECT_EQ(doc["title"], "Process No Adjust Results");
    EXPECT_EQ(doc["pointsStored"], 14);
}

TEST_F(ProcessCli, UnansweredDialogsNameTheirOption) {
    const Result r = runCli(process({"--method", "transit"}));
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(
        r.err.find("The \"Traverse Points\" dialog needs an answer: give --start P and --end P"),
        std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir / "job.crd") &&
                 std::filesystem::file_size(dir / "job.crd") > 104u);
}

TEST_F(ProcessCli, BadUsageAndFailures) {
    EXPECT_EQ(runCli(process({"--method", "bowditch"})).code, 2);
    EXPECT_EQ(runCli(process({"--closing-shot", "1"})).code, 2);
    EXPECT_EQ(runCli(process({"--reference-azimuth", "north"})).code, 2);
    EXPECT_EQ(runCli(process({"--combined-scale"})).code, 2); // needs --family and --zone
    EXPECT_EQ(runCli(process({"--answer", "no equals sign"})).code, 2);
    // A zone position too large for any number type is an unknown zone.
    const Result zone = runCli(
        process({"--combined-scale", "--family", "State Plane 83", "--zone", "99999999999"}));
    EXPECT_EQ(zone.code, 1);
    EXPECT_NE(zone.err.find("Error: no zone 99999999999 in"), std::string::npos) << zone.err;
    const Result missing =
        runCli({"process", (dir / "none.rw5").string(), "--crd", (dir / "x.crd").string()});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err, "Error: unable to read raw file\n");
    const Result help = runCli({"process", "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_NE(help.out.find("--closing-shot"), std::string::npos);
}

} // namespace
