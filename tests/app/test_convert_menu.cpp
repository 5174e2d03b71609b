// The converters' menu entries run the real commands: the registry's
// dialog titles, the converted job in the raw grid, the points in the
// coordinate grid, and the written files.
#include "app/command_ids.h"
#include "app/coordinate_grid_model.h"
#include "app/raw_grid_model.h"
#include "app_test_support.h"

using namespace tramline;
using namespace tramline::app;
using tramline::test::slurp;

namespace {

class ConvertMenuTest : public tramline::test::ShellTest {};

TEST_F(ConvertMenuTest, SdrImportAndExportThroughTheMenus) {
    const auto sample = std::filesystem::path(TRAMLINE_SAMPLES_DIR) / "sdr/sokkia_sdr33_polar.tops";
    if (!std::filesystem::exists(sample))
        GTEST_SKIP() << "field samples not found at " << sample;
    auto d = start();
    shell.files = {sample.string()};
    shell.reply("Sideshots");
    d->dispatch(cmd::ImportRawSokkia);
    EXPECT_EQ(shell.asked.at(0), "SDR Raw File to Import (sdr;raw)");
    EXPECT_NE(
        std::find(shell.messages.begin(), shell.messages.end(), "SOKKIA File conversion complete"),
        shell.messages.end());
    EXPECT_NE(shell.messages.back().find("Read 77 records: 36 observations, 34 points stored"),
              std::string::npos)
        << shell.messages.back();
    EXPECT_GT(d->rawModel()->rowCount(), 70);
    EXPECT_EQ(d->coordinateModel()->rowCount(), 34);
    EXPECT_TRUE(d->rawDocument().modified()); // the user saves it under a name

    const auto out = dir / "out.sdr";
    shell.files = {out.string()};
    shell.reply("SDR-33");
    d->dispatch(cmd::ExportRawSokkia);
    EXPECT_EQ(shell.asked.back(), "SDR Raw File to Write (sdr;raw, save)");
    EXPECT_EQ(shell.messages.back(), "Done.");
    EXPECT_TRUE(slurp(out).starts_with("00NMSDR33     V04-01.00 Jan-18-80 20:34 111111\n"));
}

TEST_F(ConvertMenuTest, TextPointsInAndOutOfTheWorkingFile) {
    auto d = start();
    tramline::test::spit(dir / "in.txt", "1 100 200 10 IP\n2 110 210 11 CP\n");
    shell.files = {(dir / "in.txt").string()};
    shell.forms = {"P N E Z D=>OK"};
    d->dispatch(cmd::ImportPointsText);
    EXPECT_EQ(shell.asked.at(0), "Text/ASCII File To Import (txt;asc;dat;csv;xyz;*)");
    EXPECT_EQ(shell.messages.back(), "Read in 2 points.");
    EXPECT_EQ(d->coordinateModel()->rowCount(), 2);

    const auto out = dir / "out.txt";
    shell.files = {out.string()};
    shell.forms = {"Pt# East North Elev Desc|Space|2|2-2=>OK"};
    d->dispatch(cmd::ExportPointsText);
    EXPECT_EQ(shell.asked.back(), "Point Text File to Write (txt;asc;dat;csv;xyz;*, save)");
    EXPECT_EQ(slurp(out), "2 210.00 110.00 11.00 CP\n");
    EXPECT_EQ(shell.messages.back(), "File " + out.string() + " successfully written.");
}

TEST_F(ConvertMenuTest, LeicaEntriesRunTheGsiConverters) {
    const auto sample = std::filesystem::path(TRAMLINE_SAMPLES_DIR) / "gsi/RILIEVO.gsi";
    if (!std::filesystem::exists(sample))
        GTEST_SKIP() << "field samples not found at " << sample;
    auto d = start();
    shell.files = {sample.string()};
    shell.reply("BFFB|WildSoft");
    d->dispatch(cmd::ImportRawLeica);
    EXPECT_EQ(shell.asked.at(0), "Leica Raw File to Import (gsi;raw;gre)");
    EXPECT_NE(shell.messages.back().find("Read 23 records: 23 observations"), std::string::npos)
        << shell.messages.back();
    EXPECT_GT(d->rawModel()->rowCount(), 23);

    const auto raw = dir / "out.gsi";
    shell.files = {raw.string()};
    shell.reply("Gon|Meters");
    d->dispatch(cmd::ExportRawLeica);
    EXPECT_EQ(shell.asked.back(), "Leica Raw File to Write (gsi, save)");
    EXPECT_EQ(shell.messages.back(), "Conversion done");
    // 98.853 gons, to the second the raw grid keeps.
    EXPECT_NE(slurp(raw).find(" 22...2+000000000988530"), std::string::npos);
}

TEST_F(ConvertMenuTest, GeodimeterAndJxlThroughTheMenus) {
    const auto samples = std::filesystem::path(TRAMLINE_SAMPLES_DIR) / "geodimeter";
    if (!std::filesystem::exists(samples))
        GTEST_SKIP() << "field samples not found at " << samples;
    auto d = start();
    const auto ini = d->folders().program / "readgeod.ini";
    std::filesystem::remove(ini);
    shell.files = {(samples / "ullo.job").string()};
    shell.reply("Yes|No");
    d->dispatch(cmd::ImportRawGeodimeter);
    EXPECT_EQ(shell.asked.at(0), "Geodimeter Raw File to Import (obs;raw)");
    EXPECT_EQ(slurp(ini), "is_strip=1\nis_info=0\n"); // the answers are kept
    std::filesystem::remove(ini);
    EXPECT_NE(std::find(shell.messages.begin(), shell.messages.end(), "Done."),
              shell.messages.end());
    EXPECT_NE(shell.messages.back().find("50 observations"), std::string::npos)
        << shell.messages.back();
    EXPECT_EQ(d->rawModel()->rowCount(), 60); // job, mode, 8 backsights, 50 shots

    const auto jxl = dir / "out.jxl";
    shell.files = {jxl.string()};
    d->dispatch(cmd::ExportRawTrimbleJxl);
    EXPECT_EQ(shell.asked.back(), "Trimble JXL File to Export (jxl, save)");
    EXPECT_EQ(shell.messages.back(), "Conversion Complete");
    EXPECT_TRUE(slurp(jxl).starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<JOBFile"));

    shell.files = {(samples / "ullo.are").string()};
    d->dispatch(cmd::ImportPointsGeodimeter);
    EXPECT_EQ(shell.asked.back(), "Select Geodimeter File (obs;raw)");
    EXPECT_EQ(shell.messages.back(), "Read in 4 points.");
    EXPECT_EQ(d->coordinateModel()->rowCount(), 4);

    const auto obs = dir / "out.obs";
    shell.files = {obs.string()};
    d->dispatch(cmd::ExportPointsGeodimeter);
    EXPECT_EQ(shell.asked.back(), "Geodimeter File To Write (obs;raw, save)");
    EXPECT_EQ(shell.messages.back(), "Done");
    EXPECT_NE(slurp(obs).find("5=GP1\n4=\n37=12273.89000\n38=-23779.46000\n39=0.00000\n"),
              std::string::npos);
}

// The point entries of both menus take one path: the registry's converter
// through the shared point flows, with the converter's own messages.
TEST_F(ConvertMenuTest, LeicaPointsOutAndInThroughTheSharedPointFlow) {
    auto d = start();
    tramline::test::spit(dir / "in.txt", "1 100 200 10 IP\n");
    shell.files = {(dir / "in.txt").string()};
    shell.forms = {"P N E Z D=>OK"};
    d->dispatch(cmd::ImportPointsText);
    const auto out = dir / "out.gsi";
    shell.files = {out.string()};
    shell.reply("Meters|GSI-16");
    d->dispatch(cmd::ExportPointsLeica);
    EXPECT_EQ(shell.asked.back(), "Leica File To Write (gsi;raw, save)");
    EXPECT_EQ(shell.messages.back(), "Done");
    EXPECT_EQ(slurp(out),
              "*110001+0000000000000001 71....+00000000000000IP 81..10+0000000000200000 "
              "82..10+0000000000100000 83..10+0000000000010000 \n");

    // Back in as point 7 through Import Point Data > Leica, which asks the
    // coding before the file.
    std::string back = slurp(out);
    back.replace(back.find("+0000000000000001 "), 18, "+0000000000000007 ");
    tramline::test::spit(dir / "back.gsi", back);
    shell.files = {(dir / "back.gsi").string()};
    shell.reply("WildSoft");
    d->dispatch(cmd::ImportPointsLeica);
    EXPECT_EQ(shell.questions.back(), "Leica Options");
    EXPECT_EQ(shell.asked.back(), "Leica Wildsoft File (gsi;raw)");
    EXPECT_EQ(shell.messages.back(), "Done");
    EXPECT_EQ(d->coordinateModel()->rowCount(), 2);
    const size_t asked = shell.asked.size();
    shell.reply("<cancel>");
    d->dispatch(cmd::ImportPointsLeica);
    EXPECT_EQ(shell.asked.size(), asked); // no file asked for

    std::filesystem::create_directories(dir / "folder.gsi");
    shell.files = {(dir / "folder.gsi").string()};
    shell.reply("Meters|GSI-16");
    d->dispatch(cmd::ExportPointsLeica);
    EXPECT_EQ(shell.messages.back(), "Error: unable to write file");
}

} // namespace
