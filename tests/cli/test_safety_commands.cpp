// What the user has is never lost: damaged coordinate files are refused
// for writing, checked and repaired; saves respect links and read-only
// files; a run that could not store its points says so.
#include "../support/cli_support.h"
#include "../support/test_support.h"
#include "cli_program.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;
using tramline::test::runCli;
using tramline::test::slurp;
using tramline::test::spit;

class SafetyCli : public tramline::test::ScratchFolderTest {};

std::string numericRecord(double n, double e, double z, const char *description) {
    std::string r(56, '\0');
    std::memcpy(r.data(), &n, 8);
    std::memcpy(r.data() + 8, &e, 8);
    std::memcpy(r.data() + 16, &z, 8);
    std::memcpy(r.data() + 24, description, std::strlen(description));
    return r;
}

std::string alphaRecord(double n, const char *name) {
    std::string r = numericRecord(n, n, n, "") + std::string(10, '\0');
    std::memcpy(r.data() + 56, name, std::strlen(name));
    return r;
}

std::string alphaHeader() {
    std::string h(104, '\0');
    std::memcpy(h.data() + 72, "New CRD Format2", 15);
    return h;
}

TEST_F(SafetyCli, DamagedFilesAreRefusedCheckedAndRepaired) {
    const struct {
        const char *what;
        std::string bytes;
        std::string problem; // what check says
        std::string kept;    // list of the repaired copy
    } cases[] = {
        {"numeric file cut inside a record",
         numericRecord(2, 0, 2009.0415, "") + numericRecord(1, 2, 3, "A") +
             numericRecord(4, 5, 6, "B").substr(0, 30),
         "the last record is cut short (30 stray bytes)", "1,1.0000,2.0000,3.0000,A\n"},
        {"alphanumeric file out of order",
         alphaHeader() + alphaRecord(1, "1") + alphaRecord(3, "3") + alphaRecord(2, "2"),
         "record 3: point 2 is out of order after 3",
         "1,1.0000,1.0000,1.0000,\n2,2.0000,2.0000,2.0000,\n3,3.0000,3.0000,3.0000,\n"},
        {"alphanumeric file with a name twice",
         alphaHeader() + alphaRecord(1, "1") + alphaRecord(2, "2") + alphaRecord(7, "2"),
         "record 3: point 2 is stored twice", "1,1.0000,1.0000,1.0000,\n2,7.0000,7.0000,7.0000,\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const std::string file = at("site.crd");
        const std::string clean = at("clean.crd");
        fs::remove(clean);
        spit(file, c.bytes);

        auto r = runCli({"crd", "put", file, "9", "1", "1", "1"});
        EXPECT_EQ(r.code, 1);
        EXPECT_NE(r.err.find("is damaged"), std::string::npos) << r.err;
        EXPECT_EQ(slurp(file), c.bytes);

        r = runCli({"crd", "check", file});
        EXPECT_EQ(r.code, 1);
        EXPECT_NE(r.out.find(c.problem), std::string::npos) << r.out;

        r = runCli({"crd", "repair", file, "-o", clean});
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_EQ(runCli({"crd", "list", clean}).out, c.kept);
        EXPECT_EQ(runCli({"crd", "check", clean}).code, 0);
        EXPECT_EQ(slurp(file), c.bytes); // the damaged file stays for the user
    }
}

TEST_F(SafetyCli, SavesGoThroughLinksAndRespectReadOnlyFiles) {
    const std::string job = "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                            "SS,OP1,FP2,AR0.0000,ZE90.0000,SD100.000,--IP\n";
    const fs::path real = dir / "real.rw5";
    const fs::path link = dir / "link.rw5";
    spit(real, job);
    fs::create_symlink(real.filename(), link);
    auto r = runCli(
        {"raw", "modify", link.string(), "--field", "distance", "--delta", "1", "--points", "2"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_NE(slurp(real).find("SD101.000"), std::string::npos);

    fs::permissions(real, fs::perms::owner_read | fs::perms::group_read);
    const std::string before = slurp(real);
    r = runCli({"raw", "append", link.string(), real.string()});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Error: failed to write rawfile\n" + real.string() + " is read-only\n");
    EXPECT_EQ(slurp(real), before);
    fs::permissions(real, fs::perms::owner_all);

    // A coordinate file reached through a link keeps its link on a delete.
    const std::string crd = at("site.crd");
    const std::string crdLink = at("site-link.crd");
    ASSERT_EQ(runCli({"crd", "put", crd, "A", "1", "2", "3"}).code, 0);
    ASSERT_EQ(runCli({"crd", "put", crd, "B", "1", "2", "3"}).code, 0);
    fs::create_symlink("site.crd", crdLink);
    spit(dir / "site~0a1b2c.tmp", "what a killed delete left");
    ASSERT_EQ(runCli({"crd", "delete", crdLink, "A"}).code, 0);
    EXPECT_FALSE(fs::exists(dir / "site~0a1b2c.tmp")); // debris goes
    EXPECT_TRUE(fs::is_symlink(crdLink));
    EXPECT_EQ(runCli({"crd", "list", crd}).out, "B,1.0000,2.0000,3.0000,\n");
}

// A point the file cannot take fails the run: its line on standard error
// and exit status 1, not a footnote in a report that says all went well.
// An overflowing traverse stops the run before anything is stored.
TEST_F(SafetyCli, ProcessFailsLoudlyWhenPointsAreNotStored) {
    std::string traverse =
        slurp(std::string(TRAMLINE_SOURCE_DIR) + "/data/examples/closed-traverse.rw5");
    const std::size_t sd = traverse.find("SD453.567");
    ASSERT_NE(sd, std::string::npos);
    traverse.replace(sd, 9, "SD1e300");
    const struct {
        const char *what;
        std::string rw5;
        std::vector<std::string> options;
        std::string error;
    } cases[] = {
        {"a name the numeric file refuses",
         "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
         "SP,PN1,N 1000.0000,E 1000.0000,EL10.0000,--A\n"
         "SP,PN2,N 1100.0000,E 1000.0000,EL10.0000,--B\n"
         "OC,OP1,N 1000.0000,E 1000.0000,EL10.0000,--A\n"
         "BK,OP1,BP2,BS0.0000,BC0.0000\n"
         "SS,OP1,FP7A,AR90.0000,ZE90.0000,SD10.000,--X\n",
         {"--answer", "Store Point Check=Continue Processing"},
         "Failed to store point 7A"},
        {"a traverse side of 1e300",
         traverse,
         {"--method", "compass", "--start", "1", "--end", "1"},
         "no finite coordinates"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const fs::path crd = dir / "job.crd";
        fs::remove(crd);
        ASSERT_EQ(runCli({"crd", "new", crd.string(), "--numeric"}).code, 0);
        spit(dir / "job.rw5", c.rw5);
        std::vector<std::string> args = {"process",    at("job.rw5"), "--crd",
                                         crd.string(), "--workdir",   at("work")};
        args.insert(args.end(), c.options.begin(), c.options.end());
        const auto r = runCli(args);
        EXPECT_EQ(r.code, 1);
        EXPECT_NE(r.err.find(c.error), std::string::npos) << r.err;
        const std::string list = runCli({"crd", "list", crd.string()}).out;
        EXPECT_EQ(list.find("inf"), std::string::npos) << list;
        EXPECT_EQ(list.find("nan"), std::string::npos) << list;
    }
}

TEST_F(SafetyCli, ProcessWithoutAWorkingFolderLeavesNoEmptyFile) {
    spit(dir / "job.rw5", "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n");
    spit(dir / "blocker", "a file where the folder should be");
    const auto r =
        runCli({"process", at("job.rw5"), "--crd", at("new.crd"), "--workdir", at("blocker")});
    EXPECT_EQ(r.code, 1);
    EXPECT_FALSE(fs::exists(dir / "new.crd"));
}

// Past a file-size limit the program says the save failed and leaves the
// file and the folder as they were; it is not killed by SIGXFSZ midway.
TEST_F(SafetyCli, FileSizeLimitGivesAnErrorNotADeath) {
    const std::string target = at("job.rw5"), more = at("more.rw5");
    const std::string job = "MO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n";
    spit(target, job);
    std::string notes;
    while (notes.size() < 20000)
        notes += "--a note long enough to take the file past its limit\n";
    spit(more, notes);
    tramline::test::ProgramSetup limited;
    limited.inChild = [] {
        const rlimit limit{8192, 8192};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    };
    const auto [code, message] =
        tramline::test::runProgram({"raw", "append", target, more}, limited);
    ASSERT_EQ(code, 1) << "128 and more: killed by a signal\n" << message;
    EXPECT_TRUE(message.starts_with("Error: failed to write rawfile\n")) << message;
    EXPECT_EQ(slurp(target), job);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator{}), 2);
}

} // namespace
