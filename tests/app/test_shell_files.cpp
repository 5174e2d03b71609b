// The shell's parts that need no window: the settings file, the program
// folder, the command line, the language choice and the menu table.
#include "../support/test_support.h"
#include "app/command_line.h"
#include "app/display_commands.h"
#include "app/language.h"
#include "app/menu_table.h"
#include "app/shell_folders.h"
#include "app/shell_settings.h"
#include "transfer/port_settings.h"

#include <gtest/gtest.h>

using namespace tramline;
using namespace tramline::app;
namespace fs = std::filesystem;

namespace {

using SettingsFileTest = tramline::test::ScratchFolderTest;

TEST(ShellSettings, Lines) {
    constexpr auto Dms = AngleUnit::DegreesMinutesSeconds;
    constexpr auto Gons = AngleUnit::Gons;
    constexpr auto NE = raw::CoordinateOrder::NorthingEasting;
    constexpr auto EN = raw::CoordinateOrder::EastingNorthing;
    constexpr auto English = LanguageMode::English;
    constexpr auto System = LanguageMode::System;
    struct Case {
        const char *line;
        AngleUnit angle;
        raw::CoordinateOrder order;
        LanguageMode language;
        const char *tmpdir;
    };
    const Case cases[] = {
        {"ne_order=1", Dms, EN, English, ""},
        {"ang_display_mode=0", Gons, NE, English, ""},
        {"ang_display_mode=1", Dms, NE, English, ""},
        {"ang_display_mode=7", Dms, NE, English, ""}, // anything but 0 is ddd.mmss
        {"lang_mode=1", Dms, NE, System, ""},
        {"lang_mode=2", Dms, NE, English, ""},
        {"ne_order=2", Dms, NE, English, ""},
        {"tmpdir=/jobs/tmp/", Dms, NE, English, "/jobs/tmp/"},
        {"tmpdir=/a=b/", Dms, NE, English, "/a=b/"}, // split at the first "="
        {"ne_order=", Dms, NE, English, ""},         // no value
        {"ne_order", Dms, NE, English, ""},          // no "="
        {"NE_ORDER=1", Dms, NE, English, ""},        // keys compare exactly
        {" ne_order=1", Dms, NE, English, ""},
        {"colour=blue", Dms, NE, English, ""},        // unknown key
        {"ang_display_mode=x", Dms, NE, English, ""}, // no number: left alone
        {"ne_order= 1", Dms, EN, English, ""},        // decimal as atoi reads it
        {"lang_mode=1junk", Dms, NE, System, ""},
        {"ang_display_mode=99999999999999", Dms, NE, English, ""}, // out of range
    };
    for (const auto &c : cases) {
        ShellSettings s;
        applySettingsLine(c.line, s);
        EXPECT_EQ(s.angleDisplay, c.angle) << c.line;
        EXPECT_EQ(s.coordinateOrder, c.order) << c.line;
        EXPECT_EQ(s.language, c.language) << c.line;
        EXPECT_EQ(s.tmpdir, c.tmpdir) << c.line;
    }
    // A value that does not parse keeps what an earlier line set.
    ShellSettings s;
    applySettingsLine("ang_display_mode=0", s);
    applySettingsLine("ang_display_mode=x", s);
    EXPECT_EQ(s.angleDisplay, Gons);
}

// The file keeps its integers: 1 ddd.mmss and 0 gons, the other way round
// from the order of the angle units.
TEST_F(SettingsFileTest, WrittenInItsOrderAndReadBack) {
    const struct {
        AngleUnit angle;
        raw::CoordinateOrder order;
        LanguageMode language;
        const char *text;
    } cases[] = {
        {AngleUnit::Gons, raw::CoordinateOrder::EastingNorthing, LanguageMode::System,
         "tmpdir=/jobs/tmp/\nang_display_mode=0\nne_order=1\nlang_mode=1\n"},
        {AngleUnit::DegreesMinutesSeconds, raw::CoordinateOrder::NorthingEasting,
         LanguageMode::English, "tmpdir=/jobs/tmp/\nang_display_mode=1\nne_order=0\nlang_mode=0\n"},
    };
    const auto path = dir / "tramline.ini";
    for (const auto &c : cases) {
        ShellSettings s;
        s.tmpdir = "/jobs/tmp/";
        s.angleDisplay = c.angle;
        s.coordinateOrder = c.order;
        s.language = c.language;
        ASSERT_TRUE(writeSettingsFile(path, s));
        EXPECT_EQ(tramline::test::slurp(path), c.text);
        ShellSettings back;
        back.angleDisplay =
            c.angle == AngleUnit::Gons ? AngleUnit::DegreesMinutesSeconds : AngleUnit::Gons;
        ASSERT_TRUE(readSettingsFile(path, back));
        EXPECT_EQ(back.tmpdir, s.tmpdir);
        EXPECT_EQ(back.angleDisplay, c.angle);
        EXPECT_EQ(back.coordinateOrder, c.order);
        EXPECT_EQ(back.language, c.language);
    }
    EXPECT_FALSE(writeSettingsFile(dir / "missing" / "tramline.ini", ShellSettings{}));
}

// A line longer than the 222-character buffer is read in pieces, each piece
// a line: a key at the start of a later piece counts.
TEST_F(SettingsFileTest, OverlongLinesAndGarbage) {
    std::string garbage(5000, 'x');
    std::string binary;
    for (int i = 0; i < 4096; ++i)
        binary.push_back(static_cast<char>((i * 37) & 0xff));
    const std::string piece(221, 'y');
    const auto path = write("tramline.ini",
                            garbage + "\n" + binary + "\nne_order=1\r\n" + piece + "lang_mode=1\n" +
                                "ang_display_mode=" + std::string(4000, '0') + "\n");
    ShellSettings s;
    ASSERT_TRUE(readSettingsFile(path, s));
    EXPECT_EQ(s.coordinateOrder, raw::CoordinateOrder::EastingNorthing);
    EXPECT_EQ(s.language, LanguageMode::System);
    EXPECT_EQ(s.angleDisplay, AngleUnit::Gons); // the first piece: 204 zeros
    ShellSettings untouched;
    EXPECT_FALSE(readSettingsFile(dir / "none.ini", untouched));
    EXPECT_EQ(untouched.angleDisplay, AngleUnit::DegreesMinutesSeconds);
}

// The shell and the port dialog write the same file, each keeping the
// other's lines, and lines of neither (a newer version's) whole, however
// long: the reader's 221-character pieces are for reading only.
TEST_F(SettingsFileTest, ShellAndPortKeepEachOthersLines) {
    const std::string foreign = "plot_colours=" + std::string(300, 'c');
    const auto path = write("tramline.ini", "ne_order=1\r\ncom_port=3\n\n" + foreign +
                                                "\nno key here\ncom_baud=2\n");
    ShellSettings shell;
    ASSERT_TRUE(readSettingsFile(path, shell));
    ASSERT_TRUE(writeSettingsFile(path, shell));
    EXPECT_EQ(tramline::test::slurp(path),
              "tmpdir=\nang_display_mode=1\nne_order=1\nlang_mode=0\ncom_port=3\n" + foreign +
                  "\nno key here\ncom_baud=2\n");
    transfer::PortSettings port;
    ASSERT_TRUE(transfer::readPortSettings(path, port));
    EXPECT_EQ(port.port, 3);
    port.baud = 5;
    ASSERT_TRUE(transfer::savePortSettings(path, port));
    EXPECT_EQ(tramline::test::slurp(path),
              "tmpdir=\nang_display_mode=1\nne_order=1\nlang_mode=0\n" + foreign +
                  "\nno key here\ncom_port=3\ncom_parity=1\ncom_baud=5\n");
}

TEST_F(SettingsFileTest, ProgramFolder) {
    fs::create_directories(dir / "bin");
    const std::string bin = (dir / "bin").string();
    struct Case {
        std::string module, exe, folder;
    };
    const Case cases[] = {
        {"/opt/halvren/tramline", "tramline", "/opt/halvren/"},
        // The name counts only as the last part of the path.
        {"/home/tramline/build/tramline", "tramline", "/home/tramline/build/"},
        // Renamed: the executable's own folder.
        {"/opt/halvren/tramline-old", "tramline", "/opt/halvren/"},
        {"/opt/halvren/mytramline", "tramline", "/opt/halvren/"},
        // A folder gets its separator.
        {bin, "tramline", bin + "/"},
        {bin + "/", "tramline", bin + "/"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(programFolder(c.module, c.exe), c.folder) << c.module;
}

TEST(ShellFolders, UnderTheUsersFolders) {
    const ShellFolders f = shellFolders("/opt/h/tramline", "/home/u/.config", "/home/u/Documents");
    EXPECT_EQ(f.program, "/opt/h/");
    EXPECT_EQ(f.settings, "/home/u/.config/Halvren Software/Halvren Tramline/");
    EXPECT_EQ(f.working, "/home/u/Documents/Halvren Tramline/");
}

TEST(CommandLine, Forms) {
    struct Case {
        const char *line, *raw, *crd;
    };
    const Case cases[] = {
        {"", "", ""},
        {"job.rw5", "job.rw5", ""},
        {"JOB.RW5", "JOB.RW5", ""},
        {"\"/home/u/my jobs/job.rw5\"", "/home/u/my jobs/job.rw5", ""},
        {"job.crd", "", "job.crd"},
        {"job.rw5 job.crd", "job.rw5", "job.crd"},
        {"\"job.rw5 job.crd\"", "job.rw5", "job.crd"},
        {"\"a b.rw5\" \"c d.crd\"", "a b.rw5", "c d.crd"},
        {"job.crd job.rw5", "job.rw5", "job.crd"},
        {"site.crdb", "", "site.crdb"},
        {"site.cgc", "", "site.cgc"},
        {"site.mdb", "", "site.mdb"},
        {"site.zak", "", "site.zak"},
        {"job.rw5x", "", ""},        // no extension at the end of a name
        {"job.rw5 ", "job.rw5", ""}, // one character after: no further name
        {"notes.txt", "", ""},
        {"a.rw5 b.rw5", "a.rw5", ""}, // one raw file only
    };
    for (const auto &c : cases) {
        const CommandLineFiles files = parseCommandLine(c.line);
        EXPECT_EQ(files.rawFile, c.raw) << c.line;
        EXPECT_EQ(files.coordinateFile, c.crd) << c.line;
    }
    EXPECT_EQ(joinArguments({"/home/u/my jobs/job.rw5", "x.crd"}), "/home/u/my jobs/job.rw5 x.crd");
}

TEST(Language, Choice) {
    struct Case {
        const char *requested;
        std::optional<std::string> language, lang;
        const char *systemLanguage, *systemCountry;
        const char *full, *shortCode;
    };
    const Case cases[] = {
        {"win", std::nullopt, "de_DE", "en", "US", "de_DE", "de"},
        {"win", "fr_CA", "de_DE", "en", "US", "fr_CA", "fr"}, // LANGUAGE outranks LANG
        {"win", "0", "de_DE", "en", "US", "de_DE", "de"},     // a numeric LANGUAGE is ignored
        {"win", "0", "1", "de", "AT", "de_AT", "de"},         // both numeric: the system locale
        {"win", std::nullopt, "en_US", "de", "DE", "en", "en"},
        {"win", std::nullopt, "de_DE.UTF-8", "en", "US", "de_DE", "de"},
        {"win", "de:en", std::nullopt, "en", "US", "de", "de"},
        {"win", std::nullopt, "C.UTF-8", "de", "DE", "en", "en"},
        {"win", std::nullopt, std::nullopt, "en", "US", "en",
         "en"}, // English (United States): nothing to load
        {"win", std::nullopt, std::nullopt, "de", "DE", "de", "de"}, // language and country alike
        {"win", std::nullopt, std::nullopt, "de", "CH", "de_CH", "de"},
        {"win", std::nullopt, std::nullopt, "en", "GB", "en", "en"},
        {"en", std::nullopt, "de_DE", "de", "DE", "en", "en"},
        {"EN", std::nullopt, "de_DE", "de", "DE", "en", "en"},
        {"de", std::nullopt, std::nullopt, "de", "DE", "de",
         "de"}, // accepted: the system's language
        {"fr", std::nullopt, std::nullopt, "de", "DE", "en", "en"}, // not the system's: English
    };
    for (const auto &c : cases) {
        LanguageEnvironment e;
        e.language = c.language;
        e.lang = c.lang;
        e.systemLanguage = c.systemLanguage;
        e.systemCountry = c.systemCountry;
        const LanguageCode code = chooseLanguage(c.requested, e);
        EXPECT_EQ(code.full, c.full) << c.requested << " " << c.lang.value_or("-");
        EXPECT_EQ(code.shortCode, c.shortCode) << c.requested << " " << c.lang.value_or("-");
    }
}

TEST_F(SettingsFileTest, StartupFileSuppliesTheCode) {
    LanguageEnvironment e;
    e.lang = "de_DE";
    e.startupFile =
        write("morvstart.ini", "[other]\nlang_code=fr\n[morvstart]\n lang_code = de \n");
    EXPECT_EQ(startupLanguageCode(e.startupFile), "de");
    EXPECT_EQ(chooseLanguage("", e).full, "de_DE");
    write("morvstart.ini", "[morvstart]\nlang_code=en\n");
    EXPECT_EQ(chooseLanguage("", e).full, "en");
    EXPECT_EQ(startupLanguageCode(dir / "missing.ini"), "en");
}

TEST_F(SettingsFileTest, CatalogueSearchAndWarnings) {
    LanguageCode code;
    code.full = "xx_YY";
    code.shortCode = "xx";
    const auto warnings = startTranslation(dir / "LANG", code);
    ASSERT_EQ(warnings.size(), 1u);
    // The path tried last, the short code's.
    EXPECT_EQ(warnings[0],
              "\nWarning: Missing translation file " + cataloguePath(dir / "LANG", "xx").string());
    EXPECT_TRUE(startTranslation(dir / "LANG", LanguageCode{}).empty());
}

TEST(MenuTable, CheckGroupsActAsRadioItems) {
    MenuCheckTable table;
    EXPECT_EQ(table.entries().size(), 10u);
    table.choose(cmd::ZenithAngle);
    table.choose(cmd::SlopeDistance);
    table.choose(cmd::AnglesDms);
    table.choose(cmd::NorthingEasting);
    table.choose(cmd::ElevationDifference);
    EXPECT_TRUE(table.checked(cmd::ElevationDifference));
    EXPECT_FALSE(table.checked(cmd::ZenithAngle));
    EXPECT_TRUE(table.checked(cmd::SlopeDistance)); // other groups keep theirs
    EXPECT_TRUE(table.checked(cmd::AnglesDms));
    table.choose(cmd::EastingNorthing);
    EXPECT_FALSE(table.checked(cmd::NorthingEasting));
    EXPECT_TRUE(table.checked(cmd::EastingNorthing));
    table.choose(cmd::OpenRaw); // not a display command
    EXPECT_TRUE(table.checked(cmd::ElevationDifference));
    EXPECT_FALSE(table.checked(cmd::OpenRaw));
}

} // namespace

// Each Display command chooses its own mode, and the marks follow the modes:
// a command's choice, once applied, checks that same command.
TEST(DisplayCommands, ChoiceAndCheckMarkAgree) {
    const int ids[] = {cmd::VerticalAngle,  cmd::ZenithAngle,   cmd::ElevationDifference,
                       cmd::VerticalNone,   cmd::SlopeDistance, cmd::HorizontalDistance,
                       cmd::AnglesDms,      cmd::AnglesGons,    cmd::NorthingEasting,
                       cmd::EastingNorthing};
    for (int id : ids) {
        const auto choice = displayChoice(id);
        ASSERT_TRUE(choice) << id;
        raw::DisplayModes modes;
        modes.vertical = choice->vertical.value_or(raw::VerticalMode::ElevationDifference);
        modes.distance = choice->distance.value_or(raw::DistanceMode::Horizontal);
        modes.angle = choice->angle.value_or(AngleUnit::Gons);
        modes.order = choice->order.value_or(raw::CoordinateOrder::EastingNorthing);
        MenuCheckTable checks;
        checkDisplayModes(modes, checks);
        EXPECT_TRUE(checks.checked(id)) << id;
        int checked = 0;
        for (const auto &[entry, on] : checks.entries())
            checked += on ? 1 : 0;
        EXPECT_EQ(checked, 4) << id; // one in each group
    }
    EXPECT_FALSE(displayChoice(cmd::OpenRaw));
    // A corrupt vertical mode is marked as zenith.
    raw::DisplayModes corrupt;
    corrupt.vertical = static_cast<raw::VerticalMode>(0);
    MenuCheckTable checks;
    checkDisplayModes(corrupt, checks);
    EXPECT_TRUE(checks.checked(cmd::ZenithAngle));
}
