#include "cli/cli.h"

#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <gtest/gtest.h>

namespace {

using tramline::test::runCli;

class CliFiles : public tramline::test::ScratchFolderTest {};

} // namespace

TEST_F(CliFiles, RawCheckTellsOtherFilesApart) {
    const std::string records =
        "JB,NMdemo,DT01-01-2024,TM10:00:00\nMO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n";
    struct Case {
        std::string name, bytes;
        int code;
        std::string err; // expected on the error stream
    };
    const Case cases[] = {
        {"good.rw5", records, 0, ""},
        {"binary.rw5", records + std::string("\0\1\2", 3), 1,
         "Error: not a raw data file\n{}: it holds NUL bytes\n"},
        {"text.rw5", "Dear surveyor,\nthis is a letter.\nRegards\n" + records, 1,
         "Error: not a raw data file\n{}: 3 of its 5 lines are not raw data records\n"},
        {"long.rw5", records + "--" + std::string(300, 'x') + "\n", 0,
         "Warning: line 3 is longer than 221 characters and is read as several lines\n"},
    };
    for (const Case &c : cases) {
        const auto path = write(c.name, c.bytes).string();
        const auto result = runCli({"raw", "check", path});
        EXPECT_EQ(result.code, c.code) << c.name << result.err;
        std::string expected = c.err;
        if (const auto slot = expected.find("{}"); slot != std::string::npos)
            expected.replace(slot, 2, path);
        EXPECT_EQ(result.err, expected) << c.name;
    }
}

// Each command's own message stays as it is; the file and the system's
// reason follow it on a line of their own.
TEST_F(CliFiles, MissingFilesNameTheReason) {
    const std::string missing = at("nosuch.rw5");
    const std::string job = at("job.rw5");
    tramline::test::spit(dir / "job.rw5", "JB,NMjob,DT,TM\nSP,PN1,N 100,E 200,EL10,--A\n");
    const std::string folder = dir.string();
    const std::string noFolder = (dir / "no" / "x.out").string();
    const std::string gone = ": No such file or directory\n";
    struct Case {
        std::vector<std::string> args;
        std::string err;
    };
    const Case cases[] = {
        {{"raw", "check", missing}, "Error: unable to read raw file\n" + missing + gone},
        {{"raw", "show", missing}, "Error: unable to read raw file\n" + missing + gone},
        {{"raw", "show", folder},
         "Error: unable to read raw file\n" + folder + ": Is a directory\n"},
        {{"process", missing, "--crd", at("x.crd")},
         "Error: unable to read raw file\n" + missing + gone},
        {{"import", "sdr", missing, "-o", at("x.rw5"), "--crd", at("x.crd")},
         "Error: unable to read raw file\n" + missing + gone},
        {{"export", "sdr", missing, "-o", at("x.sdr")},
         "Error: unable to read raw file\n" + missing + gone},
        {{"export", "jxl", missing, "-o", at("x.jxl")},
         "\nError: cannot open RW5 file.\n" + missing + gone},
        {{"export", "sdr", job, "-o", noFolder},
         "Error: failed to write Sokkia file\n" + noFolder + gone},
        {{"export", "sdr", job, "-o", folder},
         "Error: failed to write Sokkia file\n" + folder + ": Is a directory\n"},
    };
    for (const Case &c : cases) {
        const auto result = runCli(c.args);
        EXPECT_EQ(result.code, 1) << c.args[0] << ' ' << c.args[1];
        EXPECT_EQ(result.err, c.err) << c.args[0] << ' ' << c.args[1];
    }
}

TEST(CliSuggestions, NearestSubcommand) {
    struct Case {
        std::vector<std::string> args;
        const char *hint; // the last line of the error stream, or "" for none
    };
    const Case cases[] = {
        {{"raw", "chek", "x.rw5"}, "Did you mean \"check\"?"},
        {{"procss", "x.rw5"}, "Did you mean \"process\"?"},
        {{"geo", "convrt"}, "Did you mean \"convert\"?"},
        {{"crd", "lsit", "a.crd"}, "Did you mean \"list\"?"},
        {{"raw", "xyzzy"}, ""},
        {{"raw", "--frobnicate"}, ""},
    };
    for (const Case &c : cases) {
        const auto result = runCli(c.args);
        EXPECT_EQ(result.code, 2) << c.args[1];
        const bool hinted = result.err.find("Did you mean") != std::string::npos;
        if (*c.hint)
            EXPECT_NE(result.err.find(std::string(c.hint) + "\n"), std::string::npos) << result.err;
        else
            EXPECT_FALSE(hinted) << result.err;
    }
}
