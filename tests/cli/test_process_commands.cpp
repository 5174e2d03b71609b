#include "../support/test_support.h"
#include "cli/cli.h"

#include "../support/cli_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
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
        std::vector<std::string> args = {"process",     example(),   "--crd",
                                         at("job.crd"), "--workdir", at("work")};
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
    const Result list = runCli({"crd", "list", at("job.crd")});
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
    EXPECT_EQ(r.err.find("Function cancelled at user request"), std::string::npos) << r.err;
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
    const Result help = runCli({"process", "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_NE(help.out.find("--closing-shot"), std::string::npos);
}

} // namespace

// The figures as numbers agree with the report text they come from.
TEST_F(ProcessCli, JsonCarriesClosureAndPointsAsNumbers) {
    const Result r = runCli(process(
        {"--method", "compass", "--start", "1", "--end", "1", "--angle-balance", "--json"}));
    ASSERT_EQ(r.code, 0) << r.err;
    const auto doc = nlohmann::json::parse(r.out);
    ASSERT_EQ(doc["closures"].size(), 2u);
    EXPECT_EQ(doc["closures"][1]["title"], "Closure Results (After Angle Balance)");
    std::string text;
    for (const auto &tab : doc["tabs"])
        if (tab["title"] == "Closure Results (After Angle Balance)")
            text = tab["text"];
    const auto stated = text.find("Closure Precision: 1 in ");
    ASSERT_NE(stated, std::string::npos) << text;
    const double shown = std::stod(text.substr(stated + 24));
    const auto &closure = doc["closures"][1];
    EXPECT_NEAR(closure["precision"].get<double>(), shown, 0.06);
    EXPECT_NEAR(closure["horizontal"].get<double>(),
                std::hypot(closure["north"].get<double>(), closure["east"].get<double>()), 1e-9);
    EXPECT_NEAR(closure["horizontalTraversed"].get<double>() / closure["horizontal"].get<double>(),
                shown, 0.06);
    EXPECT_TRUE(doc["error"].is_null());
    EXPECT_TRUE(doc["warnings"].is_array());
    ASSERT_FALSE(doc["adjustedPoints"].empty());
    // Each stored point as the coordinate file holds it (the adjusted values).
    const auto file = nlohmann::json::parse(runCli({"crd", "list", at("job.crd"), "--json"}).out);
    std::size_t matched = 0;
    for (const auto &p : doc["storedPoints"])
        for (const auto &f : file)
            if (f["name"] == p["name"]) {
                ++matched;
                EXPECT_NEAR(p["northing"].get<double>(), f["northing"].get<double>(), 1e-9);
                EXPECT_NEAR(p["easting"].get<double>(), f["easting"].get<double>(), 1e-9);
            }
    EXPECT_EQ(matched, file.size());
    EXPECT_EQ(doc["storedPoints"].size(), doc["pointsStored"].get<std::size_t>());
}
