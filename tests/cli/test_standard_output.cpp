// "-" for standard output wherever a command writes a file: the bytes are
// the same as in the file, the command's own lines go to standard error,
// and a failed write (a full disk, a closed pipe) is an error.
#include "cli/cli.h"
#include "convert/registry.h"

#include "../support/cli_support.h"
#include "../support/test_support.h"
#include "cli_program.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <regex>

namespace {

using tramline::test::runCli;
using tramline::test::runProgram;
using tramline::test::slurp;

class StandardOutput : public tramline::test::ScratchFolderTest {
protected:
    // The example job and a coordinate file whose descriptions need quoting.
    void SetUp() override {
        ScratchFolderTest::SetUp();
        job = std::string(TRAMLINE_SOURCE_DIR) + "/data/examples/closed-traverse.rw5";
        crd = at("site.crd");
        ASSERT_EQ(runCli({"crd", "new", crd}).code, 0);
        ASSERT_EQ(runCli({"crd", "put", crd, "1", "5000", "4000", "100.25", "IP, FOUND"}).code, 0);
        ASSERT_EQ(runCli({"crd", "put", crd, "2", "5100.5", "4050", "99.5", "REBAR \"5/8\""}).code,
                  0);
        ASSERT_EQ(runCli({"crd", "put", crd, "10", "5200", "3900.125", "101", "CP"}).code, 0);
    }

    std::string job, crd;
};

// The JobXML names the second it was written: two runs may differ there.
std::string withoutTimeStamp(const std::string &text) {
    static const std::regex stamp("TimeStamp=\"[^\"]*\"");
    return std::regex_replace(text, stamp, "TimeStamp=\"\"");
}

TEST_F(StandardOutput, SameBytesAsTheFile) {
    // Each command with "{}" where its output file goes.
    std::vector<std::vector<std::string>> commands = {
        {"raw", "show", job, "-o", "{}"},
        {"raw", "show", job, "--json", "-o", "{}"},
        {"raw", "modify", job, "--field", "distance", "--delta", "0.5", "--lines", "1-60", "-o",
         "{}"},
        {"raw", "append", job, job, "-o", "{}"},
        {"crd", "list", crd, "-o", "{}"},
        {"crd", "list", crd, "--json", "--range", "1-2", "-o", "{}"},
        {"points", "export", "text", crd, "--order", "ENZD", "-o", "{}"},
    };
    using tramline::convert::FormatKind;
    const std::size_t own = commands.size();
    for (const auto &entry : tramline::convert::formatRegistry()) {
        if (!entry.built)
            continue;
        if (entry.kind == FormatKind::RawExport)
            commands.push_back({"export", entry.id, job, "-o", "{}"});
        else if (entry.kind == FormatKind::PointExport)
            commands.push_back({"points", "export", entry.id, crd, "-o", "{}"});
    }
    EXPECT_EQ(commands.size() - own, 7u) << "three raw exports and four point exports";
    for (const auto &command : commands) {
        std::string name;
        for (const auto &word : command)
            name += word + ' ';
        auto args = command;
        const auto target = std::find(args.begin(), args.end(), "{}");
        *target = at("out.file");
        const auto toFile = runCli(args);
        ASSERT_EQ(toFile.code, 0) << name << toFile.err;
        *target = "-";
        const auto toOutput = runCli(args);
        ASSERT_EQ(toOutput.code, 0) << name << toOutput.err;
        const std::string file = slurp(dir / "out.file");
        EXPECT_FALSE(file.empty()) << name;
        EXPECT_EQ(withoutTimeStamp(toOutput.out), withoutTimeStamp(file)) << name;
        // The summary a file run prints moves to standard error.
        if (!toFile.out.empty()) {
            EXPECT_NE(toOutput.err.find(toFile.out), std::string::npos) << name << toOutput.err;
        }
    }
}

TEST_F(StandardOutput, ShowAndListWriteStandardOutputByDefault) {
    for (const std::vector<std::string> &args :
         {std::vector<std::string>{"raw", "show", job}, {"crd", "list", crd}}) {
        auto named = args;
        named.insert(named.end(), {"-o", "-"});
        const auto plain = runCli(args);
        EXPECT_EQ(plain.code, 0);
        EXPECT_EQ(plain.out, runCli(named).out) << args[0];
    }
    EXPECT_EQ(runCli({"crd", "list", crd}).out,
              "1,5000.0000,4000.0000,100.2500,\"IP, FOUND\"\n"
              "2,5100.5000,4050.0000,99.5000,\"REBAR \"\"5/8\"\"\"\n"
              "10,5200.0000,3900.1250,101.0000,CP\n");
}

TEST_F(StandardOutput, CoordinateFilesRefuseTheDash) {
    const std::vector<std::vector<std::string>> commands = {
        {"crd", "list", "-"},
        {"crd", "new", "-"},
        {"crd", "put", "-", "1", "1", "2", "3"},
        {"crd", "transform", crd, "--from", "EPSG:32613", "--to", "EPSG:2231", "-o", "-"},
        {"points", "export", "text", "-", "-o", at("x.txt")},
        {"points", "import", "text", at("x.txt"), "--crd", "-"},
        {"import", "sdr", at("x.sdr"), "-o", at("x.rw5"), "--crd", "-"},
        {"process", job, "--crd", "-", "--method", "none"},
        {"lsq", "solve", at("x.lsq"), "--crd", "-"},
    };
    for (const auto &args : commands) {
        const auto r = runCli(args);
        EXPECT_EQ(r.code, 2) << args[0] << ' ' << args[1];
        EXPECT_EQ(r.err, "Error: a coordinate file cannot be standard input or output (\"-\"): "
                         "it is read and written in place\n")
            << args[0] << ' ' << args[1];
    }
}

TEST_F(StandardOutput, ProgressLinesAndTheFileDoNotShareTheStream) {
    const auto r = runCli({"export", "sdr", job, "-o", "-", "--ipc"});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.out.empty());
    ::setenv("TRAMLINE_IPC", "1", 1);
    const auto quiet = runCli({"export", "sdr", job, "-o", "-"});
    ::unsetenv("TRAMLINE_IPC");
    EXPECT_EQ(quiet.code, 0);
    EXPECT_EQ(quiet.out.find("$IPC"), std::string::npos);
}

TEST_F(StandardOutput, FailedWritesAreErrors) {
    const std::vector<std::vector<std::string>> commands = {
        {"raw", "show", job},
        {"raw", "modify", job, "--field", "distance", "--delta", "0.5", "--lines", "1-60", "-o",
         "-"},
        {"crd", "list", crd},
        {"export", "gsi", job, "-o", "-"},
        {"points", "export", "text", crd, "-o", "-"},
        {"points", "export", "geodimeter", crd, "-o", "-"},
    };
    const int full = ::open("/dev/full", O_WRONLY);
    if (full < 0)
        GTEST_SKIP() << "no /dev/full";
    tramline::test::ProgramSetup toFull;
    toFull.stdoutFd = full;
    for (const auto &args : commands) {
        const auto [code, err] = runProgram(args, toFull);
        EXPECT_EQ(code, 1) << args[0] << ' ' << args[1] << err;
        EXPECT_NE(err.find("standard output: No space left on device\n"), std::string::npos)
            << args[0] << ' ' << args[1] << err;
    }
    ::close(full);

    // A reader that has gone away: the program says so instead of dying.
    int out[2];
    ASSERT_EQ(::pipe(out), 0);
    ::close(out[0]);
    tramline::test::ProgramSetup toClosedPipe;
    toClosedPipe.stdoutFd = out[1];
    const auto [code, err] = runProgram({"raw", "show", job}, toClosedPipe);
    ::close(out[1]);
    EXPECT_EQ(code, 1) << err;
    EXPECT_NE(err.find("standard output: Broken pipe\n"), std::string::npos) << err;
}

} // namespace
