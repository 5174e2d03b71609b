// The main window: start-up with its folders, settings and command line,
// the menu, resizing, the exit path and the language.
#include "app/coordinate_grid_model.h"
#include "app/raw_grid_model.h"
#include "app_test_support.h"
#include "base/translation.h"
#include "crd/coordinate_file.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTableView>

using namespace tramline;
using namespace tramline::app;
using tramline::test::slurp;
namespace fs = std::filesystem;

namespace {

class MainDialogTest : public tramline::test::ShellTest {
protected:
    // A coordinate file with two points and a note on the first.
    fs::path makeCoordinateFile(const std::string &name) {
        const fs::path path = dir / name;
        crd::CoordinateFile file;
        EXPECT_TRUE(file.open(path, crd::Create::Always));
        crd::CrdPoint p;
        p.set(5000.0, 6000.0, 100.0, "1", "IRON ROD");
        EXPECT_TRUE(file.writePoint(p));
        p.set(5100.0, 6100.0, 101.0, "2", "NAIL");
        EXPECT_TRUE(file.writePoint(p));
        EXPECT_TRUE(file.addNote("1", "found in good shape"));
        return path;
    }

    static std::vector<std::string> menuEntries(QMenu *menu, const std::string &path) {
        std::vector<std::string> entries;
        for (QAction *a : menu->actions()) {
            if (a->isSeparator())
                continue;
            const std::string here = path + " > " + a->text().toStdString();
            if (a->menu()) {
                const auto inner = menuEntries(a->menu(), here);
                entries.insert(entries.end(), inner.begin(), inner.end());
            } else {
                entries.push_back(std::to_string(a->property("commandId").toInt()) + " " + here);
            }
        }
        return entries;
    }

    // The settings file without the window's place, which the platform decides.
    static std::string withoutWindowPlace(std::string text) {
        const size_t at = text.find("\nwindow=");
        if (at != std::string::npos)
            text.erase(at + 1, text.find('\n', at + 1) - at);
        return text;
    }

    static std::string menuListing(CKELMADlg &dialog) {
        std::string text;
        for (QAction *top : dialog.menuBar()->actions())
            for (const auto &e : menuEntries(top->menu(), top->text().toStdString()))
                text += e + "\n";
        return text;
    }
};

TEST_F(MainDialogTest, StartsWithoutSettingsFile) {
    auto dialog = start();
    ASSERT_FALSE(dialog->startupFailed());
    EXPECT_TRUE(fs::is_directory(settingsFolder()));
    EXPECT_TRUE(fs::is_directory(workingFolder()));
    EXPECT_EQ(dialog->workingCoordinatePath(), settingsFolder() / "tramlinetmp.crd");
    EXPECT_TRUE(fs::exists(dialog->workingCoordinatePath()));
    EXPECT_TRUE(dialog->workingFile().isOpen());
    EXPECT_EQ(dialog->windowTitle(), "Halvren Tramline - [RW5: NONE] - [CRD: NONE]");
    EXPECT_EQ(dialog->rawGrid()->property("controlId").toInt(), 110);
    EXPECT_EQ(dialog->coordinateGrid()->property("controlId").toInt(), 111);
    EXPECT_EQ(dialog->folders().working, workingFolder().string() + "/");
    for (int id : {cmd::ZenithAngle, cmd::SlopeDistance, cmd::AnglesDms, cmd::NorthingEasting})
        EXPECT_TRUE(dialog->checkTable().checked(id)) << id;
    EXPECT_TRUE(dialog->actions(cmd::ZenithAngle).front()->isChecked());
    EXPECT_FALSE(dialog->actions(cmd::VerticalAngle).front()->isChecked());
    EXPECT_TRUE(shell.messages.empty());
    // The settings are written at exit, defaults and all.
    ASSERT_TRUE(dialog->exitProgram());
    EXPECT_FALSE(dialog->workingFile().isOpen());
    EXPECT_EQ(withoutWindowPlace(slurp(settingsFile())),
              "tmpdir=" + workingFolder().string() +
                  "/\nang_display_mode=1\nne_order=0\nlang_mode=0\n");
}

// An old working file from an earlier run is replaced by an empty one.
TEST_F(MainDialogTest, StartsWithSettingsFileAndAnOldWorkingFile) {
    fs::create_directories(settingsFolder());
    const fs::path tmpdir = dir / "jobs tmp";
    fs::create_directories(tmpdir);
    tramline::test::spit(settingsFile(), "colour=blue\ntmpdir=" + tmpdir.string() +
                                             "/\nang_display_mode=0\nne_order=1\nlang_mode=0\n");
    makeCoordinateFile("old.crd");
    fs::copy_file(dir / "old.crd", settingsFolder() / "tramlinetmp.crd");
    tramline::test::spit(settingsFolder() / "tramlinetmp.not", "stale");

    auto dialog = start();
    EXPECT_EQ(dialog->folders().working, tmpdir.string() + "/");
    EXPECT_EQ(dialog->coordinateModel()->rowCount(), 0);
    EXPECT_FALSE(fs::exists(settingsFolder() / "tramlinetmp.not"));
    EXPECT_EQ(dialog->rawDocument().modes().angle, AngleUnit::Gons);
    EXPECT_EQ(dialog->rawDocument().modes().order, raw::CoordinateOrder::EastingNorthing);
    for (int id : {cmd::AnglesGons, cmd::EastingNorthing})
        EXPECT_TRUE(dialog->checkTable().checked(id)) << id;
    EXPECT_EQ(dialog->coordinateModel()->headerData(1, Qt::Horizontal).toString(), "Easting");
    ASSERT_TRUE(dialog->exitProgram());
    EXPECT_EQ(withoutWindowPlace(slurp(settingsFile())),
              "tmpdir=" + tmpdir.string() +
                  "/\nang_display_mode=0\nne_order=1\nlang_mode=0\ncolour=blue\n");
}

TEST_F(MainDialogTest, GarbageSettingsLeaveTheDefaults) {
    fs::create_directories(settingsFolder());
    std::string garbage(5000, '=');
    for (int i = 0; i < 3000; ++i)
        garbage.push_back(static_cast<char>(i * 131));
    tramline::test::spit(settingsFile(), garbage + "\n" + std::string(5000, 'x') + "\n");
    auto dialog = start("\"" + example().string() + "\"");
    EXPECT_EQ(dialog->rawDocument().modes().angle, AngleUnit::DegreesMinutesSeconds);
    EXPECT_EQ(dialog->rawDocument().modes().order, raw::CoordinateOrder::NorthingEasting);
    EXPECT_EQ(dialog->folders().working, workingFolder().string() + "/");
    EXPECT_EQ(dialog->rawModel()->rowCount(), 42);
    EXPECT_TRUE(shell.messages.empty());
}

// The settings folder cannot be made (a file stands in its way): the
// working file goes to the working folder and the program runs on.
TEST_F(MainDialogTest, SettingsFolderThatCannotBeMade) {
    tramline::test::spit(dir / "appdata", "a file, not a folder");
    auto dialog = start();
    ASSERT_FALSE(dialog->startupFailed());
    EXPECT_EQ(dialog->workingCoordinatePath(), workingFolder() / "tramlinetmp.crd");
    EXPECT_TRUE(dialog->workingFile().isOpen());
    EXPECT_TRUE(dialog->exitProgram()); // the settings cannot be written; no matter
}

TEST_F(MainDialogTest, WorkingFileThatCannotBeMadeEndsTheProgram) {
    tramline::test::spit(dir / "appdata", "a file");
    tramline::test::spit(dir / "documents", "a file");
    auto dialog = start(example().string());
    EXPECT_TRUE(dialog->startupFailed());
    ASSERT_EQ(shell.messages.size(), 1u);
    EXPECT_EQ(shell.messages[0], "Error: failed to create " +
                                     (workingFolder() / "tramlinetmp.crd").string() +
                                     ".\nExiting.");
    EXPECT_EQ(dialog->rawModel()->rowCount(), 0); // the command line is not reached
}

TEST_F(MainDialogTest, CommandLineForms) {
    const fs::path crd = makeCoordinateFile("site one.crd");
    const std::string raw = example().string();
    struct Case {
        std::string line;
        int rawRows, points;
        std::string rawName, crdName;
    };
    const Case cases[] = {
        {"", 0, 0, "NONE", "NONE"},
        {raw, 42, 0, raw, "NONE"},
        {"\"" + raw + "\"", 42, 0, raw, "NONE"},
        {"\"" + crd.string() + "\"", 0, 2, "NONE", crd.string()},
        {"\"" + raw + " " + crd.string() + "\"", 42, 2, raw, crd.string()},
        {crd.string() + " " + raw, 42, 2, raw, crd.string()},
    };
    for (const auto &c : cases) {
        auto dialog = start(c.line);
        EXPECT_EQ(dialog->rawModel()->rowCount(), c.rawRows) << c.line;
        EXPECT_EQ(dialog->coordinateModel()->rowCount(), c.points) << c.line;
        EXPECT_EQ(dialog->windowTitle().toStdString(),
                  "Halvren Tramline - [RW5: " + c.rawName + "] - [CRD: " + c.crdName + "]")
            << c.line;
        EXPECT_TRUE(shell.messages.empty()) << c.line;
        dialog->exitProgram();
    }
    // The working copy carries the file's notes.
    auto dialog = start(crd.string());
    EXPECT_EQ(dialog->workingFile().notes("1"), std::vector<std::string>{"found in good shape"});
}

TEST_F(MainDialogTest, MissingAndUnreadableFilesOnTheCommandLine) {
    fs::create_directories(dir / "folder.rw5");
    struct Case {
        std::string line;
        std::string message;
    };
    const Case cases[] = {
        {(dir / "missing.rw5").string(), "Error: unable to read raw file"},
        {(dir / "folder.rw5").string(), "Error: unable to read raw file"},
        {(dir / "missing.crd").string(), "Error 21: Could not open file"},
        {(dir / "other.cgc").string(), "File type not supported"},
    };
    tramline::test::spit(dir / "other.cgc", "not ours");
    for (const auto &c : cases) {
        shell.messages.clear();
        auto dialog = start(c.line);
        ASSERT_FALSE(dialog->startupFailed());
        ASSERT_EQ(shell.messages.size(), 1u) << c.line;
        EXPECT_NE(shell.messages[0].find(c.message), std::string::npos) << shell.messages[0];
        EXPECT_EQ(dialog->windowTitle(), "Halvren Tramline - [RW5: NONE] - [CRD: NONE]");
        EXPECT_TRUE(dialog->workingFile().isOpen());
    }
}

TEST_F(MainDialogTest, MenuHoldsEveryCommandInOrder) {
    auto dialog = start();
    const std::string expected =
        "201 File > Open RW5 File\n"
        "200 File > New RW5 File\n"
        "202 File > Save RW5 File\n"
        "203 File > Save RW5 As\n"
        "32806 File > Open CRD File\n"
        "32807 File > New CRD File\n"
        "32809 File > Save CRD File\n"
        "32808 File > Save CRD As\n"
        "288 File > Settings\n"
        "206 File > Print > Raw Data\n"
        "57 File > Print > Coordinates\n"
        "32778 File > Print > Printer Settings\n"
        "207 File > Exit\n"
        "32815 Edit > Find in RW5 File\n"
        "32816 Edit > Find in CRD File\n"
        "32818 Edit > Replace in RW5 File\n"
        "32817 Edit > Replace in CRD File\n"
        "210 Edit > Cut\n"
        "211 Edit > Copy\n"
        "212 Edit > Paste\n"
        "40007 Edit > Delete Row\n"
        "109 Edit > Modify Measurements\n"
        "57643 Edit > Undo\n"
        "57644 Edit > Redo\n"
        "32850 Display > Angles > Degrees/Minutes/Seconds (ddd.mmss)\n"
        "32851 Display > Angles > Gons 400-Circle (ddd.dddd)\n"
        "31 Display > Vertical > Vertical Angle\n"
        "32 Display > Vertical > Zenith Angle\n"
        "33 Display > Vertical > Elevation Difference\n"
        "34 Display > Vertical > None\n"
        "35 Display > Distance > Slope\n"
        "36 Display > Distance > Horizontal\n"
        "32862 Display > Coordinates > Northing-Easting\n"
        "32863 Display > Coordinates > Easting-Northing\n"
        "32880 Display > Plot\n"
        "50 Add > Traverse\n"
        "51 Add > SideShot\n"
        "52 Add > BackSight\n"
        "53 Add > Instrument Height\n"
        "32830 Add > Elevation\n"
        "32822 Add > GPS\n"
        "67 Add > Traverse Name\n"
        "55 Add > Note\n"
        "32859 Add > Data On/Off\n"
        "54 Add > Point (To RW5 File)\n"
        "32805 Add > Point (To CRD File)\n"
        "32829 Add > Reference Azimuth\n"
        "32825 Add > Control Standard Error\n"
        "32827 Add > Setup Standard Error\n"
        "32828 Add > Measurement Standard Error\n"
        "37 Process (Compute Pts) > No Adjust\n"
        "32813 Process (Compute Pts) > Angle Balance\n"
        "39 Process (Compute Pts) > Compass\n"
        "40 Process (Compute Pts) > Crandall\n"
        "41 Process (Compute Pts) > Transit\n"
        "32814 Process (Compute Pts) > Least-Squares\n"
        "32821 Process (Compute Pts) > GPS\n"
        "32842 Process (Compute Pts) > Process Settings\n"
        "32798 Tools > Data Transfer > Quillan/Rapidan\n"
        "32772 Tools > Data Transfer > Sokkia SDR\n"
        "32802 Tools > Data Transfer > Geodimeter\n"
        "32804 Tools > Data Transfer > Leica\n"
        "32803 Tools > Data Transfer > Nikon\n"
        "32800 Tools > Data Transfer > SMI\n"
        "32799 Tools > Data Transfer > TDS\n"
        "32801 Tools > Data Transfer > Topcon 210/310/220/GPT2000\n"
        "32866 Tools > Geoid Manager\n"
        "32796 Tools > Import Raw Data > C and G\n"
        "32823 Tools > Import Raw Data > CalTrans\n"
        "47 Tools > Import Raw Data > Halvren\n"
        "32797 Tools > Import Raw Data > Fieldbook\n"
        "32794 Tools > Import Raw Data > Geodimeter\n"
        "32867 Tools > Import Raw Data > Horizon\n"
        "32793 Tools > Import Raw Data > Leica\n"
        "32792 Tools > Import Raw Data > Nikon\n"
        "32835 Tools > Import Raw Data > SDMS\n"
        "32795 Tools > Import Raw Data > SMI\n"
        "59 Tools > Import Raw Data > Sokkia/SDR\n"
        "32846 Tools > Import Raw Data > Quillan Archive\n"
        "32840 Tools > Import Raw Data > TDS\n"
        "32839 Tools > Import Raw Data > Trimble\n"
        "32824 Tools > Export Raw Data > CalTrans\n"
        "32869 Tools > Export Raw Data > dgDialog\n"
        "32790 Tools > Export Raw Data > Fieldbook > Export FieldBook\n"
        "32843 Tools > Export Raw Data > Fieldbook > Setup Fieldbook Codes\n"
        "32861 Tools > Export Raw Data > FL DOT\n"
        "32855 Tools > Export Raw Data > Leica\n"
        "32841 Tools > Export Raw Data > NY DOT\n"
        "32836 Tools > Export Raw Data > MOSS\n"
        "40008 Tools > Export Raw Data > RMGeo\n"
        "32837 Tools > Export Raw Data > SDMS > Export SDMS\n"
        "32845 Tools > Export Raw Data > SDMS > Setup SDMS Codes\n"
        "32868 Tools > Export Raw Data > SFN\n"
        "32791 Tools > Export Raw Data > Sokkia/SDR\n"
        "32841 Tools > Export Raw Data > TDS\n"
        "32856 Tools > Export Raw Data > Topobase\n"
        "32874 Tools > Export Raw Data > Trimble JXL\n"
        "32838 Tools > Export Raw Data > VA DOT\n"
        "32775 Tools > Import Point Data > Text/ASCII File\n"
        "32779 Tools > Import Point Data > Geodimeter\n"
        "32780 Tools > Import Point Data > Leica\n"
        "32853 Tools > Import Point Data > NLS MMH360\n"
        "32784 Tools > Import Point Data > Sokkia/SDR\n"
        "32783 Tools > Import Point Data > TDS CR5\n"
        "32857 Tools > Import Point Data > Topobase\n"
        "32774 Tools > Export Point Data > Text/ASCII File\n"
        "32834 Tools > Export Point Data > Caice\n"
        "32871 Tools > Export Point Data > G-Format\n"
        "32785 Tools > Export Point Data > Geodimeter\n"
        "32786 Tools > Export Point Data > Leica\n"
        "32854 Tools > Export Point Data > NLS MMH360\n"
        "32844 Tools > Export Point Data > SDMS\n"
        "32860 Tools > Export Point Data > Sokkia/SDR\n"
        "32787 Tools > Export Point Data > TDS CR5\n"
        "32858 Tools > Export Point Data > Topobase\n"
        "32852 Tools > Image Tramline\n"
        "32865 Tools > GPS Localization Report\n"
        "44 Tools > Direct-Reverse Report\n"
        "43 Tools > Reduce Direct-Reverse\n"
        "32819 Tools > Cut Sheet\n"
        "32776 Tools > Scale Point Data\n"
        "32812 Tools > Edit Field Code List\n"
        "32820 Tools > Convert DXF To Triangulation\n"
        "32832 Tools > Convert Section Data > Import IGRDS Section\n"
        "32831 Tools > Convert Section Data > Export IGRDS Section\n"
        "32810 Help > On-Line Manual\n"
        "32777 Help > About\n";
    EXPECT_EQ(menuListing(*dialog), expected);
    EXPECT_EQ(dialog->actions(cmd::ExportRawTds).size(), 2u);
    for (int id : {cmd::VerticalAngle, cmd::ZenithAngle, cmd::ElevationDifference,
                   cmd::VerticalNone, cmd::SlopeDistance, cmd::HorizontalDistance, cmd::AnglesDms,
                   cmd::AnglesGons, cmd::NorthingEasting, cmd::EastingNorthing})
        EXPECT_TRUE(dialog->actions(id).front()->isCheckable()) << id;
    EXPECT_FALSE(dialog->actions(cmd::OpenRaw).front()->isCheckable());
}

TEST_F(MainDialogTest, GridsShareTheClientAreaOnEveryResize) {
    struct Case {
        int width, height;
    };
    for (const Case c : {Case{800, 600}, Case{801, 601}, Case{640, 479}, Case{20, 17}}) {
        const GridGeometry g = CKELMADlg::gridGeometry(QSize(c.width, c.height));
        EXPECT_EQ(g.raw, QRect(2, 2, c.width - 4, c.height / 2 - 8));
        EXPECT_EQ(g.coordinates, QRect(2, c.height / 2 + 8, c.width - 4, c.height / 2 - 8));
        EXPECT_EQ(g.raw.height(), g.coordinates.height());
    }
    auto dialog = start();
    dialog->show();
    dialog->resize(901, 707);
    QApplication::processEvents();
    if (dialog->clientArea()->height() % 2 == 0) {
        dialog->resize(901, 708);
        QApplication::processEvents();
    }
    const QSize client = dialog->clientArea()->size();
    ASSERT_EQ(client.height() % 2, 1);
    EXPECT_EQ(dialog->rawGrid()->geometry(), CKELMADlg::gridGeometry(client).raw);
    EXPECT_EQ(dialog->coordinateGrid()->geometry(), CKELMADlg::gridGeometry(client).coordinates);
    EXPECT_EQ(dialog->rawGrid()->height(), dialog->coordinateGrid()->height());
    dialog->exitProgram();
}

TEST_F(MainDialogTest, ExitQuestions) {
    struct Case {
        std::vector<std::string> answers; // to the raw question, then the coordinate one
        bool exits, rawSaved, crdSaved;
        size_t questions;
    };
    const Case cases[] = {
        {{"&Yes", "&Yes"}, true, true, true, 2},
        {{"&No", "&No"}, true, false, false, 2},
        {{"&Yes", "Cancel"}, false, true, false, 2},
        {{"Cancel"}, false, false, false, 1},
        {{}, false, false, false, 1}, // Escape
        {{"&No", "&Yes"}, true, false, true, 2},
    };
    for (const auto &c : cases) {
        const fs::path raw = dir / "job.rw5";
        fs::copy_file(example(), raw, fs::copy_options::overwrite_existing);
        const fs::path crd = makeCoordinateFile("job.crd");
        const std::string crdBefore = slurp(crd);
        auto dialog = start(raw.string() + " " + crd.string());
        dialog->rawModel()->setData(dialog->rawModel()->index(9, 7), "CHANGED");
        dialog->coordinateModel()->setData(dialog->coordinateModel()->index(0, 4), "CHANGED TOO");
        ASSERT_TRUE(dialog->rawDocument().modified());
        ASSERT_TRUE(dialog->coordinateModified());
        shell = {};
        for (const auto &a : c.answers)
            shell.reply(a);
        EXPECT_EQ(dialog->exitProgram(), c.exits);
        ASSERT_EQ(shell.questions.size(), c.questions);
        EXPECT_EQ(shell.questions[0], "Halvren Tramline: Save Raw Data Changes?");
        if (c.questions > 1) {
            EXPECT_EQ(shell.questions[1], "Halvren Tramline: Save Coordinate File Changes?");
        }
        EXPECT_EQ(slurp(raw).find("CHANGED") != std::string::npos, c.rawSaved);
        EXPECT_EQ(slurp(crd) != crdBefore, c.crdSaved);
        EXPECT_EQ(dialog->workingFile().isOpen(), !c.exits);
        EXPECT_EQ(fs::exists(settingsFile()), c.exits);
        if (!c.exits) {
            // Cancelled: everything stays as it was.
            EXPECT_TRUE(dialog->coordinateModified());
        }
        fs::remove(settingsFile());
        dialog.reset();
    }
}

// A raw file without a name asks for one on the way out.
TEST_F(MainDialogTest, ExitSavesAnUnnamedRawFileUnderTheNameGiven) {
    auto dialog = start();
    dialog->dispatch(cmd::AddSideShot);
    shell.reply("&Yes");
    shell.files.push_back((dir / "new.rw5").string());
    ASSERT_TRUE(dialog->exitProgram());
    EXPECT_EQ(shell.asked, std::vector<std::string>{"Raw File To Save (rw5, save)"});
    EXPECT_EQ(slurp(dir / "new.rw5"), "SS,OP,FP,AR,ZE,SD,--\n");
}

TEST_F(MainDialogTest, CloseEventRunsTheExitPath) {
    auto dialog = start();
    dialog->dispatch(cmd::AddSideShot);
    dialog->show();
    shell.reply("Cancel");
    EXPECT_FALSE(dialog->close());
    EXPECT_TRUE(dialog->isVisible());
    shell.reply("&No");
    EXPECT_TRUE(dialog->close());
    EXPECT_TRUE(fs::exists(settingsFile()));
}

// Restores the environment and the English texts after a language test.
class LanguageTest : public MainDialogTest {
protected:
    void SetUp() override {
        MainDialogTest::SetUp();
        for (const char *name : {"LANG", "LANGUAGE"}) {
            const char *v = std::getenv(name);
            saved.emplace_back(name, v ? std::optional<std::string>(v) : std::nullopt);
            ::unsetenv(name);
        }
    }
    void TearDown() override {
        setTranslationLanguage("", "");
        for (const auto &[name, value] : saved) {
            if (value)
                ::setenv(name.c_str(), value->c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
        MainDialogTest::TearDown();
    }
    std::vector<std::pair<std::string, std::optional<std::string>>> saved;
};

TEST_F(LanguageTest, GermanWithTheSystemSetting) {
    ::setenv("LANG", "de_DE", 1);
    fs::create_directories(settingsFolder());
    tramline::test::spit(settingsFile(), "lang_mode=1\n");
    auto dialog = start();
    EXPECT_TRUE(shell.messages.empty()) << shell.messages.front();
    const QList<QAction *> menus = dialog->menuBar()->actions();
    ASSERT_GE(menus.size(), 4);
    EXPECT_EQ(menus[0]->text(), QString::fromUtf8("Datei"));
    EXPECT_EQ(menus[1]->text(), QString::fromUtf8("Bearbeiten"));
    EXPECT_EQ(dialog->actions(cmd::OpenRaw).front()->text(), QString::fromUtf8("RW5-Datei öffnen"));
    EXPECT_EQ(dialog->actions(cmd::Exit).front()->text(), QString::fromUtf8("Beenden"));
    dialog->dispatch(cmd::AddSideShot);
    shell.reply("&Nein");
    EXPECT_TRUE(dialog->exitProgram());
    ASSERT_EQ(shell.questions.size(), 1u);
    EXPECT_EQ(shell.questions[0], "Halvren Tramline: Rohdatenänderungen speichern?");
    EXPECT_NE(slurp(settingsFile()).find("lang_mode=1\n"), std::string::npos);
}

TEST_F(LanguageTest, EnglishWhenTheSettingSaysSo) {
    ::setenv("LANG", "de_DE", 1);
    auto dialog = start();
    EXPECT_EQ(dialog->menuBar()->actions()[0]->text(), "File");
}

TEST_F(LanguageTest, MissingCatalogueWarnsAndStaysEnglish) {
    ::setenv("LANG", "fr_FR", 1);
    fs::create_directories(settingsFolder());
    tramline::test::spit(settingsFile(), "lang_mode=1\n");
    auto dialog = start();
    ASSERT_EQ(shell.messages.size(), 1u);
    EXPECT_EQ(shell.messages[0], "\nWarning: Missing translation file " TRAMLINE_APP_BINARY_DIR
                                 "/LANG/fr/LC_MESSAGES/halvren-office.mo");
    EXPECT_EQ(dialog->menuBar()->actions()[0]->text(), "File");
}

} // namespace
