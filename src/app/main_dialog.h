// The main window: the raw data grid above the coordinate grid.
#pragma once

#include <QWidget>

class QTableView;

namespace tramline::app {

class CKELMADlg : public QWidget {
    Q_OBJECT
public:
    /// Control ids of the two grids.
    static constexpr int kRawGridId = 110;
    static constexpr int kCoordinateGridId = 111;

    explicit CKELMADlg(QWidget *parent = nullptr);

    QTableView *rawGrid() const { return m_rawGrid; }
    QTableView *coordinateGrid() const { return m_coordinateGrid; }

    /// "Halvren Tramline - [RW5: %s] - [CRD: %s]"
    void updateTitle(const QString &rawFile, const QString &coordinateFile);

private:
    QTableView *m_rawGrid;
    QTableView *m_coordinateGrid;
};

} // namespace tramline::app
