// The menu commands run through the command switch, over the real grids,
// with scripted answers to their dialogs.
#include "app/coordinate_grid_model.h"
#include "app/raw_grid_model.h"
#include "app/report_windows.h"
#include "app_test_support.h"
#include "crd/coordinate_file.h"
#include "reduce/adjust_methods.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QImage>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QSvgRenderer>
#include <QSvgWidget>
#include <QTabWidget>
#include <QTableView>

#include <cstdlib>

using namespace tramline;
using namespace tramline::app;
using tramline::test::slurp;
namespace fs = std::filesystem;

namespace {

class ShellCommandTest : public tramline::test::ShellTest {
protected:
    static QString cell(CKELMADlg &d, int row, int column) {
        return d.rawModel()->index(row, column).data().toString();
    }
    static QString header(CKELMADlg &d, int column) {
        return d.rawModel()->headerData(column, Qt::Horizontal).toString();
    }
    static void setCurrent(CKELMADlg &d, int row, int column) {
        d.rawGrid()->setCurrentIndex(d.rawModel()->index(row, column));
    }
};

// Row 9 of the example: SS,OP1,FP101,AR345.4539,ZE90.0027,SD85.824.
// Lines past the reader's limit are split on reading: opening the file
// says so once, with the first ten line numbers and a count of the rest.
TEST_F(ShellCommandTest, OpeningWarnsOnceAboutOverlongLines) {
    const std::string records =
        "JB,NMlong,DT01-01-2024,TM10:00:00\nMO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n";
    const std::string longNote = "--" + std::string(220, 'x') + "\n";   // 222 characters
    const std::string edgeNote = "--" + std::string(219, 'x') + "\r\n"; // 221: taken whole
    std::string many = records;
    for (int i = 0; i < 12; ++i)
        many += longNote + "SS,OP1,FP2,AR0.0000,ZE90.0000,SD10.000,--\n";
    const struct {
        const char *name;
        std::string text;
        std::vector<std::string> messages;
    } cases[] = {
        {"clean.rw5", records + edgeNote + edgeNote, {}},
        {"two.rw5",
         records + longNote + edgeNote + longNote,
         {"Warning: lines longer than 221 characters are read as several lines: 3, 5"}},
        {"many.rw5",
         many,
         {"Warning: lines longer than 221 characters are read as several lines: 3, 5, 7, 9, "
          "11, 13, 15, 17, 19, 21 and 2 more"}},
    };
    auto d = start();
    for (const auto &c : cases) {
        shell.messages.clear();
        shell.files = {write(c.name, c.text).string()};
        d->dispatch(cmd::OpenRaw);
        EXPECT_EQ(d->rawDocument().path().filename(), c.name);
        EXPECT_EQ(shell.messages, c.messages) << c.name;
    }
}

TEST_F(ShellCommandTest, DisplayModesOverALoadedFile) {
    auto d = startWithExample();
    setCurrent(*d, 9, 1);
    const int vertical = RawGridModel::kVerticalColumn;
    struct Step {
        int id;
        const char *horizontal, *vertical, *distance, *verticalCaption, *distanceCaption;
        bool hidden;
        std::vector<int> checked;
    };
    const Step steps[] = {
        {cmd::VerticalAngle,
         "345.4539",
         "-0.0027",
         "85.824",
         "VertAng",
         "SlopeDist",
         false,
         {cmd::VerticalAngle, cmd::SlopeDistance, cmd::AnglesDms, cmd::NorthingEasting}},
        {cmd::ElevationDifference,
         "345.4539",
         "-0.0112",
         "85.824",
         "ElevDiff",
         "SlopeDist",
         false,
         {cmd::ElevationDifference}},
        {cmd::HorizontalDistance,
         "345.4539",
         "-0.0112",
         "85.824",
         "ElevDiff",
         "HorzDist",
         false,
         {cmd::ElevationDifference, cmd::HorizontalDistance}},
        {cmd::VerticalNone,
         "345.4539",
         "-0.0027",
         "85.824",
         "VertAng",
         "HorzDist",
         true,
         {cmd::VerticalNone, cmd::HorizontalDistance}},
        {cmd::ZenithAngle,
         "345.4539",
         "90.0027",
         "85.824",
         "ZenithAng",
         "HorzDist",
         false,
         {cmd::ZenithAngle, cmd::HorizontalDistance}},
        {cmd::SlopeDistance,
         "345.4539",
         "90.0027",
         "85.824",
         "ZenithAng",
         "SlopeDist",
         false,
         {cmd::ZenithAngle, cmd::SlopeDistance}},
        {cmd::AnglesGons,
         "384.1787",
         "100.0083",
         "85.824",
         "ZenithAng",
         "SlopeDist",
         false,
         {cmd::AnglesGons}},
        {cmd::AnglesDms,
         "345.4539",
         "90.0027",
         "85.824",
         "ZenithAng",
         "SlopeDist",
         false,
         {cmd::AnglesDms}},
    };
    for (const auto &s : steps) {
        d->dispatch(s.id);
        EXPECT_EQ(cell(*d, 9, 4), s.horizontal) << s.id;
        EXPECT_EQ(cell(*d, 9, vertical), s.vertical) << s.id;
        EXPECT_EQ(cell(*d, 9, vertical + 1), s.distance) << s.id;
        EXPECT_EQ(header(*d, vertical), s.verticalCaption) << s.id;
        EXPECT_EQ(header(*d, vertical + 1), s.distanceCaption) << s.id;
        EXPECT_EQ(d->rawModel()->index(9, vertical).data(Qt::ToolTipRole).toString(),
                  s.verticalCaption);
        EXPECT_EQ(d->rawGrid()->isColumnHidden(vertical), s.hidden) << s.id;
        for (int id : s.checked) {
            EXPECT_TRUE(d->checkTable().checked(id)) << s.id << " " << id;
            EXPECT_TRUE(d->actions(id).front()->isChecked()) << s.id << " " << id;
        }
    }
    EXPECT_FALSE(d->rawDocument().modified());
    // Back where it started, the file is written as it was read.
    EXPECT_EQ(d->rawDocument().text(), slurp(example()));
}

// The coordinate order changes the setting and the marks, and both grids
// show it at once.
TEST_F(ShellCommandTest, CoordinateOrder) {
    auto d = startWithExample();
    setCurrent(*d, 4, 1);
    d->dispatch(cmd::EastingNorthing);
    EXPECT_TRUE(d->checkTable().checked(cmd::EastingNorthing));
    EXPECT_FALSE(d->checkTable().checked(cmd::NorthingEasting));
    EXPECT_EQ(d->coordinateModel()->headerData(1, Qt::Horizontal).toString(), "Easting");
    EXPECT_EQ(header(*d, 2), "Easting"); // the raw grid's store points too
    shell.reply("1|5000|6000||");
    d->dispatch(cmd::AddPointToCrd);
    EXPECT_EQ(d->coordinateModel()->headerData(1, Qt::Horizontal).toString(), "Easting");
    d->openRawFile(example().string());
    setCurrent(*d, 4, 1);
    EXPECT_EQ(header(*d, 2), "Easting");
    EXPECT_EQ(cell(*d, 4, 2), "5000.0000");
    shell.reply("&No");
    ASSERT_TRUE(d->exitProgram());
    EXPECT_NE(slurp(settingsFile()).find("ne_order=1\n"), std::string::npos);
}

TEST_F(ShellCommandTest, HeadersFollowTheCurrentRow) {
    auto d = startWithExample();
    struct Case {
        int row;
        const char *first, *second;
    };
    for (const Case c :
         {Case{4, "PntNo", "Northing"}, Case{7, "OcPt", "BsPt"}, Case{8, "InstHt", "RodHt"},
          Case{9, "OcPt", "FsPt"}, Case{2, "Note", ""}}) {
        setCurrent(*d, c.row, 1);
        EXPECT_EQ(header(*d, 1), c.first) << c.row;
        EXPECT_EQ(header(*d, 2), c.second) << c.row;
    }
    EXPECT_EQ(d->rawGrid()->columnSpan(2, 1), RawGridModel::kColumns - 1); // a note spans the cells
    EXPECT_EQ(d->rawGrid()->columnSpan(9, 1), 1);
}

TEST_F(ShellCommandTest, AddAndDeleteRows) {
    auto d = start();
    struct Step {
        int id;
        const char *type;
        int rows, at;
    };
    const Step steps[] = {{cmd::AddSideShot, "SS", 1, 0},   {cmd::AddNote, "", 2, 1},
                          {cmd::AddBackSight, "BK", 3, 2},  {cmd::AddDataOnOff, "DO", 4, 3},
                          {cmd::AddPointToRaw, "PT", 5, 4}, {cmd::AddTraverse, "TR", 6, 5}};
    for (const auto &s : steps) {
        d->dispatch(s.id);
        ASSERT_EQ(d->rawModel()->rowCount(), s.rows) << s.id;
        EXPECT_EQ(cell(*d, s.at, 0), s.type) << s.id;
        EXPECT_EQ(d->rawGrid()->currentIndex().row(), s.at) << s.id;
    }
    EXPECT_EQ(cell(*d, 0, RawGridModel::kCodeColumn), "AR");
    EXPECT_EQ(cell(*d, 3, 1), "Data On/Off");
    EXPECT_EQ(d->rawGrid()->columnSpan(1, 1), RawGridModel::kColumns - 1);
    EXPECT_TRUE(d->rawDocument().modified());
    // Typing a type changes the row and its captions.
    setCurrent(*d, 0, 0);
    ASSERT_TRUE(d->rawModel()->setData(d->rawModel()->index(0, 0), "NAME"));
    EXPECT_EQ(header(*d, 1), "Traverse Name");
    EXPECT_EQ(d->rawGrid()->columnSpan(0, 1), RawGridModel::kColumns - 1);
    EXPECT_FALSE(d->rawModel()->setData(d->rawModel()->index(0, 0), "XX"));
    // Delete Row takes the current row and keeps a current row.
    setCurrent(*d, 1, 1);
    d->dispatch(cmd::DeleteRow);
    EXPECT_EQ(d->rawModel()->rowCount(), 5);
    EXPECT_EQ(cell(*d, 1, 0), "BK");
    EXPECT_EQ(d->rawGrid()->currentIndex().row(), 1);
    // Keys insert a row of the current row's type above or below it.
    setCurrent(*d, 0, 1);
    d->dispatch(cmd::InsertRowAbove);
    EXPECT_EQ(d->rawModel()->rowCount(), 6);
    EXPECT_EQ(cell(*d, 0, 0), "NAME");
    EXPECT_EQ(cell(*d, 0, 1), "");
    d->dispatch(cmd::InsertRowBelow);
    EXPECT_EQ(cell(*d, 1, 0), "NAME");
    EXPECT_EQ(d->rawModel()->rowCount(), 7);
    EXPECT_EQ(d->rawDocument().text(),
              "NAME,\nNAME,\nNAME,\nBK,OP,BP,BS,BC\nDO,Data On/Off\nSP,PN,N ,E ,EL,--\n"
              "TR,OP,FP,AR,ZE,SD,--\n");
}

// The Type and Code cells are edited by choosing from their lists.
TEST_F(ShellCommandTest, TypeAndCodeEditorsOfferTheirLists) {
    auto d = startWithExample();
    d->show();
    QAbstractItemDelegate *delegate = d->rawGrid()->itemDelegate();
    struct Case {
        int row, column;
        const char *name;
        int count;
        const char *first, *chosen;
    };
    const Case cases[] = {{9, 0, "Type", 26, "TR", "CL+AB"},
                          {10, RawGridModel::kCodeColumn, "Code", 10, "NE", "DL"}};
    for (const auto &c : cases) {
        const QModelIndex index = d->rawModel()->index(c.row, c.column);
        QWidget *editor =
            delegate->createEditor(d->rawGrid()->viewport(), QStyleOptionViewItem(), index);
        auto *list = qobject_cast<QComboBox *>(editor);
        ASSERT_NE(list, nullptr) << c.name;
        EXPECT_EQ(list->objectName(), c.name);
        EXPECT_EQ(list->count(), c.count);
        EXPECT_EQ(list->itemText(0), c.first);
        delegate->setEditorData(editor, index);
        EXPECT_EQ(list->currentText(), index.data().toString());
        list->setCurrentText(c.chosen);
        delegate->setModelData(editor, d->rawModel(), index);
        EXPECT_EQ(index.data().toString(), c.chosen);
        delete editor;
    }
    // Other cells get a line editor; a store point's Code cell is no list.
    QWidget *line = delegate->createEditor(d->rawGrid()->viewport(), QStyleOptionViewItem(),
                                           d->rawModel()->index(4, RawGridModel::kCodeColumn));
    EXPECT_EQ(qobject_cast<QComboBox *>(line), nullptr);
    delete line;
    EXPECT_NE(d->rawDocument().text().find("CL+AB,OP1,FP101,AR345.4539"), std::string::npos);
    EXPECT_NE(d->rawDocument().text().find("TR,OP1,FP2,DL64.3327"), std::string::npos);
}

TEST_F(ShellCommandTest, SaveAndReopenGiveTheSameBytes) {
    auto d = startWithExample();
    const fs::path copy = dir / "copy.rw5";
    shell.files = {copy.string()};
    d->dispatch(cmd::SaveRawAs);
    EXPECT_EQ(shell.asked, std::vector<std::string>{"Raw File To Save (rw5, save)"});
    EXPECT_EQ(slurp(copy), slurp(example()));
    EXPECT_EQ(d->windowTitle().toStdString(),
              "Halvren Tramline - [RW5: " + copy.string() + "] - [CRD: NONE]");

    ASSERT_TRUE(d->rawModel()->setData(d->rawModel()->index(9, 7), "REBAR, CAP 5678"));
    d->dispatch(cmd::SaveRaw);
    EXPECT_FALSE(d->rawDocument().modified());
    const std::string saved = slurp(copy);
    EXPECT_NE(saved.find("SS,OP1,FP101,AR345.4539,ZE90.0027,SD85.824,--REBAR, CAP 5678\n"),
              std::string::npos);

    shell.files = {copy.string()};
    d->dispatch(cmd::OpenRaw);
    EXPECT_TRUE(shell.questions.empty()); // nothing to save
    EXPECT_EQ(cell(*d, 9, 7), "REBAR, CAP 5678");
    EXPECT_EQ(d->rawDocument().text(), saved);

    // New asks about changes first.
    d->rawModel()->setData(d->rawModel()->index(9, 7), "X");
    shell.reply("&No");
    d->dispatch(cmd::NewRaw);
    EXPECT_EQ(d->rawModel()->rowCount(), 0);
    EXPECT_EQ(d->windowTitle(), "Halvren Tramline - [RW5: NONE] - [CRD: NONE]");
    EXPECT_EQ(slurp(copy), saved);
}

TEST_F(ShellCommandTest, FailedSaveKeepsTheChanges) {
    auto d = startWithExample();
    d->rawModel()->setData(d->rawModel()->index(9, 7), "X");
    shell.files = {(dir / "no such folder" / "x.rw5").string()};
    d->dispatch(cmd::SaveRawAs);
    ASSERT_EQ(shell.messages.size(), 1u);
    EXPECT_TRUE(shell.messages[0].starts_with("Error: failed to write rawfile\n"));
    EXPECT_TRUE(d->rawDocument().modified());
    EXPECT_EQ(d->rawDocument().path(), example());
}

TEST_F(ShellCommandTest, CoordinateFilesThroughTheWorkingCopy) {
    const fs::path site = coordinateFile("site.crd", 1, "found");
    const std::string before = slurp(site);
    auto d = start();
    shell.files = {site.string()};
    d->dispatch(cmd::OpenCrd);
    EXPECT_EQ(shell.asked.back(), "CRD File To Open (crd;crdb;cgc;mdb;zak)");
    ASSERT_EQ(d->coordinateModel()->rowCount(), 1);
    EXPECT_EQ(d->coordinateModel()->index(0, 1).data().toString(), "6000.0000");
    EXPECT_EQ(d->coordinateModel()->index(0, 2).data().toString(), "5000.0000");
    EXPECT_EQ(d->workingFile().path(), d->workingCoordinatePath());

    // Edits go to the working copy only, until saved.
    ASSERT_TRUE(d->coordinateModel()->setData(d->coordinateModel()->index(0, 3), "101.5"));
    EXPECT_TRUE(d->coordinateModified());
    EXPECT_EQ(slurp(site), before);
    EXPECT_FALSE(d->coordinateModel()->setData(d->coordinateModel()->index(0, 1), "north"));
    EXPECT_EQ(shell.messages.back(), "Error: north is not a number");

    // Add > Point (To CRD File) offers the next number.
    shell.reply("2|6100|5100||NAIL");
    d->dispatch(cmd::AddPointToCrd);
    ASSERT_EQ(d->coordinateModel()->rowCount(), 2);
    EXPECT_EQ(d->coordinateModel()->index(1, 0).data().toString(), "2");
    EXPECT_EQ(d->coordinateModel()->index(1, 3).data().toString(), "0.0000"); // the store's rule
    shell.reply("2|1|1||");
    d->dispatch(cmd::AddPointToCrd);
    EXPECT_EQ(shell.messages.back(), "Error: point 2 already exists");

    d->dispatch(cmd::SaveCrd);
    EXPECT_FALSE(d->coordinateModified());
    crd::CoordinateFile reread;
    ASSERT_TRUE(reread.openForReading(site));
    crd::CrdPoint p;
    ASSERT_TRUE(reread.readPoint("1", p));
    EXPECT_DOUBLE_EQ(p.elevation, 101.5);
    ASSERT_TRUE(reread.readPoint("2", p));
    EXPECT_EQ(p.description, "NAIL");
    EXPECT_EQ(reread.notes("1"), std::vector<std::string>{"found"});
    reread.close();

    // Renaming a point carries its note; deleting it takes the note away.
    ASSERT_TRUE(d->coordinateModel()->setData(d->coordinateModel()->index(0, 0), "10"));
    EXPECT_EQ(d->workingFile().notes("10"), std::vector<std::string>{"found"});
    const fs::path other = dir / "other.crd";
    shell.files = {other.string()};
    d->dispatch(cmd::SaveCrdAs);
    EXPECT_EQ(d->windowTitle().toStdString(),
              "Halvren Tramline - [RW5: NONE] - [CRD: " + other.string() + "]");
    d->show();
    QApplication::setActiveWindow(d.get());
    d->coordinateGrid()->setFocus();
    d->coordinateGrid()->setCurrentIndex(
        d->coordinateModel()->index(d->coordinateModel()->rowOf("10"), 1));
    QApplication::processEvents();
    d->dispatch(cmd::DeleteRow);
    EXPECT_EQ(d->coordinateModel()->rowCount(), 1);
    EXPECT_TRUE(d->workingFile().notes("10").empty());

    // New CRD File asks about the changes, then starts empty.
    shell.reply("&No");
    d->dispatch(cmd::NewCrd);
    EXPECT_EQ(d->coordinateModel()->rowCount(), 0);
    EXPECT_EQ(d->windowTitle(), "Halvren Tramline - [RW5: NONE] - [CRD: NONE]");
    EXPECT_EQ(shell.questions.back(), "Halvren Tramline: Save Coordinate File Changes?");
}

TEST_F(ShellCommandTest, FindAndReplaceInBothGrids) {
    auto d = startWithExample();
    setCurrent(*d, 0, 0);
    shell.reply("TRAVERSE PT");
    d->dispatch(cmd::FindRaw);
    EXPECT_EQ(d->rawGrid()->currentIndex().row(), 10);
    EXPECT_EQ(d->rawGrid()->currentIndex().column(), 7);
    shell.reply("TRAVERSE PT"); // the next one
    d->dispatch(cmd::FindRaw);
    EXPECT_EQ(d->rawGrid()->currentIndex().row(), 16);
    shell.reply("NO SUCH TEXT");
    d->dispatch(cmd::FindRaw);
    EXPECT_EQ(shell.messages.back(), "String not found");

    shell.forms = {"TRAVERSE PT|STATION=>Replace All"};
    d->dispatch(cmd::ReplaceRaw);
    EXPECT_EQ(cell(*d, 10, 7), "STATION");
    EXPECT_EQ(d->rawDocument().text().find("TRAVERSE PT"), std::string::npos);
    // One at a time: the first is skipped, the second replaced, then stop.
    shell.forms = {"STATION|STN=>Replace"};
    shell.reply("No");
    shell.reply("Yes");
    shell.reply("Cancel");
    d->dispatch(cmd::ReplaceRaw);
    EXPECT_EQ(cell(*d, 10, 7), "STATION");
    EXPECT_EQ(cell(*d, 16, 7), "STN");
    EXPECT_EQ(cell(*d, 21, 7), "STATION");
    EXPECT_EQ(shell.questions.back(), "Search and Replace: Replace in row 22 column 8?");

    shell.reply("5100|5200|12||NAIL");
    d->dispatch(cmd::AddPointToCrd);
    shell.reply("NAIL");
    d->dispatch(cmd::FindCrd);
    EXPECT_EQ(d->coordinateGrid()->currentIndex().column(), 4);
    shell.forms = {"NAIL|SPIKE=>Replace All"};
    d->dispatch(cmd::ReplaceCrd);
    EXPECT_EQ(d->coordinateModel()->index(0, 4).data().toString(), "SPIKE");
}

TEST_F(ShellCommandTest, ModifyMeasurements) {
    auto d = startWithExample();
    struct Case {
        const char *form;
        const char *message, *row10Horizontal, *row10Distance;
    };
    const Case cases[] = {
        {"Horizontal Angle|0.0100|By Line Number||11|11", "Modified 1 values", "64.3427",
         "453.567"},
        {"Distance|0.5|By Point Number|2-3|1|1", "Modified 2 values", "64.3427", "454.067"},
        {"Vertical Angle|0.0001|By Line Number||100|200", "Modified 0 values", "64.3427",
         "454.067"},
        {"Distance|abc|By Line Number||1|42", "Error: abc is not a number", "64.3427", "454.067"},
    };
    for (const auto &c : cases) {
        shell.reply(c.form);
        d->dispatch(cmd::ModifyMeasurements);
        EXPECT_EQ(shell.messages.back(), c.message) << c.form;
        EXPECT_EQ(cell(*d, 10, 4), c.row10Horizontal) << c.form;
        EXPECT_EQ(cell(*d, 10, 6), c.row10Distance) << c.form;
    }
}

TEST_F(ShellCommandTest, CutCopyAndPaste) {
    auto d = startWithExample();
    d->rawGrid()->setFocus();
    setCurrent(*d, 9, 1);
    d->rawGrid()->selectionModel()->select(
        QItemSelection(d->rawModel()->index(9, 1), d->rawModel()->index(10, 2)),
        QItemSelectionModel::ClearAndSelect);
    d->dispatch(cmd::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), "1\t101\n1\t2");
    setCurrent(*d, 14, 1);
    d->dispatch(cmd::Paste);
    EXPECT_EQ(cell(*d, 14, 2), "101");
    EXPECT_EQ(cell(*d, 15, 2), "2");
    EXPECT_TRUE(d->rawDocument().modified());
    d->rawGrid()->selectionModel()->select(
        QItemSelection(d->rawModel()->index(14, 0), d->rawModel()->index(14, 7)),
        QItemSelectionModel::ClearAndSelect);
    d->dispatch(cmd::Cut);
    EXPECT_EQ(cell(*d, 14, 0), "SS"); // a row keeps its type
    EXPECT_EQ(cell(*d, 14, 2), "");
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("SS\t1\t101\tAR"));
}

TEST_F(ShellCommandTest, PrintWindows) {
    auto d = startWithExample();
    d->dispatch(cmd::PrintRaw);
    ASSERT_NE(d->textWindow(), nullptr);
    EXPECT_EQ(d->textWindow()->windowTitle(), "Edit-Process Raw File");
    EXPECT_TRUE(d->textWindow()->text().startsWith("Edit-Process Raw File\n"));
    EXPECT_EQ(d->textWindow()->text().toStdString(), slurp(workingFolder() / "morvrprt.tmp"));
    shell.reply("7|5000|6000|100.25|IRON ROD");
    d->dispatch(cmd::AddPointToCrd);
    d->dispatch(cmd::PrintCoordinates);
    EXPECT_EQ(d->textWindow()->windowTitle(), "Coordinates");
    EXPECT_TRUE(d->textWindow()->text().contains(
        "7                5000.0000       6000.0000     100.2500  IRON ROD"));
}

// The real print dialogs open from the menu and from a report window.
TEST_F(ShellCommandTest, PrinterSettingsAndPrinting) {
    auto d = startWithExample();
    QString seen;
    tramline::test::whenModal([&seen](QWidget *w) {
        seen = w->metaObject()->className();
        static_cast<QDialog *>(w)->reject();
    });
    d->dispatch(cmd::PrinterSettings);
    EXPECT_EQ(seen, "QPageSetupDialog");
    d->dispatch(cmd::PrintRaw);
    ASSERT_NE(d->textWindow(), nullptr);
    seen.clear();
    tramline::test::whenModal([&seen](QWidget *w) {
        seen = w->metaObject()->className();
        static_cast<QDialog *>(w)->reject();
    });
    for (auto *b : d->textWindow()->findChildren<QPushButton *>())
        if (b->text() == "Print")
            b->click();
    EXPECT_EQ(seen, "QPrintDialog");
}

// Process > Compass on the bundled loop, answered as a surveyor would:
// the traverse starts and ends on 1.
TEST_F(ShellCommandTest, ProcessCompassThroughTheMenu) {
    auto d = startWithExample();
    shell.reply("1|1|Automatic");
    d->dispatch(cmd::ProcessCompass);
    EXPECT_EQ(shell.questions.front(), "Traverse Points");
    ASSERT_NE(d->processResultsWindow(), nullptr);
    ProcessResultsWindow &results = *d->processResultsWindow();
    EXPECT_EQ(results.windowTitle(), "Process Compass Results");
    EXPECT_EQ(results.tabs()->tabText(0), "Report Header");
    EXPECT_TRUE(results.tabText("Compass").contains("Compass Closure"));
    const auto &points = d->coordinateModel()->points();
    EXPECT_EQ(points.size(), 14u);
    const int row = d->coordinateModel()->rowOf("2");
    ASSERT_GE(row, 0);
    EXPECT_NEAR(points[static_cast<size_t>(row)].northing, 5412.337, 0.05);
    EXPECT_NEAR(points[static_cast<size_t>(row)].easting, 5188.914, 0.05);
    EXPECT_TRUE(d->coordinateModified());
    EXPECT_FALSE(d->rawDocument().modified());

    // A second run finds the points stored and asks first; going back to
    // the editor writes nothing.
    shell = {};
    shell.reply("Return To &Editor");
    d->dispatch(cmd::ProcessNoAdjust);
    ASSERT_FALSE(shell.questions.empty());
    EXPECT_EQ(shell.questions.front().rfind("Point Protect: ", 0), 0u);
    EXPECT_EQ(d->coordinateModel()->points().size(), 14u);
}

// Every built method of the table, through its Process menu entry.
TEST_F(ShellCommandTest, EveryMethodRunsOnTheExample) {
    for (const auto &m : reduce::adjustMethods()) {
        if (!m.built)
            continue;
        auto d = startWithExample();
        shell = {};
        shell.reply("1|1|Automatic");
        d->dispatch(m.menuCommand);
        ASSERT_NE(d->processResultsWindow(), nullptr) << m.cliWord;
        EXPECT_EQ(d->processResultsWindow()->windowTitle().toStdString(), m.resultTitle)
            << m.cliWord;
        EXPECT_GE(d->coordinateModel()->rowCount(), 14) << m.cliWord;
    }
}

// Process > Least-Squares: the results window with the report, the
// statistics and the picture, and the adjusted points in the grid.
TEST_F(ShellCommandTest, LeastSquaresShowsItsTabsAndPicture) {
    auto d = startWithExample();
    shell = {};
    d->dispatch(cmd::ProcessLeastSquares);
    auto *window = d->processResultsWindow();
    ASSERT_NE(window, nullptr) << (shell.messages.empty() ? "" : shell.messages.front());
    EXPECT_EQ(window->windowTitle().toStdString(), "Process Least-Squares Results");
    EXPECT_NE(window->tabText("Least-Squares").indexOf("Solution Converged in"), -1);
    EXPECT_NE(window->tabText("Statistics").indexOf("Data Snooping"), -1);
    QSvgWidget *plot = nullptr;
    for (int i = 0; i < window->tabs()->count(); ++i)
        if (window->tabs()->tabText(i) == "Plot")
            plot = qobject_cast<QSvgWidget *>(window->tabs()->widget(i));
    ASSERT_NE(plot, nullptr);
    ASSERT_TRUE(plot->renderer()->isValid());
    // The picture draws something: some pixels are not the white ground.
    QImage image(400, 420, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    plot->renderer()->render(&painter);
    painter.end();
    int inked = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            inked += image.pixel(x, y) != qRgb(255, 255, 255);
    EXPECT_GT(inked, 500);
    if (const char *keep = std::getenv("TRAMLINE_KEEP_PLOT"))
        image.save(QString::fromUtf8(keep));
    EXPECT_GE(d->coordinateModel()->rowCount(), 14);
    const int row = d->coordinateModel()->rowOf("2");
    ASSERT_GE(row, 0);
    EXPECT_NEAR(d->coordinateModel()->points()[static_cast<size_t>(row)].northing, 5412.33, 0.05);
}

// The method table lives below the desktop program and keeps its menu ids
// as numbers; each must be the Process menu's entry of that method.
TEST(MethodTable, MenuIdsAreTheProcessMenusEntries) {
    const std::pair<reduce::AdjustMethod, int> expected[] = {
        {reduce::AdjustMethod::None, cmd::ProcessNoAdjust},
        {reduce::AdjustMethod::AngleBalance, cmd::ProcessAngleBalance},
        {reduce::AdjustMethod::Compass, cmd::ProcessCompass},
        {reduce::AdjustMethod::Crandall, cmd::ProcessCrandall},
        {reduce::AdjustMethod::Transit, cmd::ProcessTransit},
        {reduce::AdjustMethod::LeastSquares, cmd::ProcessLeastSquares},
    };
    ASSERT_EQ(reduce::adjustMethods().size(), std::size(expected));
    for (const auto &[method, id] : expected)
        EXPECT_EQ(reduce::adjustMethodInfo(method).menuCommand, id)
            << reduce::adjustMethodInfo(method).cliWord;
}

TEST_F(ShellCommandTest, ProcessWithoutDataSaysSo) {
    auto d = start();
    d->dispatch(cmd::ProcessCompass);
    EXPECT_EQ(shell.messages, std::vector<std::string>{"Error: unable to read raw file"});
    EXPECT_EQ(d->processResultsWindow(), nullptr);
}

TEST_F(ShellCommandTest, CommandsOfOtherFeaturesSaySoAndUnknownIdsDoNothing) {
    auto d = start();
    struct Case {
        int id;
        const char *message;
    };
    const Case cases[] = {
        {cmd::ExportRawTds, "Tools > Export Raw Data > NY DOT: this command is not available yet."},
        {cmd::ExportRawDgDialog,
         "Tools > Export Raw Data > dgDialog: this command is not available yet."},
        {cmd::GeoidManager, "Tools > Geoid Manager: this command is not available yet."},
    };
    for (const auto &c : cases) {
        shell.messages.clear();
        d->dispatch(c.id);
        EXPECT_EQ(shell.messages, std::vector<std::string>{c.message}) << c.id;
    }
    shell.messages.clear();
    for (int id : {0, -1, 1, 12345, 40009})
        d->dispatch(id);
    EXPECT_TRUE(shell.messages.empty());
    EXPECT_TRUE(shell.questions.empty());
}

TEST_F(ShellCommandTest, SettingsDialogKeepsTheLanguageForTheNextStart) {
    auto d = start();
    shell.forms = {"English=>Cancel", "Windows Setting=>Cancel"};
    d->dispatch(cmd::Settings);
    EXPECT_TRUE(shell.messages.empty());
    d->dispatch(cmd::Settings);
    EXPECT_EQ(shell.asked, (std::vector<std::string>{"Settings", "Settings"}));
    EXPECT_EQ(shell.messages, std::vector<std::string>{"Restart program to reset language"});
    EXPECT_EQ(d->settings().language, LanguageMode::System);
    EXPECT_EQ(d->menuBar()->actions()[0]->text(), "File"); // until the next start
    ASSERT_TRUE(d->exitProgram());
    EXPECT_NE(slurp(settingsFile()).find("lang_mode=1\n"), std::string::npos);
}

TEST_F(ShellCommandTest, ImportRawDataAddsTheRecords) {
    auto d = startWithExample();
    const auto tds =
        write("field.raw", "JB,NMX,DT01-01-2026,TM08:00:00\nMO,AD0,UN2,SF1.00000000,EC0,EO0,AU0\n"
                           "SS,OP7,FP8,AR1.0000,ZE90.0000,SD5.000,--TDS\n");
    shell.files = {tds.string(), tds.string(), (dir / "missing.rw5").string()};
    d->dispatch(cmd::ImportRawTds);
    EXPECT_EQ(d->rawModel()->rowCount(), 43); // job and mode records left out
    d->dispatch(cmd::ImportRawHalvren);
    EXPECT_EQ(d->rawModel()->rowCount(), 46);
    d->dispatch(cmd::ImportRawHalvren);
    EXPECT_EQ(shell.messages.back(), "Error: unable to read raw file");
    EXPECT_EQ(shell.asked,
              (std::vector<std::string>{"TDS Raw File to Import (rw5;raw)",
                                        "Raw File to Add (rw5;sav)", "Raw File to Add (rw5;sav)"}));
}

TEST_F(ShellCommandTest, ProcessSettingsApplyToTheNextRun) {
    auto d = startWithExample();
    shell.reply("1.00010000|Off|Off|On|Off|On|Off|On|Off|Off");
    d->dispatch(cmd::ProcessSettings);
    shell.reply("<cancel>");
    d->dispatch(cmd::ProcessSettings); // a cancelled form changes nothing
    shell.reply("1|1|Automatic");
    d->dispatch(cmd::ProcessCompass);
    ASSERT_NE(d->processResultsWindow(), nullptr);
    EXPECT_TRUE(
        d->processResultsWindow()->tabText("Report Header").contains("Scale Factor: 1.00010000"));
}

} // namespace
