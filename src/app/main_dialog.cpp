#include "app/main_dialog.h"

#include "base/translation.h"

#include <QHeaderView>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

namespace tramline::app {

namespace {
QTableView *makeGrid(QWidget *parent, int id, const QStringList &captions) {
    auto *grid = new QTableView(parent);
    grid->setObjectName(QStringLiteral("grid%1").arg(id));
    grid->setProperty("controlId", id);
    auto *model = new QStandardItemModel(0, static_cast<int>(captions.size()), grid);
    model->setHorizontalHeaderLabels(captions);
    grid->setModel(model);
    grid->horizontalHeader()->setStretchLastSection(true);
    return grid;
}
} // namespace

CKELMADlg::CKELMADlg(QWidget *parent) : QWidget(parent) {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(3, 3, 3, 3);
    layout->setSpacing(3);
    m_rawGrid = makeGrid(this, kRawGridId,
                         {"Type", "OcPt", "FsPt", "Code", "HorzAngle", "ZenithAng", "SlopeDist", "Description"});
    m_coordinateGrid = makeGrid(this, kCoordinateGridId, {"PntNo", "Northing", "Easting", "Elevation", "Description"});
    layout->addWidget(m_rawGrid, 1);
    layout->addWidget(m_coordinateGrid, 1);
    updateTitle(QStringLiteral("NONE"), QStringLiteral("NONE"));
    resize(900, 640);
}

void CKELMADlg::updateTitle(const QString &rawFile, const QString &coordinateFile) {
    setWindowTitle(QStringLiteral("%1 - [RW5: %2] - [CRD: %3]")
                       .arg(QString::fromUtf8(tramline::tr("Halvren Tramline")), rawFile, coordinateFile));
}

} // namespace tramline::app
