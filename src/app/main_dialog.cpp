#include "app/main_dialog.h"

#include "app/raw_grid_model.h"
#include "base/interaction.h"
#include "base/translation.h"

#include <QHeaderView>
#include <QPushButton>
#include <QMessageBox>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

namespace tramline::app {

namespace {

QTableView *makeGrid(QWidget *parent, int id) {
    auto *grid = new QTableView(parent);
    grid->setObjectName(QStringLiteral("grid%1").arg(id));
    grid->setProperty("controlId", id);
    grid->horizontalHeader()->setStretchLastSection(true);
    grid->verticalHeader()->setDefaultSectionSize(22);
    return grid;
}

// Messages from the core shown as message boxes.
class DialogInteraction : public Interaction {
public:
    explicit DialogInteraction(QWidget *parent) : m_parent(parent) {}
    int choose(const std::string &title, const std::string &message, const std::vector<std::string> &buttons) override {
        QMessageBox box(QMessageBox::Question, QString::fromStdString(title), QString::fromStdString(message),
                        QMessageBox::NoButton, m_parent);
        std::vector<QAbstractButton *> added;
        for (const auto &b : buttons)
            added.push_back(box.addButton(QString::fromStdString(b), QMessageBox::AcceptRole));
        box.exec();
        for (size_t i = 0; i < added.size(); ++i)
            if (box.clickedButton() == added[i])
                return static_cast<int>(i);
        return -1;
    }
    bool fillForm(const std::string &, std::vector<FormField> &) override { return false; }
    void message(const std::string &text) override {
        QMessageBox::warning(m_parent, QString::fromUtf8(tramline::tr("Halvren Tramline")), QString::fromStdString(text));
    }
    void progress(long, long, const std::string &) override {}

private:
    QWidget *m_parent;
};

} // namespace

CKELMADlg::CKELMADlg(QWidget *parent) : QWidget(parent) {
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(3, 3, 3, 3);
    layout->setSpacing(3);
    m_rawGrid = makeGrid(this, kRawGridId);
    m_rawModel = new RawGridModel(m_rawDocument, this);
    m_rawGrid->setModel(m_rawModel);
    m_coordinateGrid = makeGrid(this, kCoordinateGridId);
    auto *coordinates = new QStandardItemModel(0, 5, m_coordinateGrid);
    coordinates->setHorizontalHeaderLabels({"PntNo", "Northing", "Easting", "Elevation", "Description"});
    m_coordinateGrid->setModel(coordinates);
    layout->addWidget(m_rawGrid, 1);
    layout->addWidget(m_coordinateGrid, 1);
    updateTitle();
    resize(1000, 680);
}

CKELMADlg::~CKELMADlg() = default;

bool CKELMADlg::openRawFile(const QString &path) {
    DialogInteraction ui(this);
    raw::RawDocument loaded;
    if (!loaded.open(path.toStdString(), ui))
        return false;
    m_rawDocument = std::move(loaded);
    m_rawModel->reload();
    // Rows of one text (notes, whole records, names) span the cell columns
    // so that they neither get cut nor widen the first cell column.
    m_rawGrid->clearSpans();
    for (size_t r = 0; r < m_rawDocument.rowCount(); ++r)
        if (m_rawDocument.captions(m_rawDocument.row(r).type).size() == 1)
            m_rawGrid->setSpan(static_cast<int>(r), 1, 1, m_rawModel->columnCount() - 1);
    m_rawGrid->setColumnWidth(0, 52);
    for (int c = 1; c < m_rawModel->columnCount() - 1; ++c)
        m_rawGrid->setColumnWidth(c, 96);
    updateTitle();
    return true;
}

void CKELMADlg::updateTitle() {
    setWindowTitle(QStringLiteral("%1 - [RW5: %2] - [CRD: %3]")
                       .arg(QString::fromUtf8(tramline::tr("Halvren Tramline")),
                            QString::fromStdString(m_rawDocument.fileName()), m_coordinateFileName));
}

} // namespace tramline::app
