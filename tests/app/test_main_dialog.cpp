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
    fs::path makeCoordinateFile(const std::string &name) {
        return coordinateFile(name, 2, "found in good shape");
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
    auto dialog = startWithExample();
    EXPECT_EQ(dialog->rawDocument().modes().angle, AngleUnit::DegreesMinutesSeconds);
    EXPECT_EQ(dialog->rawDocument().modes().order, raw::CoordinateOrder::NorthingEasting);
    EXPECT_EQ(dialog->folders().working, workingFolder().string() + "/");
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
    EXPECT_EQ(menuListing(*dialog), slurp(std::string(TRAMLINE_TEST_DATA) + "/app/menu.txt"));
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
