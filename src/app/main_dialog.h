// The main window: the raw data grid above the coordinate grid.
#pragma once

#include "raw/document.h"

#include <QWidget>

class QTableView;

namespace tramline::app {

class RawGridModel;

class CKELMADlg : public QWidget {
    Q_OBJECT
public:
    /// Control ids of the two grids.
    static constexpr int kRawGridId = 110;
    static constexpr int kCoordinateGridId = 111;

    explicit CKELMADlg(QWidget *parent = nullptr);
    ~CKELMADlg() override;

    QTableView *rawGrid() const { return m_rawGrid; }
    QTableView *coordinateGrid() const { return m_coordinateGrid; }
    const raw::RawDocument &rawDocument() const { return m_rawDocument; }

    /// Opens a raw file into the raw grid; shows the error message and
    /// keeps the grid as it was when the file cannot be read.
    bool openRawFile(const QString &path);

    /// "Halvren Tramline - [RW5: %s] - [CRD: %s]"
    void updateTitle();

private:
    raw::RawDocument m_rawDocument;
    RawGridModel *m_rawModel;
    QTableView *m_rawGrid;
    QTableView *m_coordinateGrid;
    QString m_coordinateFileName = QStringLiteral("NONE");
};

} // namespace tramline::app
