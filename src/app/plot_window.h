// The "Plot" window: the plan view of the job, north up. Points of the
// coordinate grid with their names, the traverse legs and sideshot rays,
// the closure vector magnified, a scale bar and a north arrow. The wheel
// zooms, dragging pans, Fit shows everything; the view prints and exports
// as PNG, PDF and SVG. A point picked here is the coordinate grid's
// current row, and the other way round.
#pragma once

#include "app/plot_data.h"

#include <QGraphicsView>
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
};

class PlotWindow : public QWidget {
    Q_OBJECT
public:
    /// The kinds of item the scene holds (item data 0), item data 1 the
    /// point's name or the line's "from-to".
    enum ItemKind { PointItem = 1, LegItem, RayItem, ClosureItem, LabelItem };

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

    QGraphicsScene *m_scene;
    PlotView *m_view;
    QPrinter *m_printer;
    double m_closureFactor = 1.0;
    bool m_selecting = false;
    bool m_following = true; ///< fitted and not zoomed since: refit on resizing
};

} // namespace tramline::app
