// The "Plot" window: the plan view of the job, north up. Points of the
// coordinate grid with their names, the traverse legs and sideshot rays,
// the closure vector magnified, a scale bar and a north arrow. The wheel
// zooms, dragging pans, Fit shows everything; the view prints and exports
// as PNG, PDF and SVG. A point picked here is the coordinate grid's
// current row, and the other way round.
#pragma once

#include "app/plot_data.h"

#include <QGraphicsView>
#include <QList>
#include <QPair>
#include <QStringList>
#include <QWidget>

class QGraphicsScene;
class QPrinter;

namespace tramline::app {

/// The view: wheel zoom about the mouse, hand-drag panning, the scale bar
/// and north arrow drawn over the scene at a fixed size on screen.
class PlotView : public QGraphicsView {
    Q_OBJECT
public:
    explicit PlotView(QGraphicsScene *scene, QWidget *parent = nullptr);
    void setUnit(LinearUnit unit) { m_unit = unit; }
    /// Lines drawn in the bottom right corner, each in its colour.
    void setLegend(const QList<QPair<QString, QColor>> &lines);
    const QList<QPair<QString, QColor>> &legend() const { return m_legend; }
    /// Zooms by `factor` about the view's centre (the wheel's step is 1.25).
    void zoom(double factor);
    /// Scene units per pixel at the current zoom.
    double unitsPerPixel() const;

signals:
    /// The user zoomed: the view no longer follows the window's size.
    void zoomed();
    void resized();

protected:
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void drawForeground(QPainter *painter, const QRectF &rect) override;

private:
    LinearUnit m_unit = LinearUnit::Metres;
    QList<QPair<QString, QColor>> m_legend;
};

class PlotWindow : public QWidget {
    Q_OBJECT
public:
    /// The kinds of item the scene holds (item data 0), item data 1 the
    /// point's name or the line's "from-to".
    enum ItemKind {
        PointItem = 1,
        LegItem,
        RayItem,
        ClosureItem,
        LabelItem,
        EllipseItem,  ///< a 95 % error ellipse, magnified
        ResidualItem, ///< a localization residual, magnified
    };

    PlotWindow(QPrinter *printer, QWidget *parent = nullptr);

    /// Draws `data` afresh and, with `fitView`, fits it into the window.
    void setData(const PlotData &plot, bool fitView = true);
    /// Shows every item in the window.
    void fit();
    /// Selects the point of this name (nothing when it is not drawn)
    /// without announcing it.
    void selectPoint(const QString &name);
    QString selectedPoint() const;
    /// The factor the closure vector is drawn with (1 without one).
    double closureFactor() const { return m_closureFactor; }
    /// The factors of the error ellipses and residual vectors (1 without).
    double ellipseFactor() const { return m_ellipseFactor; }
    double residualFactor() const { return m_residualFactor; }
    /// The legend's lines, as drawn in the corner of the view.
    QStringList legend() const;
    /// The closure's label, nullptr without a closure.
    QGraphicsItem *closureLabel() const { return m_closureLabel; }
    /// Where an item that keeps its size on screen shows, in view pixels.
    QRectF shownRect(const QGraphicsItem *item) const;

    /// Writes the view to a file whose extension chooses the format
    /// (png, pdf, svg). False when it could not be written.
    bool exportTo(const QString &path);
    void print();

    PlotView *view() const { return m_view; }
    QGraphicsScene *scene() const { return m_scene; }
    /// How many items of a kind the scene holds.
    int count(ItemKind kind) const;

signals:
    /// The user picked a point in the plot.
    void pointPicked(const QString &name);
    /// The user asked to export: the shell asks for the file name.
    void exportRequested();

private:
    void renderTo(QPainter &painter, const QRectF &target);
    /// Moves the closure's label to where it covers no point or name.
    void placeLabels();

    QGraphicsScene *m_scene;
    PlotView *m_view;
    QPrinter *m_printer;
    double m_closureFactor = 1.0;
    double m_ellipseFactor = 1.0;
    double m_residualFactor = 1.0;
    QGraphicsItem *m_closureLabel = nullptr;
    QPointF m_closureFrom; ///< where the closure vector starts, scene
    bool m_selecting = false;
    bool m_following = true; ///< fitted and not zoomed since: refit on resizing
};

} // namespace tramline::app
