// tramline-cli crd ... run in-process, as a user would type them.
#include "cli/cli.h"

#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using Result = tramline::test::CliResult;

Result cli(const std::vector<std::string> &args) {
    return tramline::test::runCli(args);
}

class CrdCommands : public tramline::test::ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        path = at("site.crd");
    }
    std::string path;
};

TEST_F(CrdCommands, AlphanumericRoundTrip) {
    struct Step {
        std::vector<std::string> args;
        int code;
        std::string out;
    };
    const std::vector<Step> steps = {
        {{"crd", "new", path, "--alpha"}, 0, "Created " + path + " (alphanumeric)\n"},
        {{"crd", "put", path, "a-10", "1000", "-2000.125", "12.5", "iron pin"},
         0,
         "A_10,1000.0000,-2000.1250,12.5000,iron pin\n"},
        {{"crd", "put", path, "2", "1", "2", "3"}, 0, "2,1.0000,2.0000,3.0000,\n"},
        {{"crd", "put", path, "10", "4", "5", "98765432.1", "no elevation"},
         0,
         "10,4.0000,5.0000,0.0000,no elevation\n"},
        {{"crd", "get", path, "A_10"}, 0, "A_10,1000.0000,-2000.1250,12.5000,iron pin\n"},
        {{"crd", "get", path, "3", "--next"}, 0, "10,4.0000,5.0000,0.0000,no elevation\n"},
        {{"crd", "get", path, "3", "--previous"}, 0, "2,1.0000,2.0000,3.0000,\n"},
        {{"crd", "list", path},
         0,
         "2,1.0000,2.0000,3.0000,\n10,4.0000,5.0000,0.0000,no elevation\n"
         "A_10,1000.0000,-2000.1250,12.5000,iron pin\n"},
        {{"crd", "list", path, "--range", "3-A1"}, 0, "10,4.0000,5.0000,0.0000,no elevation\n"},
        {{"crd", "list", path, "--range", "10", "--json"},
         0,
         "[\n {\n  \"description\": \"no elevation\",\n  \"easting\": 5.0,\n  \"elevation\": 0.0,\n"
         "  \"name\": \"10\",\n  \"northing\": 4.0\n }\n]\n"},
        {{"crd", "delete", path, "1-5,A_10"}, 0, "Deleted 2 points\n"},
        {{"crd", "list", path}, 0, "10,4.0000,5.0000,0.0000,no elevation\n"},
    };
    for (const auto &step : steps) {
        const Result r = cli(step.args);
        EXPECT_EQ(r.code, step.code) << step.args[1] << ": " << r.err;
        EXPECT_EQ(r.out, step.out) << step.args[1];
    }
    const Result info = cli({"crd", "info", path});
    EXPECT_EQ(info.code, 0);
    EXPECT_EQ(info.out.substr(0, info.out.find("date:")),
              "format: alphanumeric\nhighest: 10\nlowest: 10\ncount: 1\ntitle: \n");
}

TEST_F(CrdCommands, FailuresAndUsage) {
    ASSERT_EQ(cli({"crd", "new", path, "--numeric"}).code, 0);
    struct Case {
        std::vector<std::string> args;
        int code;
        std::string errHas; // a piece of the error output
    };
    const Case cases[] = {
        {{"crd", "put", path, "7A", "1", "2", "3"},
         1,
         "Error: pt# 7A invalid for current CRD format of numeric only point numbers.\n"
         "Point name contains an invalid character for numeric format crd files.\n"},
        {{"crd", "put", path, "100000", "1", "2", "3"}, 1, "Point name is numerically too high."},
        {{"crd", "get", path, "4"},
         1,
         "Requested point number greater than highest in file.\nRequested point# 4 has no "
         "coordinate stored.\nThe specified point was not found.\n"},
        {{"crd", "get", at("missing.crd"), "4"}, 1, "does not exist."},
        {{"crd", "new", at("x.zak")}, 1, "File type not supported"},
        {{"crd", "put", path, "1", "north", "2", "3"}, 2, "NORTHING"},
        {{"crd", "put", path, "1", "2"}, 2, "required"},
        {{"crd", "new", path, "--alpha", "--numeric"}, 2, "excludes"},
        {{"crd", "get", path, "1", "--next", "--previous"}, 2, "excludes"},
        {{"crd", "list", path, "--range", "1-"}, 2, "--range"},
        {{"crd", "delete", path, "1,,2"}, 2, "LIST"},
        {{"crd"}, 2, ""},
    };
    for (const auto &c : cases) {
        const Result r = cli(c.args);
        EXPECT_EQ(r.code, c.code) << c.args.back() << ": " << r.err;
        EXPECT_NE(r.err.find(c.errHas), std::string::npos) << r.err;
    }
}

TEST_F(CrdCommands, HistoryOfPutsAndDeletes) {
    EXPECT_EQ(cli({"crd", "history", path}).out, "No history is kept for " + path + "\n");
    ASSERT_EQ(cli({"crd", "put", path, "P1", "1", "2", "3", "--history"}).code, 0);
    ASSERT_EQ(cli({"crd", "put", path, "P1", "1", "2", "4"}).code, 0); // kept: the file exists
    ASSERT_EQ(cli({"crd", "delete", path, "P1"}).code, 0);
    const Result r = cli({"crd", "history", path});
    EXPECT_EQ(r.code, 0) << r.err;
    std::istringstream lines(r.out);
    std::vector<std::string> tails;
    for (std::string line; std::getline(lines, line);)
        tails.push_back(line.substr(26)); // after the time stamp column
    EXPECT_EQ(tails, (std::vector<std::string>{"Input-Edit Point  P1: N 1.0000 E 2.0000 Z 3.0000",
                                               "Input-Edit Point  P1: Z 4.0000",
                                               "Delete Points  P1: removed"}));
    std::ofstream(dir / "site.his", std::ios::app) << "P2"; // a cut entry
    const Result cut = cli({"crd", "history", path});
    EXPECT_EQ(cut.code, 1);
    EXPECT_NE(cut.err.find("not valid."), std::string::npos);
}

// rename, replace and print run one after the other on one file, as a
// user would type them: what each prints, its exit code, and the file's
// points afterwards.
TEST_F(CrdCommands, RenameReplaceAndPrint) {
    ASSERT_EQ(cli({"crd", "put", path, "1", "1000", "2000", "10", "IRON ROD"}).code, 0);
    ASSERT_EQ(cli({"crd", "put", path, "2", "1100", "2100", "11", "NAIL"}).code, 0);
    std::ofstream(dir / "site.not") << "Tramline point notes 1\n1\tfound\n";
    struct Step {
        std::vector<std::string> args;
        int code;
        std::string out, err;
        std::string list; // the points afterwards
    };
    const std::string both = "1,1000.0000,2000.0000,10.0000,IRON ROD\n"
                             "2,1100.0000,2100.0000,11.0000,NAIL\n";
    const std::string question = "Search and Replace:\nReplace in row 1 column 5?\n";
    const std::vector<Step> steps = {
        {{"crd", "rename", path, "1", "2"}, 1, "", "Error: point 2 already exists\n", both},
        {{"crd", "rename", path, "1", "a-5"},
         0,
         "A_5,1000.0000,2000.0000,10.0000,IRON ROD\n",
         "",
         "2,1100.0000,2100.0000,11.0000,NAIL\nA_5,1000.0000,2000.0000,10.0000,IRON ROD\n"},
        {{"crd", "replace", path, "--find", "A", "--replace", "B", "--field", "description"},
         0,
         "Replaced 1\n",
         "",
         "2,1100.0000,2100.0000,11.0000,NBIL\nA_5,1000.0000,2000.0000,10.0000,IRON ROD\n"},
        {{"crd", "replace", path, "--find", "ZZZ", "--replace", "Y"},
         1,
         "",
         "String not found\n",
         "2,1100.0000,2100.0000,11.0000,NBIL\nA_5,1000.0000,2000.0000,10.0000,IRON ROD\n"},
        // Replace, one at a time: unanswered, it stops and says how to answer.
        {{"crd", "replace", path, "--find", "N", "--replace", "M", "--field", "description",
          "--confirm"},
         1,
         "",
         question + "Answers: \"yes\" \"no\" \"cancel\"\n"
                    "The \"Search and Replace\" dialog needs an answer: give --answer "
                    "\"Search and Replace=BUTTON\"\n",
         "2,1100.0000,2100.0000,11.0000,NBIL\nA_5,1000.0000,2000.0000,10.0000,IRON ROD\n"},
        {{"crd", "replace", path, "--find", "N", "--replace", "M", "--field", "description",
          "--confirm", "--answer", "Search and Replace=yes"},
         0,
         "Replaced 2\n",
         "",
         "2,1100.0000,2100.0000,11.0000,MBIL\nA_5,1000.0000,2000.0000,10.0000,IROM ROD\n"},
        {{"crd", "replace", path, "--find", "1", "--replace", "2", "--field", "sideways"},
         2,
         "",
         "",
         "2,1100.0000,2100.0000,11.0000,MBIL\nA_5,1000.0000,2000.0000,10.0000,IROM ROD\n"},
    };
    for (const auto &step : steps) {
        const Result r = cli(step.args);
        const std::string label = step.args[1] + " " + step.args[3];
        EXPECT_EQ(r.code, step.code) << label << ": " << r.err;
        EXPECT_EQ(r.out, step.out) << label;
        if (step.code != 2) { // usage errors are CLI11's own text
            EXPECT_EQ(r.err, step.err) << label;
        }
        EXPECT_EQ(cli({"crd", "list", path}).out, step.list) << label;
    }
    // The note went with the renamed point.
    EXPECT_NE(tramline::test::slurp(dir / "site.not").find("A_5\tfound"), std::string::npos);

    const std::string listing =
        "Coordinates\nFile: " + path +
        "\nPoints: 2\n\n"
        "PntNo              Easting        Northing    Elevation  "
        "Description\n"
        "2                2100.0000       1100.0000      11.0000  MBIL\n"
        "A_5              2000.0000       1000.0000      10.0000  IROM ROD\n";
    const Result print = cli({"crd", "print", path, "--workdir", at("work"), "--easting-first"});
    EXPECT_EQ(print.code, 0) << print.err;
    EXPECT_EQ(print.out, listing);
    EXPECT_EQ(tramline::test::slurp(dir / "work" / "morvrprt.tmp"), listing);
    const Result missing = cli({"crd", "print", at("none.crd"), "--workdir", at("work")});
    EXPECT_EQ(missing.code, 1);
}

} // namespace

namespace {

// Points in and out by the file: put --from stores through the bulk write
// what get and list print, get --names-from answers in the names' order.
TEST_F(CrdCommands, PutFromAndGetNamesFrom) {
    const std::string points = at("points.txt");
    const std::string names = at("names.txt");
    const std::string bad = at("bad.txt");
    std::ofstream(points) << "a-10,1000,-2000.125,12.5,iron pin, set 1990\r\n\n"
                             "2,1,2,3\n10,4,5,98765432.1,no elevation\n2,7,8,9,again\n";
    std::ofstream(names) << "10\n missing \n\nA_10\n2\n";
    std::ofstream(bad) << "5,1,2,3\n6,1,x,3\n";
    struct Step {
        std::vector<std::string> args;
        int code;
        std::string out, errHas;
    };
    const std::vector<Step> steps = {
        {{"crd", "put", path, "--from", bad},
         1,
         "",
         "Error: line 2 is not name,northing,easting,elevation"},
        {{"crd", "put", path, "--from", points, "--history"}, 0, "Stored 4 points\n", ""},
        {{"crd", "list", path},
         0,
         "2,7.0000,8.0000,9.0000,again\n10,4.0000,5.0000,0.0000,no elevation\n"
         "A_10,1000.0000,-2000.1250,12.5000,\"iron pin, set 1990\"\n",
         ""},
        {{"crd", "get", path, "--names-from", names},
         1,
         "10,4.0000,5.0000,0.0000,no elevation\n"
         "A_10,1000.0000,-2000.1250,12.5000,\"iron pin, set 1990\"\n2,7.0000,8.0000,9.0000,again\n",
         "missing: The specified point was not found."},
        {{"crd", "get", path, "--names-from", at("none.txt")}, 1, "", "Error: unable to open"},
        {{"crd", "get", path, "2", "--names-from", names}, 2, "", "excludes"},
        {{"crd", "get", path}, 2, "", "NAME is required"},
        {{"crd", "put", path, "--from", points, "P", "1", "2", "3"}, 2, "", "excludes"},
    };
    for (const auto &step : steps) {
        const Result r = cli(step.args);
        EXPECT_EQ(r.code, step.code) << step.args[2] << ": " << r.err;
        EXPECT_EQ(r.out, step.out) << step.args.back();
        EXPECT_NE(r.err.find(step.errHas), std::string::npos) << r.err;
    }
    // One history entry a point, from nothing to its last line's values.
    const Result history = cli({"crd", "history", path});
    EXPECT_EQ(history.code, 0) << history.err;
    EXPECT_EQ(std::count(history.out.begin(), history.out.end(), '\n'), 3) << history.out;
    EXPECT_NE(history.out.find("Point  2: N 7.0000 E 8.0000 Z 9.0000"), std::string::npos)
        << history.out;
}

} // namespace
