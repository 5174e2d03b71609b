// tramline-cli import gsi, export gsi and points export gsi, end to end
// in-process: the summary lines, the options that answer the dialogs, and
// bad input (exit status 1, the messages, every file whole).
#include "../support/cli_support.h"
#include "../support/test_support.h"

namespace {

using tramline::test::runCli;
using tramline::test::slurp;
using tramline::test::spit;

const std::filesystem::path kSamples = TRAMLINE_SAMPLES_DIR;

using GsiCommands = tramline::test::ScratchFolderTest;

TEST_F(GsiCommands, ImportEndsWithItsSummaryAndFillsTheCoordinateFile) {
    if (!std::filesystem::exists(kSamples))
        GTEST_SKIP() << "field samples not found at " << kSamples;
    const auto r = runCli({"import", "gsi", (kSamples / "gsi/coords.gsi").string(), "-o",
                           at("job.rw5"), "--crd", at("job.crd")});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "Conversion done\n");
    EXPECT_EQ(r.out, "Read 48 records: 0 observations, 48 points stored, 0 lines skipped\n");
    const auto list = runCli({"crd", "list", at("job.crd")});
    EXPECT_NE(list.out.find("9001"), std::string::npos);
}

TEST_F(GsiCommands, OptionsAnswerTheLeicaOptions) {
    const std::string gsi = "*110001+00000000000000S1 84..10+0000000001000000 "
                            "85..10+0000000002000000 \n"
                            "*110002+00000000000000S2 21.324+0000000001000000 "
                            "22.324+0000000009000000 31..00+0000000000050000 \n";
    spit(dir / "a.gsi", gsi);
    struct {
        std::vector<std::string> options;
        const char *expected;
    } cases[] = {
        {{}, "\nSS,OPS1,FPS2,"},
        {{"--coding", "liscad", "--order", "bfbf"}, "\n--UNITS METERS\n"},
        {{"--coding", "10-20-30-40"}, "\nSS,OPS1,FPS2,AR"},
    };
    for (const auto &c : cases) {
        std::vector<std::string> args = {"import", "gsi", at("a.gsi"), "-o", at("a.rw5")};
        args.insert(args.end(), c.options.begin(), c.options.end());
        const auto r = runCli(args);
        ASSERT_EQ(r.code, 0) << r.err;
        EXPECT_NE(slurp(dir / "a.rw5").find(c.expected), std::string::npos) << c.expected;
    }
    EXPECT_EQ(runCli({"import", "gsi", at("a.gsi"), "-o", at("a.rw5"), "--coding", "geocomp"}).code,
              2);
}

TEST_F(GsiCommands, BadInputFailsAndKeepsEveryFileWhole) {
    spit(dir / "garbage.gsi", std::string("\x00\x01\xfe\xff\x7f binary\r\r\n", 15));
    spit(dir / "old.rw5", "JB,NMold,DT,TM\n");
    spit(dir / "good.gsi", "*110001+0000000000000001 81..10+0000000000001000 "
                           "82..10+0000000000002000");
    struct {
        std::string source, output, message;
    } cases[] = {
        {at("missing.gsi"), at("old.rw5"), "Error: unable to read raw file\n"},
        {at("garbage.gsi"), at("old.rw5"), "Error: not a Leica GSI file\n"},
        {at("good.gsi"), at("no/such/x.rw5"), "Error: unable to write rw5 file\n"},
    };
    for (const auto &c : cases) {
        const auto r = runCli({"import", "gsi", c.source, "-o", c.output});
        EXPECT_EQ(r.code, 1) << c.source;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_EQ(slurp(dir / "old.rw5"), "JB,NMold,DT,TM\n");
    }
}

TEST_F(GsiCommands, RawExportAndPointExport) {
    spit(dir / "job.rw5", "JB,NMJ,DT,TM\nOC,OPST1,N 1.0,E 2.0,EL3.0,--\n"
                          "SS,OPST1,FP7,AR10.0000,ZE90.0000,SD12.0000,--\n");
    const auto raw =
        runCli({"export", "gsi", at("job.rw5"), "-o", at("job.gsi"), "--angle", "gon"});
    ASSERT_EQ(raw.code, 0) << raw.err;
    EXPECT_EQ(raw.err, "Conversion done\n");
    EXPECT_NE(slurp(dir / "job.gsi").find(" 21...2+0000000001111111 "), std::string::npos);
    const auto unwritable = runCli({"export", "gsi", at("job.rw5"), "-o", at("no/such/x.gsi")});
    EXPECT_EQ(unwritable.code, 1);
    EXPECT_EQ(unwritable.err, "Error: unable to create gsi file " + at("no/such/x.gsi") + "\n" +
                                  at("no/such/x.gsi") + ": No such file or directory\n");

    ASSERT_EQ(runCli({"crd", "put", at("x.crd"), "1", "100000.0", "5", "1"}).code, 0);
    const auto gsi16 = runCli({"points", "export", "gsi", at("x.crd"), "-o", at("x16.gsi")});
    EXPECT_EQ(gsi16.code, 0) << gsi16.err;
    EXPECT_EQ(gsi16.out, "Wrote 1 points\n");
    EXPECT_TRUE(slurp(dir / "x16.gsi").starts_with("*110001+0000000000000001 "));
    const auto gsi8 =
        runCli({"points", "export", "gsi", at("x.crd"), "-o", at("x8.gsi"), "--gsi8"});
    EXPECT_EQ(gsi8.code, 1);
    EXPECT_EQ(gsi8.err, "Error: coordinates exceed record length. Try GSI-16 format.\n");
    EXPECT_TRUE(slurp(dir / "x8.gsi").starts_with("110001+00000001 "));

    // Back through the point import.
    const auto back =
        runCli({"points", "import", "gsi-wildsoft", at("x16.gsi"), "--crd", at("back.crd")});
    EXPECT_EQ(back.code, 0) << back.err;
    EXPECT_EQ(back.err, "Done\n");
}

} // namespace
