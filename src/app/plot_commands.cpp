// Display > Plot: the plan view beside the grids, kept in step with the
// coordinate grid (its points and its current row).
#include "app/coordinate_grid_model.h"
#include "app/main_dialog.h"
#include "app/plot_window.h"
#include "app/qt_text.h"
#include "app/shell_prompts.h"
#include "base/format.h"
#include "geodesy/localization_plot.h"

#include <QItemSelectionModel>
#include <QTableView>

namespace tramline::app {

PlotData CKELMADlg::plotDataNow() const {
    PlotData plot = plotData(m_rawDocument, m_coordinateModel->points());
    if (m_lastClosure) {
        const auto &c = *m_lastClosure;
        plot.closure = PlotClosure{c.point, c.north, c.east, c.errorNorth, c.errorEast};
    }
    for (const auto &e : m_lastEllipses)
        plot.ellipses.push_back({e.point, e.north, e.east, e.semiMajor, e.semiMinor, e.azimuth});
    plot.residuals = m_lastResiduals;
    plot.residualFactor = m_residualFactor;
    return plot;
}

void CKELMADlg::keepResiduals(const geodesy::Localization &localization) {
    m_lastResiduals.clear();
    const auto &points = localization.points;
    const auto &residuals = localization.residuals.points;
    for (std::size_t i = 0; i < points.size() && i < residuals.size(); ++i) {
        const auto &p = points[i];
        m_lastResiduals.push_back({p.description, p.localY, p.localX,
                                   residuals[i].computedY - p.localY,
                                   residuals[i].computedX - p.localX});
    }
    m_residualFactor = geodesy::residualPlotFactor(localization);
}

void CKELMADlg::showPlot() {
    if (!m_plot) {
        m_plot = new PlotWindow(m_printer.get(), this);
        m_plot->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_plot, &PlotWindow::pointPicked, this, [this](const QString &name) {
            const int row = m_coordinateModel->rowOf(sstr(name));
            if (row < 0)
                return;
            const QModelIndex index = m_coordinateModel->index(row, 0);
            m_coordinateGrid->setCurrentIndex(index);
            m_coordinateGrid->scrollTo(index);
        });
        connect(m_coordinateGrid->selectionModel(), &QItemSelectionModel::currentRowChanged, m_plot,
                [this](const QModelIndex &current) {
                    if (m_plot && current.isValid())
                        m_plot->selectPoint(m_coordinateModel->cellText(current.row(), 0));
                });
        connect(m_plot, &PlotWindow::exportRequested, this, [this] {
            const std::string path =
                prompts().askFileName(tramline::tr("Export Plot"), "png;pdf;svg", true);
            if (!path.empty() && !m_plot->exportTo(qstr(path)))
                ui().message(format(tramline::tr("Can't open output file %s"), path.c_str()));
        });
        m_plot->setData(plotDataNow());
    } else {
        m_plot->setData(plotDataNow(), false);
    }
    m_plot->show();
    m_plot->raise();
    const QModelIndex current = m_coordinateGrid->currentIndex();
    if (current.isValid())
        m_plot->selectPoint(m_coordinateModel->cellText(current.row(), 0));
}

void CKELMADlg::refreshPlot() {
    if (m_plot)
        m_plot->setData(plotDataNow(), false);
}

} // namespace tramline::app
