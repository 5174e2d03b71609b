#include "app/raw_grid_model.h"

#include "app/qt_text.h"
#include "raw/classify.h"

#include <QComboBox>

namespace tramline::app {

RawGridModel::RawGridModel(raw::RawDocument &document, QObject *parent)
    : QAbstractTableModel(parent), m_document(document) {}

int RawGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_document.rowCount());
}

int RawGridModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : kColumns;
}

size_t RawGridModel::cellColumn(int row, int column) const {
    if (m_eastingFirst && row >= 0 && static_cast<size_t>(row) < m_document.rowCount() &&
        m_document.row(static_cast<size_t>(row)).type == "PT") {
        if (column == 2)
            return 3;
        if (column == 3)
            return 2;
    }
    return static_cast<size_t>(column);
}

int RawGridModel::gridColumn(size_t row, size_t cell) const {
    // The swap is its own inverse.
    return static_cast<int>(cellColumn(static_cast<int>(row), static_cast<int>(cell)));
}

bool RawGridModel::isTextRow(int row) const {
    if (row < 0 || static_cast<size_t>(row) >= m_document.rowCount())
        return false;
    return m_document.captions(m_document.row(static_cast<size_t>(row)).type).size() == 1;
}

QVariant RawGridModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || static_cast<size_t>(index.row()) >= m_document.rowCount())
        return {};
    const raw::RawRow &row = m_document.row(static_cast<size_t>(index.row()));
    if (index.column() == 0) {
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return qstr(row.type);
        if (role == Qt::ToolTipRole)
            return qtr("Type");
        return {};
    }
    const size_t cell = cellColumn(index.row(), index.column()) - 1;
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return cell < row.cells.size() ? qstr(row.cells[cell]) : QString();
    if (role == Qt::TextAlignmentRole) {
        // Numbers line up on their decimal points; names and notes read
        // from the left.
        if (cell >= row.cells.size() || isTextRow(index.row()))
            return {};
        bool number = false;
        const QString text = qstr(row.cells[cell]).trimmed();
        text.toDouble(&number);
        number = number && text.contains(QLatin1Char('.')); // not a point name
        return QVariant::fromValue(number ? Qt::AlignRight | Qt::AlignVCenter
                                          : Qt::AlignLeft | Qt::AlignVCenter);
    }
    if (role == Qt::ToolTipRole) {
        const auto captions = m_document.captions(row.type);
        return cell < captions.size() ? qtr(captions[cell].c_str()) : QVariant();
    }
    return {};
}

bool RawGridModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    if (m_recorder)
        return m_recorder([&] { return write(index, value); });
    return write(index, value);
}

bool RawGridModel::write(const QModelIndex &index, const QVariant &value) {
    const size_t row = static_cast<size_t>(index.row());
    const std::string text = sstr(value.toString());
    if (index.column() == 0) {
        if (row >= m_document.rowCount() || m_document.row(row).type == text)
            return false;
        if (!m_document.setRowType(row, text))
            return false;
        emit dataChanged(this->index(index.row(), 0), this->index(index.row(), kColumns - 1));
        if (index.row() == m_currentRow)
            emit headerDataChanged(Qt::Horizontal, 0, kColumns - 1);
        emit rowTypeChanged(index.row());
        return true;
    }
    const size_t cell = cellColumn(index.row(), index.column());
    if (row < m_document.rowCount() && cell - 1 < m_document.row(row).cells.size() &&
        m_document.row(row).cells[cell - 1] == text)
        return false;
    if (!m_document.setCell(row, cell, text))
        return false;
    emit dataChanged(index, index);
    return true;
}

Qt::ItemFlags RawGridModel::flags(const QModelIndex &index) const {
    if (!index.isValid() || static_cast<size_t>(index.row()) >= m_document.rowCount())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const raw::RawRow &row = m_document.row(static_cast<size_t>(index.row()));
    // The text of a "DO" row is fixed; other cells that the type has are editable.
    const size_t cell = cellColumn(index.row(), index.column());
    if (index.column() == 0 || (cell <= m_document.captions(row.type).size() && row.type != "DO"))
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant RawGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    if (section == 0)
        return qtr("Type");
    // The current row's captions; an observation's when there is none.
    std::string type = "SS";
    if (m_currentRow >= 0 && static_cast<size_t>(m_currentRow) < m_document.rowCount())
        type = m_document.row(static_cast<size_t>(m_currentRow)).type;
    const auto captions = m_document.captions(type);
    const size_t i = cellColumn(m_currentRow, section) - 1;
    return i < captions.size() ? qtr(captions[i].c_str()) : QString();
}

void RawGridModel::reload() {
    beginResetModel();
    m_eastingFirst = m_document.modes().eastingFirst();
    if (m_currentRow >= static_cast<int>(m_document.rowCount()))
        m_currentRow = static_cast<int>(m_document.rowCount()) - 1;
    endResetModel();
}

void RawGridModel::setCurrentRow(int row) {
    if (row == m_currentRow)
        return;
    m_currentRow = row;
    emit headerDataChanged(Qt::Horizontal, 0, kColumns - 1);
}

RawGridDelegate::RawGridDelegate(QObject *parent) : QStyledItemDelegate(parent) {}

namespace {

// The list an editor offers for a cell, or none for free text.
const std::vector<std::string> *choicesFor(const QModelIndex &index) {
    if (index.column() == 0)
        return &raw::rowTypes();
    if (index.column() == RawGridModel::kCodeColumn &&
        raw::isObservationType(sstr(index.siblingAtColumn(0).data().toString())))
        return &raw::angleCodes();
    return nullptr;
}

} // namespace

QWidget *RawGridDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                       const QModelIndex &index) const {
    const auto *choices = choicesFor(index);
    if (!choices)
        return QStyledItemDelegate::createEditor(parent, option, index);
    auto *list = new QComboBox(parent);
    list->setObjectName(index.column() == 0 ? QStringLiteral("Type") : QStringLiteral("Code"));
    for (const auto &choice : *choices)
        list->addItem(qstr(choice));
    list->setMaxVisibleItems(static_cast<int>(choices->size()));
    return list;
}

void RawGridDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const {
    if (auto *list = qobject_cast<QComboBox *>(editor)) {
        list->setCurrentIndex(list->findText(index.data(Qt::EditRole).toString()));
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void RawGridDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                   const QModelIndex &index) const {
    if (auto *list = qobject_cast<QComboBox *>(editor)) {
        if (list->currentIndex() >= 0)
            model->setData(index, list->currentText(), Qt::EditRole);
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

} // namespace tramline::app
