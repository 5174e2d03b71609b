#include "app/plot_window.h"

#include "app/qt_text.h"
#include "base/format.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QHBoxLayout>
#include <QImage>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QResizeEvent>
#include <QSvgGenerator>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <cmath>

namespace tramline::app {

namespace {

// Scene coordinates: x east, y south, so that north is up on the screen.
QPointF at(double north, double east) {
    return {east, -north};
}

const char *lengthSymbol(LinearUnit unit) {
    return unit == LinearUnit::Metres ? "m" : "ft";
}

} // namespace

PlotView::PlotView(QGraphicsScene *scene, QWidget *parent) : QGraphicsView(scene, parent) {
    setObjectName(QStringLiteral("plotView"));
    setDragMode(QGraphicsView::ScrollHandDrag);
    setRenderHint(QPainter::Antialiasing);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setBackgroundBrush(Qt::white);
}

void PlotView::zoom(double factor) {
    const auto anchor = transformationAnchor();
    setTransformationAnchor(QGraphicsView::AnchorViewCenter);
    scale(factor, factor);
    setTransformationAnchor(anchor);
}

double PlotView::unitsPerPixel() const {
    const double m = transform().m11();
    return m > 0.0 ? 1.0 / m : 1.0;
}

void PlotView::wheelEvent(QWheelEvent *event) {
    const int steps = event->angleDelta().y() / 120;
    if (steps == 0) {
        event->ignore();
        return;
    }
    const double factor = std::pow(1.25, steps);
    scale(factor, factor);
    viewport()->update(); // the scale bar changes with the zoom
    event->accept();
    emit zoomed();
}

void PlotView::resizeEvent(QResizeEvent *event) {
    QGraphicsView::resizeEvent(event);
    emit resized();
}

// The north arrow (top right) and the scale bar (bottom left) keep their
// size on screen: they are drawn in pixels from the corner of the exposed
// rectangle, whatever the painter's transform (screen, printer, SVG).
void PlotView::drawForeground(QPainter *painter, const QRectF &rect) {
    const double perPixel = rect.width() / std::max(1, viewport()->width());
    if (!(perPixel > 0.0))
        return;
    painter->save();
    QFont font = painter->font();
    font.setPixelSize(12);

    painter->save();
    painter->translate(rect.topRight());
    painter->scale(perPixel, perPixel);
    painter->setFont(font);
    painter->setPen(QPen(Qt::black, 1.5));
    const QPointF tip(-30, 14), base(-30, 54);
    painter->drawLine(base, tip);
    painter->setBrush(Qt::black);
    painter->drawPolygon(QPolygonF({tip, QPointF(-36, 28), QPointF(-24, 28)}));
    painter->drawText(QRectF(-40, 56, 20, 16), Qt::AlignCenter, QStringLiteral("N"));
    painter->restore();

    painter->save();
    painter->translate(rect.bottomLeft());
    painter->scale(perPixel, perPixel);
    painter->setFont(font);
    const double length = scaleBarLength(150.0 * perPixel);
    if (length > 0.0) {
        const double pixels = length / perPixel;
        painter->setPen(QPen(Qt::black, 2));
        painter->drawLine(QPointF(14, -18), QPointF(14 + pixels, -18));
        painter->drawLine(QPointF(14, -24), QPointF(14, -12));
        painter->drawLine(QPointF(14 + pixels, -24), QPointF(14 + pixels, -12));
        painter->drawText(QRectF(14, -42, pixels + 60, 16), Qt::AlignLeft | Qt::AlignVCenter,
                          qstr(format("%g %s", length, lengthSymbol(m_unit))));
    }
    painter->restore();

    // The legend: what is magnified and by how much.
    painter->save();
    painter->translate(rect.bottomRight());
    painter->scale(perPixel, perPixel);
    painter->setFont(font);
    const QFontMetricsF metrics(font);
    double y = -14;
    for (auto line = m_legend.crbegin(); line != m_legend.crend(); ++line) {
        const double width = metrics.horizontalAdvance(line->first) + 4;
        painter->setPen(line->second);
        painter->drawText(QRectF(-14 - width, y - 16, width, 16), Qt::AlignRight | Qt::AlignVCenter,
                          line->first);
        y -= 18;
    }
    painter->restore();
    painter->restore();
}

void PlotView::setLegend(const QList<QPair<QString, QColor>> &lines) {
    m_legend = lines;
    viewport()->update();
}

PlotWindow::PlotWindow(QPrinter *printer, QWidget *parent)
    : QWidget(parent, Qt::Window), m_scene(new QGraphicsScene(this)),
      m_view(new PlotView(m_scene, this)), m_printer(printer) {
    setObjectName(QStringLiteral("plotWindow"));
    setWindowTitle(qtr("Plot"));
    auto *fitButton = new QPushButton(qtr("Fit"), this);
    fitButton->setObjectName(QStringLiteral("fit"));
    auto *exportButton = new QPushButton(qtr("Export..."), this);
    exportButton->setObjectName(QStringLiteral("export"));
    auto *printButton = new QPushButton(qtr("Print"), this);
    printButton->setObjectName(QStringLiteral("print"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(fitButton);
    buttons->addStretch();
    buttons->addWidget(exportButton);
    buttons->addWidget(printButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_view);
    layout->addLayout(buttons);
    connect(fitButton, &QPushButton::clicked, this, &PlotWindow::fit);
    // A fitted plan stays fitted as the window is sized, until the user zooms.
    connect(m_view, &PlotView::zoomed, this, [this] {
        m_following = false;
        placeLabels();
    });
    connect(m_view, &PlotView::resized, this, [this] {
        if (m_following)
            fit();
        else
            placeLabels();
    });
    connect(exportButton, &QPushButton::clicked, this, &PlotWindow::exportRequested);
    connect(printButton, &QPushButton::clicked, this, &PlotWindow::print);
    connect(m_scene, &QGraphicsScene::selectionChanged, this, [this] {
        const QString name = selectedPoint();
        if (!m_selecting && !name.isEmpty())
            emit pointPicked(name);
    });
    resize(900, 700);
}

void PlotWindow::setData(const PlotData &plot, bool fitView) {
    m_scene->clear();
    m_view->setUnit(plot.unit);
    QPen leg(QColor(20, 60, 160), 2);
    leg.setCosmetic(true);
    QPen ray(QColor(120, 120, 120), 1, Qt::DashLine);
    ray.setCosmetic(true);
    for (const auto &line : plot.lines) {
        auto *item = m_scene->addLine(
            QLineF(at(line.fromNorth, line.fromEast), at(line.toNorth, line.toEast)),
            line.traverse ? leg : ray);
        item->setData(0, line.traverse ? LegItem : RayItem);
        item->setData(1, qstr(line.from + "-" + line.to));
        item->setZValue(line.traverse ? 1 : 0);
    }
    for (const auto &p : plot.points) {
        auto *dot = m_scene->addEllipse(QRectF(-4, -4, 8, 8), QPen(Qt::black, 1),
                                        QBrush(QColor(230, 120, 0)));
        dot->setFlag(QGraphicsItem::ItemIgnoresTransformations);
        dot->setFlag(QGraphicsItem::ItemIsSelectable);
        dot->setPos(at(p.northing, p.easting));
        dot->setZValue(3);
        dot->setData(0, PointItem);
        dot->setData(1, qstr(p.name));
        dot->setToolTip(qstr(p.name + (p.description.empty() ? "" : "  " + p.description)));
        auto *label = new QGraphicsSimpleTextItem(qstr(p.name), dot);
        label->setPos(6, -18);
        label->setData(0, LabelItem);
    }
    QRectF extent;
    for (const auto &p : plot.points)
        extent |= QRectF(at(p.northing, p.easting), QSizeF(1e-9, 1e-9));
    const double plotSize = std::max(extent.width(), extent.height());
    QList<QPair<QString, QColor>> legend;

    const QColor ellipseColour(0, 130, 60);
    m_ellipseFactor = ellipseMagnification(plot.ellipses, plotSize);
    QPen ellipsePen(ellipseColour, 1.5);
    ellipsePen.setCosmetic(true);
    for (const auto &e : plot.ellipses) {
        const double a = e.semiMajor * m_ellipseFactor, b = e.semiMinor * m_ellipseFactor;
        auto *item = m_scene->addEllipse(QRectF(-a, -b, 2 * a, 2 * b), ellipsePen);
        item->setPos(at(e.north, e.east));
        // The rectangle's x axis is east; the azimuth turns clockwise from
        // north, and so does a rotation on the north-up screen.
        item->setRotation(e.azimuth - 90.0);
        item->setZValue(2);
        item->setData(0, EllipseItem);
        item->setData(1, qstr(e.at));
    }
    if (!plot.ellipses.empty())
        legend.append({qstr(format(tramline::tr("Error ellipses (95%%) x %g"), m_ellipseFactor)),
                       ellipseColour});

    const QColor residualColour(170, 0, 170);
    m_residualFactor = plot.residuals.empty() ? 1.0 : plot.residualFactor;
    QPen residualPen(residualColour, 2);
    residualPen.setCosmetic(true);
    for (const auto &r : plot.residuals) {
        auto *item = m_scene->addLine(
            QLineF(at(r.north, r.east), at(r.north + m_residualFactor * r.errorNorth,
                                           r.east + m_residualFactor * r.errorEast)),
            residualPen);
        item->setZValue(2);
        item->setData(0, ResidualItem);
        item->setData(1, qstr(r.at));
    }
    if (!plot.residuals.empty())
        legend.append({qstr(format(tramline::tr("Localization residuals x %g"), m_residualFactor)),
                       residualColour});

    m_closureFactor = 1.0;
    m_closureLabel = nullptr;
    if (plot.closure && !plot.points.empty()) {
        const auto &c = *plot.closure;
        m_closureFactor = closureMagnification(std::hypot(c.errorNorth, c.errorEast), plotSize);
        const QColor closureColour(200, 0, 0);
        QPen pen(closureColour, 2);
        pen.setCosmetic(true);
        const QPointF from = at(c.north, c.east);
        const QPointF to =
            at(c.north + m_closureFactor * c.errorNorth, c.east + m_closureFactor * c.errorEast);
        auto *vector = m_scene->addLine(QLineF(from, to), pen);
        vector->setZValue(2);
        vector->setData(0, ClosureItem);
        vector->setData(1, qstr(c.at));
        const QString text = qstr(format(tramline::tr("Closure x %g"), m_closureFactor));
        auto *label = m_scene->addSimpleText(text);
        label->setBrush(closureColour);
        label->setFlag(QGraphicsItem::ItemIgnoresTransformations);
        label->setPos(to);
        label->setZValue(4);
        label->setData(0, LabelItem);
        label->setData(1, qstr(c.at));
        m_closureLabel = label;
        m_closureFrom = from;
        legend.append({text, closureColour});
    }
    m_view->setLegend(legend);
    if (fitView)
        fit();
}

void PlotWindow::fit() {
    QRectF bounds = m_scene->itemsBoundingRect();
    if (bounds.isEmpty())
        bounds.adjust(-1, -1, 1, 1);
    // Room around the points for their names and the arrow.
    const double margin = std::max(bounds.width(), bounds.height()) * 0.08 + 1e-6;
    bounds.adjust(-margin, -margin, margin, margin);
    m_scene->setSceneRect(bounds.adjusted(-10 * margin, -10 * margin, 10 * margin, 10 * margin));
    m_view->fitInView(bounds, Qt::KeepAspectRatio);
    m_view->viewport()->update();
    m_following = true;
    placeLabels();
}

QRectF PlotWindow::shownRect(const QGraphicsItem *item) const {
    return item->deviceTransform(m_view->viewportTransform()).mapRect(item->boundingRect());
}

// The closure ends near a point more often than not (a loop closes on its
// start), so its label tries the places around the vector's tip, beyond it
// first, and takes the first that covers no point and no name; when all
// are taken, the one that covers least.
void PlotWindow::placeLabels() {
    if (!m_closureLabel)
        return;
    std::vector<QRectF> taken;
    for (QGraphicsItem *item : m_scene->items())
        if (item != m_closureLabel &&
            (item->data(0).toInt() == PointItem || item->data(0).toInt() == LabelItem))
            taken.push_back(shownRect(item).adjusted(-2, -2, 2, 2));
    const QTransform toView = m_view->viewportTransform();
    const QPointF tip = toView.map(m_closureLabel->pos());
    QPointF along = tip - toView.map(m_closureFrom);
    const double length = std::hypot(along.x(), along.y());
    along = length > 0.5 ? along / length : QPointF(1, 0);
    const QPointF across(-along.y(), along.x());
    const QSizeF size = m_closureLabel->boundingRect().size();
    // From a centre to the label's edge in a direction, plus a gap.
    auto reach = [&](QPointF d) {
        return size.width() / 2 * std::abs(d.x()) + size.height() / 2 * std::abs(d.y()) + 4;
    };
    const QPointF directions[] = {along,
                                  across,
                                  -across,
                                  (along + across) / std::sqrt(2.0),
                                  (along - across) / std::sqrt(2.0),
                                  -along};
    QPointF best;
    double bestCover = -1;
    for (int ring = 1; ring <= 3 && bestCover != 0.0; ++ring)
        for (const QPointF &d : directions) {
            const QPointF centre = tip + d * (reach(d) + (ring - 1) * size.height());
            const QRectF rect(centre - QPointF(size.width() / 2, size.height() / 2), size);
            double cover = 0.0;
            for (const QRectF &t : taken) {
                const QRectF overlap = rect.intersected(t);
                cover += overlap.width() * overlap.height();
            }
            if (bestCover < 0 || cover < bestCover) {
                bestCover = cover;
                best = rect.topLeft() - tip;
            }
            if (cover == 0.0)
                break;
        }
    m_closureLabel->setTransform(QTransform::fromTranslate(best.x(), best.y()));
}

QStringList PlotWindow::legend() const {
    QStringList lines;
    for (const auto &line : m_view->legend())
        lines << line.first;
    return lines;
}

void PlotWindow::selectPoint(const QString &name) {
    m_selecting = true;
    m_scene->clearSelection();
    for (QGraphicsItem *item : m_scene->items())
        if (item->data(0).toInt() == PointItem && item->data(1).toString() == name) {
            item->setSelected(true);
            m_view->ensureVisible(item);
        }
    m_selecting = false;
}

QString PlotWindow::selectedPoint() const {
    for (QGraphicsItem *item : m_scene->selectedItems())
        if (item->data(0).toInt() == PointItem)
            return item->data(1).toString();
    return {};
}

int PlotWindow::count(ItemKind kind) const {
    int n = 0;
    for (QGraphicsItem *item : m_scene->items())
        n += item->data(0).toInt() == kind;
    return n;
}

void PlotWindow::renderTo(QPainter &painter, const QRectF &target) {
    m_view->render(&painter, target, m_view->viewport()->rect());
}

bool PlotWindow::exportTo(const QString &path) {
    const QSize size = m_view->viewport()->size();
    const QString lower = path.toLower();
    if (lower.endsWith(QLatin1String(".svg"))) {
        QSvgGenerator svg;
        svg.setFileName(path);
        svg.setSize(size);
        svg.setViewBox(QRect(QPoint(0, 0), size));
        svg.setTitle(windowTitle());
        QPainter painter;
        if (!painter.begin(&svg))
            return false;
        renderTo(painter, QRectF(QPointF(0, 0), size));
        return painter.end();
    }
    if (lower.endsWith(QLatin1String(".pdf"))) {
        QPrinter pdf(QPrinter::HighResolution);
        pdf.setOutputFormat(QPrinter::PdfFormat);
        pdf.setOutputFileName(path);
        pdf.setPageOrientation(size.width() > size.height() ? QPageLayout::Landscape
                                                            : QPageLayout::Portrait);
        QPainter painter;
        if (!painter.begin(&pdf))
            return false;
        renderTo(painter,
                 QRectF(QPointF(0, 0), pdf.pageLayout().paintRectPixels(pdf.resolution()).size()));
        return painter.end();
    }
    QImage image(size * 2, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderTo(painter, QRectF(QPointF(0, 0), size * 2));
    painter.end();
    return image.save(path, "PNG");
}

void PlotWindow::print() {
    if (!m_printer)
        return;
    QPrintDialog dialog(m_printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QPainter painter;
    if (!painter.begin(m_printer))
        return;
    renderTo(painter,
             QRectF(QPointF(0, 0),
                    m_printer->pageLayout().paintRectPixels(m_printer->resolution()).size()));
    painter.end();
}

} // namespace tramline::app
