#include "../support/test_support.h"
#include "cli/cli.h"

#include "../support/cli_support.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

using namespace tramline;
namespace fs = std::filesystem;

namespace {

using Result = tramline::test::CliResult;

using tramline::test::runCli;

using tramline::test::slurp;

class RawCli : public tramline::test::ScratchFolderTest {
protected:
    void SetUp() override {
        ScratchFolderTest::SetUp();
        job = write("job.rw5", kJob).string();
    }

    static constexpr const char *kJob = "MO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n"
                                        "OC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--\n"
                                        "LS,HI5.000,HR6.000\n"
                                        "SS,OP1,FP2,AR359.5900,ZE90.0000,SD100.000,--IP\n"
                                        "SS,OP1,FP3,AR10.0000,ZE89.0000,SD50.000,--EP\n";
    std::string job;
};

TEST_F(RawCli, Classify) {
    const Result r = runCli(
        {"raw", "classify", "--", "LS,HI5", "--", "JB,NMX,DTD,TMT", "SS,OP1,FP2,AR1,ZE,SD3,--"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, "3\t5\n-1\n0\n9\tSS\t1\t2\t1\t\t3\n");
    const Result withJob = runCli({"raw", "classify", "--job", "JB,NMX,DTD,TMT"});
    EXPECT_EQ(withJob.out, "2\tX\tD\tT\n");
}

TEST_F(RawCli, ShowTextAndJson) {
    const Result r = runCli({"raw", "show", job});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, "1\tDS\tMO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n"
                     "2\tDS\tOC,OP1,N 5000.0000,E 5000.0000,EL100.0000,--\n"
                     "3\tHI\t5.000\t6.000\n"
                     "4\tSS\t1\t2\tAR\t359.5900\t90.0000\t100.000\tIP\n"
                     "5\tSS\t1\t3\tAR\t10.0000\t89.0000\t50.000\tEP\n");
    const Result j = runCli({"raw", "show", job, "--json"});
    ASSERT_EQ(j.code, 0);
    const auto rows = nlohmann::json::parse(j.out);
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[3]["type"], "SS");
    EXPECT_EQ(rows[3]["cells"][3], "359.5900");
    EXPECT_EQ(rows[3]["captions"][4], "ZenithAng");
}

TEST_F(RawCli, Modify) {
    const std::string out = at("out.rw5");
    Result r = runCli({"raw", "modify", job, "--field", "horizontal", "--delta", "0.0200",
                       "--points", "2", "-o", out});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Modified 1 values\n");
    EXPECT_NE(slurp(out).find("SS,OP1,FP2,AR0.0100,ZE90.0000,SD100.000,--IP\n"), std::string::npos);
    EXPECT_EQ(slurp(job), kJob); // -o leaves the input alone

    r = runCli({"raw", "modify", job, "--field", "distance", "--delta", "-0.5", "--lines", "4-5"});
    EXPECT_EQ(r.out, "Modified 2 values\n");
    EXPECT_NE(slurp(job).find("SD49.500"), std::string::npos); // saved in place

    r = runCli(
        {"raw", "modify", job, "--field", "elevdiff", "--delta", "1", "--points", "2", "-o", out});
    EXPECT_EQ(r.out, "Modified 1 values\n");
    EXPECT_NE(slurp(out).find("SS,OP1,FP2,AR359.5900,CE1.0000,SD99.500,--IP"), std::string::npos);
}

TEST_F(RawCli, UsageErrorsExitTwo) {
    const std::vector<std::vector<std::string>> cases = {
        {},
        {"raw"},
        {"raw", "modify", "x.rw5", "--field", "distance", "--delta", "1"}, // no rows chosen
        {"raw", "modify", "x.rw5", "--field", "speed", "--delta", "1", "--points",
         "1"}, // unknown field
        {"raw", "modify", "x.rw5", "--field", "distance", "--delta", "1", "--lines", "5-2"},
        {"raw", "modify", "x.rw5", "--field", "distance", "--delta", "1", "--points", "1",
         "--lines", "1-2"},
        {"raw", "show"},
        {"nonsense"},
    };
    for (const auto &args : cases) {
        const Result r = runCli(args);
        EXPECT_EQ(r.code, 2) << (args.empty() ? "(none)" : args.back());
    }
}

TEST_F(RawCli, FailuresPrintTheMessageAndExitOne) {
    // Show and check of a missing file: CliFiles.MissingFilesNameTheReason.
    const Result r = runCli({"raw", "append", job, at("missing.rw5")});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.starts_with("Error: unable to read raw file\n")) << r.err;
    const Result w = runCli({"raw", "modify", job, "--field", "distance", "--delta", "1",
                             "--points", "2", "-o", dir.string()});
    EXPECT_EQ(w.code, 1);
    EXPECT_TRUE(w.err.starts_with("Error: failed to write rawfile\n")) << w.err;
}

TEST_F(RawCli, AppendCheckAndPrint) {
    const std::string other = at("other.rw5");
    std::ofstream(other, std::ios::binary) << "JB,NMB,DT,TM\nLS,HR5.500\nQQ,odd line\n";
    const std::string out = at("both.rw5");
    Result r = runCli({"raw", "append", job, other, "--tds", "-o", out});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Added 2 records\n");
    EXPECT_EQ(slurp(out), std::string(kJob) + "LS,HR5.500\nQQ,odd line\n");

    r = runCli({"raw", "check", out});
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find("Units: US survey feet, degrees-minutes-seconds\n"), std::string::npos);
    EXPECT_NE(r.out.find("  line 7: QQ,odd line\n"), std::string::npos);

    r = runCli({"raw", "print", job, "--workdir", dir.string()});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out, slurp(dir / "morvrprt.tmp"));
    EXPECT_EQ(r.out.rfind("Edit-Process Raw File\n", 0), 0u);
}

// The field samples of other formats are not raw files: reading them must
// neither crash nor hang, and what is not a record stays as text.
TEST_F(RawCli, ForeignSamplesAreReadAsText) {
    const fs::path samples = TRAMLINE_SAMPLES_DIR;
    if (!fs::is_directory(samples))
        GTEST_SKIP() << "field samples not found at " << samples << "; skipping";
    int files = 0;
    for (const auto &entry : fs::recursive_directory_iterator(samples)) {
        if (!entry.is_regular_file())
            continue;
        const Result r = runCli({"raw", "show", entry.path().string()});
        EXPECT_EQ(r.code, 0) << entry.path();
        ++files;
    }
    EXPECT_GT(files, 10);
}

} // namespace
