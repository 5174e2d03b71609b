// tramline-cli formats, import, export and points, end to end in-process:
// the summary lines, and bad input as users meet it (exit status 1, the
// shared messages, nothing half-written, the coordinate file whole).
#include "../support/cli_support.h"
#include "../support/test_support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace {

using tramline::test::runCli;
using tramline::test::runUnprivileged;
using tramline::test::slurp;
using tramline::test::spit;

const std::filesystem::path kSamples = TRAMLINE_SAMPLES_DIR;

using ConvertCommands = tramline::test::ScratchFolderTest;

TEST_F(ConvertCommands, FormatsListEveryConverterAndNamesTheMissingOnes) {
    const auto r = runCli({"formats"});
    EXPECT_EQ(r.code, 0);
    EXPECT_NE(r.out.find("Import Raw Data\tsdr\tSokkia/SDR\tSDR Raw File to Import\tsdr;raw\n"),
              std::string::npos);
    EXPECT_NE(r.out.find("\tquillan\tQuillan Archive\tQuillan Archive File to Open\tsc5\tnot "
                         "available yet\n"),
              std::string::npos);
    EXPECT_EQ(runCli({"import", "nosuch", "a", "-o", at("b")}).code, 2);
    const auto quillan = runCli({"import", "quillan", "a", "-o", at("b")});
    EXPECT_EQ(quillan.code, 1);
    EXPECT_EQ(quillan.err, "Error: Quillan Archive is not available yet\n");
}

TEST_F(ConvertCommands, SdrImportEndsWithItsSummaryAndFillsTheCoordinateFile) {
    if (!std::filesystem::exists(kSamples))
        GTEST_SKIP() << "field samples not found at " << kSamples;
    const auto r = runCli({"import", "sdr", (kSamples / "sdr/sokkia_sdr33_polar.tops").string(),
                           "-o", at("job.rw5"), "--crd", at("job.crd")});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "SOKKIA File conversion complete\n");
    EXPECT_EQ(r.out, "Read 77 records: 36 observations, 34 points stored, 1 lines skipped "
                     "(1 ignored record type)\n");
    EXPECT_TRUE(slurp(dir / "job.rw5").starts_with("JB,NMCOLOSSEO5/11,DT05-Nov-20,TM08:00\n"));
    const auto list = runCli({"crd", "list", at("job.crd")});
    EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 34);

    // Backsight readings as notes: the azimuth sideshot is left out.
    const auto notes = runCli({"import", "sdr", (kSamples / "sdr/sokkia_sdr33_polar.tops").string(),
                               "-o", at("notes.rw5"), "--backsight", "notes"});
    EXPECT_NE(notes.out.find("Read 77 records: 34 observations"), std::string::npos) << notes.out;
}

TEST_F(ConvertCommands, ImportOfBadInputFailsAndKeepsEveryFileWhole) {
    const std::string header = "00NMSDR33 V04-04.02     05-Nov-20 08:00 113111\r\n";
    const std::string point = "08KIP1              1.0             2.0             3.0\r\n";
    spit(dir / "garbage.sdr", std::string("\x00\x01\xfe\xff\x7f binary", 12));
    spit(dir / "good.sdr", header + point);
    spit(dir / "old.rw5", "JB,NMold,DT,TM\n");
    ASSERT_EQ(runCli({"crd", "put", at("old.crd"), "OLD", "1", "2", "3"}).code, 0);
    const std::string oldCrd = slurp(dir / "old.crd");

    struct Case {
        std::string source, output, crd, message;
    };
    const Case cases[] = {
        {at("missing.sdr"), at("old.rw5"), at("old.crd"), "Error: unable to read raw file\n"},
        {at("."), at("old.rw5"), at("old.crd"), "Error: unable to read raw file\n"},
        {at("garbage.sdr"), at("old.rw5"), at("old.crd"), "Error: not a Sokkia SDR file\n"},
        {at("good.sdr"), at("no/such/folder/x.rw5"), at("old.crd"),
         "Error: unable to write rw5 file\n"},
        {at("good.sdr"), at("no/such/folder/x.rw5"), at("new.crd"),
         "Error: unable to write rw5 file\n"},
    };
    for (const auto &c : cases) {
        const auto r = runCli({"import", "sdr", c.source, "-o", c.output, "--crd", c.crd});
        EXPECT_EQ(r.code, 1) << c.source;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_EQ(slurp(dir / "old.rw5"), "JB,NMold,DT,TM\n");
        EXPECT_EQ(slurp(dir / "old.crd"), oldCrd);
        EXPECT_FALSE(std::filesystem::exists(dir / "new.crd"));
    }

    // A read-only coordinate file is refused before anything is written.
    std::filesystem::permissions(dir / "old.crd", std::filesystem::perms::owner_read |
                                                      std::filesystem::perms::group_read |
                                                      std::filesystem::perms::others_read);
    std::filesystem::permissions(dir, std::filesystem::perms::all);
    EXPECT_TRUE(runUnprivileged([&] {
        const auto r =
            runCli({"import", "sdr", at("good.sdr"), "-o", at("x.rw5"), "--crd", at("old.crd")});
        return r.code == 1 &&
               r.err.find("Error: unable to open coordinate file " + at("old.crd")) !=
                   std::string::npos &&
               !std::filesystem::exists(dir / "x.rw5");
    }));
    EXPECT_EQ(slurp(dir / "old.crd"), oldCrd);
}

TEST_F(ConvertCommands, ImportTakesAnyLineEndAndTruncatedOrLongLines) {
    const std::string header = "00NMSDR33 V04-04.02     05-Nov-20 08:00 113111";
    const std::string point = "08KIP1              1.0             2.0             3.0";
    struct Case {
        const char *name;
        std::string bytes;
        const char *summary;
    };
    const Case cases[] = {
        {"cr only", header + "\r" + point + "\r", "Read 2 records: 0 observations, 1 points"},
        {"mixed", header + "\r\n" + point + "\n13NMx\r",
         "Read 3 records: 0 observations, 1 points"},
        {"truncated", header + "\n" + point.substr(0, 30),
         "Read 2 records: 0 observations, 1 points"},
        // 300 bytes: a note of 254 bytes, then the rest as a line of its own.
        {"long", header + "\n13NM" + std::string(296, 'n') + "\n",
         "Read 2 records: 0 observations, 0 points stored, 1 lines skipped (1 not a record)"},
    };
    for (const auto &c : cases) {
        spit(dir / "in.sdr", c.bytes);
        std::filesystem::remove(dir / "c.crd");
        const auto r =
            runCli({"import", "sdr", at("in.sdr"), "-o", at("out.rw5"), "--crd", at("c.crd")});
        EXPECT_EQ(r.code, 0) << c.name << r.err;
        EXPECT_TRUE(r.out.starts_with(c.summary)) << c.name << ": " << r.out;
    }
}

TEST_F(ConvertCommands, MissingHeaderNeedsTheFormatOption) {
    spit(dir / "in.sdr", "08KI1000            100.0           200.0           5.0\n");
    const auto asked = runCli({"import", "sdr", at("in.sdr"), "-o", at("out.rw5")});
    EXPECT_EQ(asked.code, 1);
    EXPECT_NE(asked.err.find("--format sdr33|sdr2x"), std::string::npos) << asked.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "out.rw5"));
    const auto answered =
        runCli({"import", "sdr", at("in.sdr"), "-o", at("out.rw5"), "--format", "sdr33"});
    EXPECT_EQ(answered.code, 0) << answered.err;
    EXPECT_NE(slurp(dir / "out.rw5").find("SP,PN1000,N 100.0000,E 200.0000,EL5.0000,--\n"),
              std::string::npos);
}

TEST_F(ConvertCommands, SdrExportWritesAtomicallyAndSaysSo) {
    spit(dir / "job.rw5", "JB,NMJOB,DT,TM\nMO,AD0,UN1,SF1.00000000,EC0,EO0,AU0\n"
                          "SP,PN1,N 10.0000,E 20.0000,EL3.0000,--CP\n");
    spit(dir / "old.sdr", "old");
    const auto r = runCli({"export", "sdr", at("job.rw5"), "-o", at("out.sdr")});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "Done.\n");
    EXPECT_EQ(r.out, "Wrote 1 records, 0 lines skipped\n");
    EXPECT_NE(slurp(dir / "out.sdr")
                  .find("08KI               110.0000         20.0000         "
                        "3.0000          CP              \n"),
              std::string::npos);

    const auto missing = runCli({"export", "sdr", at("none.rw5"), "-o", at("old.sdr")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err, "Error: unable to read raw file\n" + at("none.rw5") +
                               ": No such file or directory\n");
    const auto unwritable =
        runCli({"export", "sdr", at("job.rw5"), "-o", at("no/such/folder/out.sdr")});
    EXPECT_EQ(unwritable.code, 1);
    EXPECT_EQ(unwritable.err, "Error: failed to write Sokkia file\n" +
                                  at("no/such/folder/out.sdr") + ": No such file or directory\n");
    EXPECT_EQ(slurp(dir / "old.sdr"), "old");
}

TEST_F(ConvertCommands, TextPointsInAndOut) {
    spit(dir / "pts.csv", "Pt,North,East,Elev,Desc\n1,100,200,10,IP\n2,,300,20,\nA3,1,2,3,x\n");
    auto r = runCli({"points", "import", "text", at("pts.csv"), "--crd", at("num.crd")});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.err, "Read in 3 points.\n");
    EXPECT_EQ(r.out, "Read 4 lines: 3 points stored, 1 lines without a point\n");

    r = runCli({"points", "export", "text", at("num.crd"), "-o", at("out.txt"), "--order", "ENZD",
                "--delimiter", "space", "--decimals", "1", "--range", "1-2"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(slurp(dir / "out.txt"), "200.0 100.0 10.0 IP\n300.0 0.0 20.0 \n");
    EXPECT_EQ(r.err, "File " + at("out.txt") + " successfully written.\n");

    r = runCli(
        {"points", "import", "text", at("pts.csv"), "--crd", at("x.crd"), "--order", "PNEZ"});
    EXPECT_EQ(r.code, 2);
    EXPECT_EQ(r.err, "Invalid Coordinate Order - no delimiter between identifiers\n");
    r = runCli({"points", "import", "text", at("none.csv"), "--crd", at("x.crd")});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "Error: unable to read file\n");
}

TEST_F(ConvertCommands, GeodimeterInAndOutAndJxlWithProgressLines) {
    if (!std::filesystem::exists(kSamples))
        GTEST_SKIP() << "field samples not found at " << kSamples;
    spit(dir / "a.obs", "2=S\n5=A\n4=12.5\n61=OAK\n7=10\n8=90\n9=5\n37=100\n38=200\n39=3\n");
    const auto imported = runCli({"import", "geodimeter", at("a.obs"), "-o", at("a.rw5"), "--crd",
                                  at("a.crd"), "--strip-decimal", "--info-codes"});
    EXPECT_EQ(imported.code, 0) << imported.err;
    EXPECT_EQ(imported.out, "Read 10 records: 1 observations, 1 points stored, 0 lines skipped\n");
    EXPECT_NE(slurp(dir / "a.rw5").find("SS,OPS,FPA,AR10.0000,ZE90.0000,SD5.0000,--125 OAK\n"),
              std::string::npos);

    const auto exported =
        runCli({"points", "export", "geodimeter", at("a.crd"), "-o", at("p.obs")});
    EXPECT_EQ(exported.code, 0) << exported.err;
    EXPECT_EQ(slurp(dir / "p.obs"), "5=A\n4=125 OAK\n37=100.00000\n38=200.00000\n39=3.00000\n");
    const auto read = runCli({"points", "import", "geodimeter", at("p.obs"), "--crd", at("b.crd")});
    EXPECT_EQ(read.code, 0) << read.err;
    EXPECT_EQ(read.err, "Read in 1 points.\n");

    const auto jxl = runCli({"export", "jxl", at("a.rw5"), "-o", at("a.jxl"), "--ipc"});
    EXPECT_EQ(jxl.code, 0) << jxl.err;
    EXPECT_TRUE(jxl.out.starts_with("$IPC: SETLEN 5 SETTXT Create temporary Trimble JXL file...\n"
                                    "$IPC: SETPOS 0\n$IPC: SETPOS 5\n"))
        << jxl.out;
    EXPECT_NE(jxl.out.find("$IPC: RETCDE 0\n"), std::string::npos);
    EXPECT_TRUE(slurp(dir / "a.jxl").ends_with("</Environment>\n</JOBFile>\n"));
    const auto plain = runCli({"export", "jxl", at("a.rw5"), "-o", at("b.jxl")});
    EXPECT_EQ(plain.out.find("$IPC"), std::string::npos);

    const auto missing = runCli({"export", "jxl", at("none.rw5"), "-o", at("c.jxl"), "--ipc"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_NE(missing.out.find("$IPC: RETCDE 1\n"), std::string::npos);
    EXPECT_NE((missing.out + missing.err).find("Error: cannot open RW5 file."), std::string::npos)
        << "the export's own message, not the frame's: " << missing.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "c.jxl"));
}

} // namespace
