// The plan view over the processed example, the menu entries that cannot
// run here, and the results window's units, file name and PDF export.
#include "app/coordinate_grid_model.h"
#include "app/plot_window.h"
#include "app/report_windows.h"
#include "app_test_support.h"

#include <QAction>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QImage>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

using namespace tramline;
using namespace tramline::app;
using tramline::test::slurp;
namespace fs = std::filesystem;

namespace {

class PlotWindowTest : public tramline::test::ShellTest {
protected:
    std::unique_ptr<CKELMADlg> processedExample() {
        auto d = startWithExample();
        shell.reply("1|1|Automatic");
        d->dispatch(cmd::ProcessCompass);
        EXPECT_EQ(d->coordinateModel()->points().size(), 14u);
        return d;
    }
};

TEST(PlotScales, RoundLengthsAndMagnifications) {
    struct Case {
        double maximum, bar;
    };
    for (const auto &c : {Case{150.0, 100.0}, Case{199.0, 100.0}, Case{200.0, 200.0},
                          Case{0.7, 0.5}, Case{4999.0, 2000.0}, Case{0.0, 0.0}})
        EXPECT_DOUBLE_EQ(scaleBarLength(c.maximum), c.bar) << c.maximum;
    // A 0.01 closure on a 2000-wide plot shows at about 200: 20000 times.
    EXPECT_DOUBLE_EQ(closureMagnification(0.01, 2000.0), 20000.0);
    EXPECT_DOUBLE_EQ(closureMagnification(0.03, 2000.0), 5000.0);
    EXPECT_DOUBLE_EQ(closureMagnification(50.0, 2000.0), 2.0);
    EXPECT_DOUBLE_EQ(closureMagnification(500.0, 2000.0), 1.0); // never shrunk
    EXPECT_DOUBLE_EQ(closureMagnification(0.0, 2000.0), 1.0);
}

// One item per point and per measured line: six traverse legs round the
// loop, seven sideshot rays and the closing angle's ray to the azimuth
// mark; the closure drawn magnified.
TEST_F(PlotWindowTest, ShowsThePointsLinesAndClosureOfTheExample) {
    auto d = processedExample();
    d->dispatch(cmd::Plot);
    PlotWindow *plot = d->plotWindow();
    ASSERT_NE(plot, nullptr);
    EXPECT_EQ(plot->windowTitle(), "Plot");
    EXPECT_EQ(plot->count(PlotWindow::PointItem), 14);
    EXPECT_EQ(plot->count(PlotWindow::LegItem), 6);
    EXPECT_EQ(plot->count(PlotWindow::RayItem), 8);
    EXPECT_EQ(plot->count(PlotWindow::ClosureItem), 1);
    EXPECT_GT(plot->closureFactor(), 1.0);

    // North up: point 2 lies north-east of point 1 on the screen too.
    QPointF one, two;
    for (QGraphicsItem *item : plot->scene()->items()) {
        if (item->data(0).toInt() != PlotWindow::PointItem)
            continue;
        if (item->data(1).toString() == "1")
            one = plot->view()->mapFromScene(item->pos());
        if (item->data(1).toString() == "2")
            two = plot->view()->mapFromScene(item->pos());
    }
    EXPECT_LT(two.y(), one.y());
    EXPECT_GT(two.x(), one.x());

    // The wheel zooms in, Fit shows everything again.
    plot->show();
    plot->fit();
    const double fitted = plot->view()->unitsPerPixel();
    const QPointF middle = plot->view()->viewport()->rect().center();
    QWheelEvent wheel(middle, plot->view()->viewport()->mapToGlobal(middle), {}, {0, 240},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(plot->view()->viewport(), &wheel);
    EXPECT_LT(plot->view()->unitsPerPixel(), fitted);
    plot->fit();
    EXPECT_NEAR(plot->view()->unitsPerPixel(), fitted, fitted * 1e-6);
}

TEST_F(PlotWindowTest, SelectionFollowsTheCoordinateGridBothWays) {
    auto d = processedExample();
    d->dispatch(cmd::Plot);
    PlotWindow *plot = d->plotWindow();
    ASSERT_NE(plot, nullptr);
    CoordinateGridModel *model = d->coordinateModel();

    d->coordinateGrid()->setCurrentIndex(model->index(model->rowOf("4"), 1));
    EXPECT_EQ(plot->selectedPoint(), "4");

    for (QGraphicsItem *item : plot->scene()->items())
        if (item->data(0).toInt() == PlotWindow::PointItem && item->data(1).toString() == "103") {
            plot->scene()->clearSelection();
            item->setSelected(true);
        }
    EXPECT_EQ(d->coordinateGrid()->currentIndex().row(), model->rowOf("103"));

    // An edit of the grid moves the point in the plot.
    model->setData(model->index(model->rowOf("103"), 1), "9000");
    for (QGraphicsItem *item : plot->scene()->items())
        if (item->data(0).toInt() == PlotWindow::PointItem && item->data(1).toString() == "103") {
            EXPECT_DOUBLE_EQ(item->pos().y(), -9000.0);
        }
}

TEST_F(PlotWindowTest, ExportsPngPdfAndSvg) {
    auto d = processedExample();
    d->dispatch(cmd::Plot);
    PlotWindow *plot = d->plotWindow();
    ASSERT_NE(plot, nullptr);
    plot->show();
    struct Case {
        const char *name, *start;
    };
    for (const auto &c :
         {Case{"plan.png", "\x89PNG"}, Case{"plan.pdf", "%PDF"}, Case{"plan.svg", "<?xml"}}) {
        shell.files.push_back((dir / c.name).string());
        plot->findChild<QPushButton *>("export")->click();
        EXPECT_EQ(slurp(dir / c.name).rfind(c.start, 0), 0u) << c.name;
    }
    EXPECT_FALSE(QImage(QString::fromStdString((dir / "plan.png").string())).isNull());
    EXPECT_NE(slurp(dir / "plan.svg").find(">2<"), std::string::npos); // a point's name
    EXPECT_TRUE(shell.messages.empty());
}

// Entries whose feature is missing here are shown disabled with the reason.
TEST_F(PlotWindowTest, DeadEntriesAreDisabledWithTheirReason) {
    auto d = start();
    struct Case {
        int id;
        bool enabled;
        const char *reason; ///< empty: only that there is one
    };
    const Case cases[] = {
        {cmd::OpenRaw, true, nullptr},
        {cmd::ProcessCompass, true, nullptr},
        {cmd::ImportRawSokkia, true, nullptr},
        {cmd::ImportPointsText, true, nullptr},
        {cmd::Plot, true, nullptr},
        {cmd::GeoidManager, false, "This command is not available yet."},
        {cmd::TransferSokkiaSdr, true, nullptr},
        {cmd::ImportRawCAndG, false, ""},
        {cmd::ImageTramline, false,
         "The companion program imagery is not installed on this computer."},
        {cmd::TransferQuillan, false,
         "The companion program quilcom is not installed on this computer."},
    };
    for (const auto &c : cases) {
        ASSERT_FALSE(d->actions(c.id).isEmpty()) << c.id;
        QAction *a = d->actions(c.id).front();
        EXPECT_EQ(a->isEnabled(), c.enabled) << c.id;
        EXPECT_EQ(d->unavailableReason(c.id).empty(), c.enabled) << c.id;
        if (c.reason && *c.reason) {
            EXPECT_EQ(a->toolTip().toStdString(), c.reason) << c.id;
        }
    }
}

TEST_F(PlotWindowTest, ResultsNameTheUnitsAndTheUsersFileAndExportPdf) {
    auto d = processedExample();
    ProcessResultsWindow *results = d->processResultsWindow();
    ASSERT_NE(results, nullptr);
    const QString header = results->tabText("Report Header");
    EXPECT_TRUE(header.contains("Units: US Survey Feet, Degrees (ddd.mmss)"))
        << header.toStdString();
    EXPECT_TRUE(header.contains("Coordinate File: NONE")) << header.toStdString();
    EXPECT_FALSE(header.contains("tramlinetmp")) << header.toStdString();

    shell.files.push_back((dir / "results.pdf").string());
    results->findChild<QPushButton *>("exportPdf")->click();
    EXPECT_EQ(slurp(dir / "results.pdf").rfind("%PDF", 0), 0u);
}

// The window opens at two thirds of the screen and where it was left.
TEST_F(PlotWindowTest, WindowPlaceIsRemembered) {
    auto d = start();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_EQ(d->width(), screen.width() * 2 / 3);
    EXPECT_EQ(d->height(), screen.height() * 2 / 3);
    d->setGeometry(QRect(20, 30, 500, 400));
    ASSERT_TRUE(d->exitProgram());
    EXPECT_NE(slurp(settingsFile()).find("window=20,30,500,400\n"), std::string::npos);
    auto again = start();
    EXPECT_EQ(again->geometry(), QRect(20, 30, 500, 400));
}

} // namespace
