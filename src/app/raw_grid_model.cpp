#include "app/raw_grid_model.h"

namespace tramline::app {

namespace {
// Observations have the most cells: Type plus seven.
constexpr int kColumns = 8;
} // namespace

RawGridModel::RawGridModel(raw::RawDocument &document, QObject *parent)
    : QAbstractTableModel(parent), m_document(document) {}

int RawGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_document.rowCount());
}

int RawGridModel::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : kColumns; }

QVariant RawGridModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || static_cast<size_t>(index.row()) >= m_document.rowCount())
        return {};
    const raw::RawRow &row = m_document.row(static_cast<size_t>(index.row()));
    if (index.column() == 0) {
        if (role == Qt::DisplayRole)
            return QString::fromStdString(row.type);
        return {};
    }
    const size_t cell = static_cast<size_t>(index.column() - 1);
    if (role == Qt::DisplayRole)
        return cell < row.cells.size() ? QString::fromStdString(row.cells[cell]) : QString();
    if (role == Qt::ToolTipRole) {
        const auto captions = m_document.captions(row.type);
        return cell < captions.size() ? QString::fromStdString(captions[cell]) : QString();
    }
    return {};
}

QVariant RawGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    if (section == 0)
        return QStringLiteral("Type");
    const auto captions = m_document.captions("SS");
    const size_t i = static_cast<size_t>(section - 1);
    return i < captions.size() ? QString::fromStdString(captions[i]) : QString();
}

void RawGridModel::reload() {
    beginResetModel();
    endResetModel();
}

} // namespace tramline::app
