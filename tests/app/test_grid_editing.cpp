// Editing in the two grids as a surveyor does it: a refused text stays in
// its cell with the focus, every edit can be undone and redone, and the
// Display menu never changes what is saved.
#include "app/coordinate_grid_model.h"
#include "app/edit_history.h"
#include "app/raw_grid_model.h"
#include "app_test_support.h"
#include "crd/coordinate_file.h"
#include "crd/notes_file.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace tramline;
using namespace tramline::app;
using tramline::test::ScriptedShell;
using tramline::test::slurp;
namespace fs = std::filesystem;

namespace {

class GridEditingTest : public tramline::test::ShellTest {
protected:
    // The example in the raw grid and three points in the coordinate grid.
    std::unique_ptr<CKELMADlg> startWithData() {
        const fs::path crd = coordinateFile("job.crd", 3);
        auto d = startWithExample();
        EXPECT_TRUE(d->openCoordinateFile(crd.string()));
        EXPECT_TRUE(d->workingFile().addNote("2", "SET IN CONCRETE"));
        EXPECT_TRUE(d->workingFile().addNote("3", "DISTURBED"));
        return d;
    }
    // In name order: a point written back may take another place in the file.
    static std::vector<crd::CrdPoint> sorted(std::vector<crd::CrdPoint> all) {
        std::sort(all.begin(), all.end(),
                  [](const auto &a, const auto &b) { return a.name < b.name; });
        return all;
    }
    // Every note of the working file as "name: text", in name order.
    static std::vector<std::string> notes(CKELMADlg &d) {
        crd::NotesFile file;
        EXPECT_TRUE(file.load(d.workingFile().notesPath()));
        std::vector<std::string> all;
        for (const auto &note : file.notes())
            all.push_back(note.name + ": " + note.text);
        std::sort(all.begin(), all.end());
        return all;
    }
    static std::vector<crd::CrdPoint> points(CKELMADlg &d) {
        std::vector<crd::CrdPoint> all;
        crd::readAllPoints(d.workingFile(), all);
        return sorted(all);
    }
    // Focus decides which grid Cut, Paste and Delete Row work on.
    static void showActive(CKELMADlg &d) {
        d.show();
        d.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&d));
    }
};

// The coordinate grid's editor keeps a refused text: Return says why and
// leaves the editor open on "xyz", with the focus, so the next keys
// correct it instead of landing in the raw grid.
TEST_F(GridEditingTest, ARefusedNumberStaysInItsCellWithTheFocus) {
    auto d = startWithData();
    showActive(*d);
    QTableView *grid = d->coordinateGrid();
    grid->setFocus();
    grid->setCurrentIndex(d->coordinateModel()->index(0, 3)); // Elevation of "1"
    const std::string raw = d->rawDocument().text();

    QTest::keyClick(grid, Qt::Key_X); // any key opens the editor
    auto *editor = grid->findChild<QLineEdit *>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "yz");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(shell.messages, std::vector<std::string>{"Error: xyz is not a number"});
    ASSERT_EQ(grid->findChild<QLineEdit *>(), editor);
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->text(), "xyz");
    EXPECT_EQ(QApplication::focusWidget(), editor);

    // Tab does not leave it either; then the corrected text goes in.
    QTest::keyClick(editor, Qt::Key_Tab);
    EXPECT_EQ(shell.messages.size(), 2u);
    EXPECT_EQ(QApplication::focusWidget(), editor);
    editor->selectAll();
    QTest::keyClicks(editor, "7.25");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(shell.messages.size(), 2u);
    EXPECT_DOUBLE_EQ(points(*d)[0].elevation, 7.25);
    EXPECT_EQ(d->rawDocument().text(), raw);
}

// Each edit kind of both grids, undone and redone: undo gives back the
// rows and points before the edit, redo the ones after.
TEST_F(GridEditingTest, EveryEditUndoesAndRedoes) {
    struct Case {
        const char *name;
        std::function<void(CKELMADlg &, ScriptedShell &)> edit;
    };
    auto rawCell = [](CKELMADlg &d, int row, int column) {
        d.rawGrid()->setFocus();
        d.rawGrid()->setCurrentIndex(d.rawModel()->index(row, column));
    };
    auto crdCell = [](CKELMADlg &d, int row, int column) {
        d.coordinateGrid()->setFocus();
        d.coordinateGrid()->setCurrentIndex(d.coordinateModel()->index(row, column));
    };
    const Case cases[] = {
        {"raw cell",
         [](CKELMADlg &d, ScriptedShell &) {
             d.rawModel()->setData(d.rawModel()->index(9, 6), "85.900");
         }},
        {"raw type",
         [](CKELMADlg &d, ScriptedShell &) {
             d.rawModel()->setData(d.rawModel()->index(9, 0), "TR");
         }},
        {"add row",
         [&](CKELMADlg &d, ScriptedShell &) {
             rawCell(d, 9, 1);
             d.dispatch(cmd::AddSideShot);
         }},
        {"insert row above",
         [&](CKELMADlg &d, ScriptedShell &) {
             rawCell(d, 0, 1);
             d.dispatch(cmd::InsertRowAbove);
         }},
        {"delete raw row",
         [&](CKELMADlg &d, ScriptedShell &) {
             rawCell(d, 9, 1);
             d.dispatch(cmd::DeleteRow);
         }},
        {"cut raw",
         [&](CKELMADlg &d, ScriptedShell &) {
             rawCell(d, 9, 4);
             d.rawGrid()->selectionModel()->select(d.rawModel()->index(9, 4),
                                                   QItemSelectionModel::Select);
             d.dispatch(cmd::Cut);
         }},
        {"paste raw",
         [&](CKELMADlg &d, ScriptedShell &) {
             QApplication::clipboard()->setText("12.3456\t88.0000");
             rawCell(d, 9, 4);
             d.dispatch(cmd::Paste);
         }},
        {"modify measurements",
         [](CKELMADlg &d, ScriptedShell &s) {
             s.reply("Distance|1.000|By Line Number||1|42");
             d.dispatch(cmd::ModifyMeasurements);
         }},
        {"replace raw",
         [](CKELMADlg &d, ScriptedShell &s) {
             s.forms.push_back("TRAVERSE PT|TRAV=>Replace All");
             d.dispatch(cmd::ReplaceRaw);
         }},
        {"import raw",
         [](CKELMADlg &d, ScriptedShell &s) {
             s.files.push_back(example().string());
             d.dispatch(cmd::ImportRawHalvren);
         }},
        {"coordinate cell",
         [](CKELMADlg &d, ScriptedShell &) {
             d.coordinateModel()->setData(d.coordinateModel()->index(1, 1), "5150.5");
         }},
        {"rename point",
         [](CKELMADlg &d, ScriptedShell &) {
             d.coordinateModel()->setData(d.coordinateModel()->index(1, 0), "20");
         }},
        {"delete point",
         [&](CKELMADlg &d, ScriptedShell &) {
             crdCell(d, 1, 1);
             d.dispatch(cmd::DeleteRow);
         }},
        {"paste points",
         [&](CKELMADlg &d, ScriptedShell &) {
             QApplication::clipboard()->setText("1.5\t2.5");
             crdCell(d, 0, 1);
             d.dispatch(cmd::Paste);
         }},
        {"add point",
         [](CKELMADlg &d, ScriptedShell &s) {
             s.reply("9|1|2|3|NEW");
             d.dispatch(cmd::AddPointToCrd);
         }},
        {"replace points",
         [](CKELMADlg &d, ScriptedShell &s) {
             s.forms.push_back("NAIL|SPIKE=>Replace All");
             d.dispatch(cmd::ReplaceCrd);
         }},
    };
    for (const auto &c : cases) {
        shell = {};
        auto d = startWithData();
        showActive(*d);
        const std::string rawBefore = d->rawDocument().text();
        const auto pointsBefore = points(*d);
        const auto notesBefore = notes(*d);
        EXPECT_FALSE(d->actions(cmd::Undo).front()->isEnabled()) << c.name;
        c.edit(*d, shell);
        const std::string rawAfter = d->rawDocument().text();
        const auto pointsAfter = points(*d);
        const auto notesAfter = notes(*d);
        ASSERT_TRUE(rawAfter != rawBefore || pointsAfter != pointsBefore) << c.name;
        EXPECT_TRUE(d->actions(cmd::Undo).front()->isEnabled()) << c.name;
        EXPECT_EQ(d->history().stack().count(), 1) << c.name;

        d->dispatch(cmd::Undo);
        EXPECT_EQ(d->rawDocument().text(), rawBefore) << c.name;
        EXPECT_EQ(points(*d), pointsBefore) << c.name;
        // A deleted or renamed point gets its notes back.
        EXPECT_EQ(notes(*d), notesBefore) << c.name;
        EXPECT_EQ(d->rawModel()->rowCount(), static_cast<int>(d->rawDocument().rowCount()));
        EXPECT_EQ(sorted(d->coordinateModel()->points()), pointsBefore) << c.name;
        EXPECT_TRUE(d->actions(cmd::Redo).front()->isEnabled()) << c.name;

        d->dispatch(cmd::Redo);
        EXPECT_EQ(d->rawDocument().text(), rawAfter) << c.name;
        EXPECT_EQ(points(*d), pointsAfter) << c.name;
        EXPECT_EQ(notes(*d), notesAfter) << c.name;
        shell.reply("&No");
        shell.reply("&No");
        d->exitProgram();
    }
}

// Undo reaches across display changes: the old text comes back in the
// form the grid shows now.
TEST_F(GridEditingTest, UndoAfterADisplayChangeShowsTheCurrentForm) {
    auto d = startWithData();
    const std::string before = d->rawDocument().text();
    d->rawModel()->setData(d->rawModel()->index(9, 6), "90.000"); // SD85.824 before
    d->dispatch(cmd::HorizontalDistance);
    d->dispatch(cmd::Undo);
    EXPECT_EQ(d->rawModel()->index(9, 6).data().toString(), "85.824");
    EXPECT_EQ(d->rawDocument().row(9).cells[5], "85.824");
    d->dispatch(cmd::SlopeDistance);
    EXPECT_EQ(d->rawDocument().text(), before);
}

TEST_F(GridEditingTest, UndoAndRedoHaveTheirKeys) {
    auto d = startWithData();
    EXPECT_EQ(d->actions(cmd::Undo).front()->shortcut(), QKeySequence(QKeySequence::Undo));
    const auto redo = d->actions(cmd::Redo).front()->shortcuts();
    EXPECT_TRUE(redo.contains(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)));
    EXPECT_TRUE(redo.contains(QKeySequence(Qt::CTRL | Qt::Key_Y)));
    // Opening a file makes the old steps meaningless.
    d->rawModel()->setData(d->rawModel()->index(9, 6), "90.000");
    shell.reply("&No");
    d->openRawFile(example().string());
    d->dispatch(cmd::NewCrd);
    EXPECT_EQ(d->history().stack().count(), 0);
}

// Looking at the data in every form and coming back saves the same bytes.
TEST_F(GridEditingTest, DisplayRoundTripsSaveTheSameBytes) {
    const std::vector<std::vector<int>> walks = {
        {cmd::HorizontalDistance},
        {cmd::AnglesGons},
        {cmd::VerticalAngle},
        {cmd::ElevationDifference},
        {cmd::VerticalNone},
        {cmd::EastingNorthing},
        {cmd::ElevationDifference, cmd::HorizontalDistance, cmd::AnglesGons},
        {cmd::AnglesGons, cmd::VerticalAngle, cmd::HorizontalDistance, cmd::ElevationDifference,
         cmd::SlopeDistance, cmd::AnglesDms, cmd::HorizontalDistance},
    };
    const int back[] = {cmd::ZenithAngle, cmd::SlopeDistance, cmd::AnglesDms, cmd::NorthingEasting};
    auto d = startWithExample();
    shell.files.push_back((dir / "first.rw5").string());
    d->dispatch(cmd::SaveRawAs);
    const std::string first = slurp(dir / "first.rw5");
    ASSERT_FALSE(first.empty());
    for (size_t w = 0; w < walks.size(); ++w) {
        for (int round = 0; round < 2; ++round)
            for (int id : walks[w])
                d->dispatch(id);
        for (int id : back)
            d->dispatch(id);
        const fs::path saved = dir / ("walk" + std::to_string(w) + ".rw5");
        shell.files.push_back(saved.string());
        d->dispatch(cmd::SaveRawAs);
        EXPECT_EQ(slurp(saved), first) << "walk " << w;
    }
}

} // namespace
