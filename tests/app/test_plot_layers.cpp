// What the plan view draws over the points: the error ellipses of a
// least-squares run and the residuals of a localization, each magnified
// by the factor its legend states, and a closure label that covers no
// point and no name.
#include "app/plot_window.h"
#include "app_test_support.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsScene>

#include <cmath>
#include <set>

using namespace tramline;
using namespace tramline::app;

namespace {

std::vector<QGraphicsItem *> itemsOf(const PlotWindow &plot, PlotWindow::ItemKind kind) {
    std::vector<QGraphicsItem *> found;
    for (QGraphicsItem *item : plot.scene()->items())
        if (item->data(0).toInt() == kind)
            found.push_back(item);
    return found;
}

// A square 1000 on a side with a point in each corner.
PlotData square() {
    PlotData data;
    const double corners[][2] = {{0, 0}, {1000, 0}, {1000, 1000}, {0, 1000}};
    int name = 1;
    for (const auto &c : corners) {
        crd::CrdPoint p;
        p.set(c[0], c[1], 0.0, std::to_string(name++), "");
        data.points.push_back(p);
    }
    return data;
}

TEST(PlotLayers, EllipseMagnificationKeepsTheLargestWithinATwentieth) {
    struct Case {
        std::vector<double> semiMajors;
        double plotSize, factor;
    };
    const Case cases[] = {
        {{0.05}, 2000.0, 2000.0},         // exactly a twentieth
        {{0.03}, 2000.0, 2000.0},         // 3333 rounds down
        {{0.012, 0.004}, 2000.0, 5000.0}, // the largest decides
        {{0.004, 0.012}, 2000.0, 5000.0}, // wherever it stands
        {{500.0}, 2000.0, 0.2},           // larger than the network: shrunk
        {{}, 2000.0, 1.0},
        {{0.0}, 2000.0, 1.0},
    };
    for (const auto &c : cases) {
        std::vector<PlotEllipse> ellipses;
        for (double a : c.semiMajors)
            ellipses.push_back({"P", 0, 0, a, a / 2, 0});
        EXPECT_DOUBLE_EQ(ellipseMagnification(ellipses, c.plotSize), c.factor)
            << c.semiMajors.size() << " " << c.plotSize;
    }
}

// Each ellipse lies at its point, magnified, its major axis along the
// azimuth (clockwise from north, north up on the screen).
TEST(PlotLayers, EllipsesShowMagnifiedAlongTheirAzimuth) {
    test::application();
    PlotData data = square();
    data.ellipses = {{"2", 1000, 0, 0.02, 0.01, 30.0}, {"3", 1000, 1000, 0.04, 0.01, 120.0}};
    PlotWindow plot(nullptr);
    plot.setData(data);
    const double factor = plot.ellipseFactor();
    EXPECT_DOUBLE_EQ(factor, 1000.0); // 1000 / 20 / 0.04 = 1250
    EXPECT_EQ(plot.legend(), QStringList{"Error ellipses (95%) x 1000"});
    const auto ellipses = itemsOf(plot, PlotWindow::EllipseItem);
    ASSERT_EQ(ellipses.size(), 2u);
    for (QGraphicsItem *item : ellipses) {
        const auto &e = item->data(1).toString() == "2" ? data.ellipses[0] : data.ellipses[1];
        EXPECT_EQ(item->pos(), QPointF(e.east, -e.north)) << e.at;
        const auto *shape = static_cast<QGraphicsEllipseItem *>(item);
        EXPECT_DOUBLE_EQ(shape->rect().width(), 2 * e.semiMajor * factor) << e.at;
        EXPECT_DOUBLE_EQ(shape->rect().height(), 2 * e.semiMinor * factor) << e.at;
        // The end of the major axis, as north and east from the point.
        const QPointF end = item->mapToScene(QPointF(shape->rect().width() / 2, 0)) - item->pos();
        const double azimuth = std::atan2(end.x(), -end.y()) * 180.0 / M_PI;
        EXPECT_NEAR(std::fmod(azimuth + 360.0, 180.0), e.azimuth, 1e-9) << e.at;
    }
}

// A residual runs from the local position towards the computed one,
// magnified by the localization's own factor.
TEST(PlotLayers, ResidualsPointFromTheLocalPositionMagnified) {
    test::application();
    PlotData data = square();
    data.residuals = {{"1", 0, 0, 0.01, -0.02}, {"3", 1000, 1000, -0.03, 0.0}};
    data.residualFactor = 5000.0;
    PlotWindow plot(nullptr);
    plot.setData(data);
    EXPECT_DOUBLE_EQ(plot.residualFactor(), 5000.0);
    EXPECT_EQ(plot.legend(), QStringList{"Localization residuals x 5000"});
    const auto residuals = itemsOf(plot, PlotWindow::ResidualItem);
    ASSERT_EQ(residuals.size(), 2u);
    for (QGraphicsItem *item : residuals) {
        const auto &r = item->data(1).toString() == "1" ? data.residuals[0] : data.residuals[1];
        const QLineF line = static_cast<QGraphicsLineItem *>(item)->line();
        EXPECT_EQ(line.p1(), QPointF(r.east, -r.north)) << r.at;
        EXPECT_NEAR(line.p2().x(), r.east + 5000.0 * r.errorEast, 1e-9) << r.at;
        EXPECT_NEAR(line.p2().y(), -(r.north + 5000.0 * r.errorNorth), 1e-9) << r.at;
    }
    // Without residuals nothing is said about them.
    plot.setData(square());
    EXPECT_TRUE(plot.legend().isEmpty());
    EXPECT_EQ(plot.count(PlotWindow::ResidualItem), 0);
}

class PlotLayersShellTest : public test::ShellTest {};

// Process > Least-Squares on the example: one ellipse per adjusted point,
// none for the control, and the factor in the legend.
TEST_F(PlotLayersShellTest, LeastSquaresDrawsAnEllipsePerAdjustedPoint) {
    auto d = startWithExample();
    d->dispatch(cmd::ProcessLeastSquares);
    ASSERT_NE(d->processResultsWindow(), nullptr) << testing::PrintToString(shell.messages);
    d->dispatch(cmd::Plot);
    PlotWindow *plot = d->plotWindow();
    ASSERT_NE(plot, nullptr);
    std::set<QString> names;
    for (QGraphicsItem *item : itemsOf(*plot, PlotWindow::EllipseItem))
        names.insert(item->data(1).toString());
    EXPECT_EQ(names.size(), static_cast<size_t>(plot->count(PlotWindow::EllipseItem)));
    EXPECT_EQ(names.size(), 12u); // every point but the two held
    EXPECT_FALSE(names.contains("1")) << "a control point is held";
    EXPECT_FALSE(names.contains("100")) << "a control point is held";
    EXPECT_TRUE(names.contains("4"));
    const QStringList legend = plot->legend();
    ASSERT_FALSE(legend.isEmpty());
    EXPECT_EQ(legend.front(), QString("Error ellipses (95%) x %1").arg(plot->ellipseFactor()));

    // A method without least squares leaves no ellipses behind.
    shell.reply("1|1|Automatic");
    d->dispatch(cmd::ProcessCompass);
    EXPECT_EQ(plot->count(PlotWindow::EllipseItem), 0);
}

// The example's loop closes on point 1: the closure label sits where it
// covers neither point 1 nor any other point or name, whatever the size of
// the window and after zooming.
TEST_F(PlotLayersShellTest, TheClosureLabelCoversNoPointOrName) {
    auto d = startWithExample();
    shell.reply("1|1|Automatic");
    d->dispatch(cmd::ProcessCompass);
    d->dispatch(cmd::Plot);
    PlotWindow *plot = d->plotWindow();
    ASSERT_NE(plot, nullptr);
    ASSERT_NE(plot->closureLabel(), nullptr);
    plot->show();
    const QSize sizes[] = {{900, 700}, {500, 400}, {1400, 900}};
    for (const QSize &size : sizes) {
        for (bool zoomed : {false, true}) {
            plot->resize(size);
            QApplication::processEvents();
            plot->fit();
            if (zoomed) {
                plot->view()->zoom(1.25);
                emit plot->view()->zoomed();
            }
            const QRectF label = plot->shownRect(plot->closureLabel());
            for (QGraphicsItem *item : plot->scene()->items()) {
                const int kind = item->data(0).toInt();
                if (item == plot->closureLabel() ||
                    (kind != PlotWindow::PointItem && kind != PlotWindow::LabelItem))
                    continue;
                EXPECT_FALSE(label.intersects(plot->shownRect(item)))
                    << size.width() << "x" << size.height() << (zoomed ? " zoomed " : " ")
                    << item->data(1).toString().toStdString();
            }
        }
    }
}

} // namespace
