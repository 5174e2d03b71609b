// tramline-cli lsq prepare|solve and process --method least-squares, end to
// end in-process: exit codes, the report, the JSON, the picture, and a
// coordinate file that keeps its points when the solve fails.
#include "../support/test_support.h"
#include "cli/cli.h"

#include "../support/cli_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>

using namespace tramline;

namespace {

using Result = tramline::test::CliResult;
using tramline::test::runCli;

class LsqCli : public test::ScratchFolderTest {
protected:
    std::string quadrilateral() const {
        return std::string(TRAMLINE_TEST_DATA) + "/adjust/quadrilateral.lsq";
    }
    std::string crd() const { return at("job.crd"); }
};

TEST_F(LsqCli, SolveReportsStoresAndDraws) {
    const std::string svg = at("net.svg");
    const Result r = runCli({"lsq", "solve", quadrilateral(), "--crd", crd(), "--plot", svg});
    ASSERT_EQ(r.code, 0) << r.err;
    for (const char *text :
         {"Least-Squares\n=============\nLeast-Squares Closure", "Solution Converged in",
          "Statistics\n==========", "No suspect observations."})
        EXPECT_NE(r.out.find(text), std::string::npos) << text;
    std::ifstream in(svg);
    std::stringstream content;
    content << in.rdbuf();
    const std::string picture = content.str();
    EXPECT_EQ(picture.rfind("<?xml", 0), 0u);
    EXPECT_NE(picture.find(">E</text>"), std::string::npos);
    const Result list = runCli({"crd", "list", crd()});
    EXPECT_NE(list.out.find("\nE,"), std::string::npos) << list.out;
    EXPECT_EQ(list.out.find("\nA,"), std::string::npos) << "control points are not stored";
}

TEST_F(LsqCli, JsonCarriesPointsStatisticsAndObservations) {
    const Result r = runCli({"lsq", "solve", quadrilateral(), "--crd", crd(), "--json"});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto doc = nlohmann::json::parse(r.out);
    EXPECT_EQ(doc["degreesOfFreedom"], 14);
    EXPECT_EQ(doc["points"].size(), 3u);
    EXPECT_EQ(doc["points"][0]["name"], "C");
    EXPECT_TRUE(doc["points"][0]["ellipse"].contains("semiMajor"));
    EXPECT_EQ(doc["observations"].size(), 20u);
    EXPECT_TRUE(doc["observations"][0].contains("redundancy"));
    EXPECT_TRUE(doc["chiSquare"].contains("passes"));
    EXPECT_GE(doc["iterations"].get<int>(), 2);
    EXPECT_EQ(doc["criticalValue"], 3.29);
}

TEST_F(LsqCli, BadInputFailsAndTheCoordinateFileKeepsItsPoints) {
    ASSERT_EQ(runCli({"lsq", "solve", quadrilateral(), "--crd", crd()}).code, 0);
    const std::string before = runCli({"crd", "list", crd()}).out;
    struct Case {
        const char *file;
        const char *says;
    } cases[] = {
        {"CP,1,0,0\nAP,2,0,10\nDIST,1,2,ten,0.01\n",
         "Error: line 3 of the least-squares file does not parse: DIST,1,2,ten,0.01"},
        {"CP,1,0,0\nAP,E,0,10\nDIST,1,9,10,0.01\n", "names unknown point 9"},
        {"CP,1,0,0\nAP,E,0,10\nDIST,1,E,10,0.01\n", "do not determine E"},
        {"CP,1,0,0\nAP,E,0,10\nDIST,1,E,10,0\n", "zero or negative standard error"},
        {"", "Error: no least-squares data found. Run Prepare Least-Squares Data."},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        const Result r =
            runCli({"lsq", "solve", write("bad.lsq", c.file).string(), "--crd", crd()});
        EXPECT_EQ(r.code, 1);
        EXPECT_NE(r.err.find(c.says), std::string::npos) << r.err;
        EXPECT_EQ(runCli({"crd", "list", crd()}).out, before);
    }
    const Result missing = runCli({"lsq", "solve", at("none.lsq"), "--crd", crd()});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err, "Error: failed to open read.dat\n");
    EXPECT_EQ(runCli({"lsq", "solve", quadrilateral()}).code, 2); // --crd is required
}

TEST_F(LsqCli, PrepareWritesBesideTheRawFileAndProcessRunsBothSteps) {
    const std::string raw = at("job.rw5");
    std::filesystem::copy_file(
        std::string(TRAMLINE_SOURCE_DIR) + "/data/examples/closed-traverse.rw5", raw);
    Result r = runCli({"lsq", "prepare", raw});
    ASSERT_EQ(r.code, 0) << r.err;
    ASSERT_TRUE(std::filesystem::exists(dir / "job.lsq"));
    r = runCli({"lsq", "solve", at("job.lsq"), "--crd", crd()});
    ASSERT_EQ(r.code, 0) << r.err;

    const std::string other = at("other.crd");
    r = runCli(
        {"process", raw, "--crd", other, "--method", "least-squares", "--workdir", at("work")});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("Process Least-Squares Results\n", 0), 0u);
    EXPECT_NE(r.out.find("Least-Squares\n=============\nLeast-Squares Closure"), std::string::npos);
    EXPECT_EQ(r.out.find("<svg"), std::string::npos) << "the picture is not printed";
    EXPECT_TRUE(std::filesystem::exists(dir / "work" / "job.lsq"));
    // The same adjusted station from both roads.
    const std::string a = runCli({"crd", "list", crd()}).out;
    const std::string b = runCli({"crd", "list", other}).out;
    const auto station = [](const std::string &list) {
        const auto line = list.find("\n4,");
        return line == std::string::npos ? std::string() : list.substr(line, 20);
    };
    EXPECT_FALSE(station(a).empty()) << a;
    EXPECT_EQ(station(a), station(b));
}

TEST_F(LsqCli, PrepareRefusesAnglesOtherThanAngleRight) {
    const std::string raw = write("left.rw5", "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                                              "SP,PN1,N 1000.0000,E 1000.0000,EL0.0000,--\n"
                                              "SP,PN2,N 1100.0000,E 1000.0000,EL0.0000,--\n"
                                              "OC,OP1,N 1000.0000,E 1000.0000,EL0.0000,--\n"
                                              "BK,OP1,BP2,BS0.0000,BC0.0000\n"
                                              "TR,OP1,FP3,AL90.0000,ZE90.0000,SD100.000,--\n");
    const Result r = runCli({"lsq", "prepare", raw});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Error: least-squares only handles angle right shots\n");
    EXPECT_FALSE(std::filesystem::exists(dir / "left.lsq"));
}

} // namespace
