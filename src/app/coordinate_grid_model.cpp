#include "app/coordinate_grid_model.h"

#include "app/qt_text.h"
#include "crd/point_edit.h"
#include "crd/point_find_replace.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

namespace tramline::app {

using crd::PointField;

CoordinateGridModel::CoordinateGridModel(crd::CoordinateFile &file, Interaction &ui,
                                         QObject *parent)
    : QAbstractTableModel(parent), m_file(file), m_ui(ui) {}

int CoordinateGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_points.size());
}

int CoordinateGridModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : kColumns;
}

PointField CoordinateGridModel::fieldOf(int column) const {
    return crd::pointColumns(m_order)[static_cast<size_t>(std::clamp(column, 0, kColumns - 1))];
}

QString CoordinateGridModel::cellText(int row, int column) const {
    if (row < 0 || static_cast<size_t>(row) >= m_points.size())
        return {};
    return qstr(crd::pointFieldText(m_points[static_cast<size_t>(row)], fieldOf(column)));
}

QVariant CoordinateGridModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return cellText(index.row(), index.column());
    if (role == Qt::ToolTipRole)
        return headerData(index.column(), Qt::Horizontal, Qt::DisplayRole);
    if (role == Qt::TextAlignmentRole && index.column() >= 1 && index.column() <= 3)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

bool CoordinateGridModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::EditRole)
        return false;
    Status status;
    bool changed = false;
    auto write = [&] {
        status = edit(index, value.toString());
        changed = status.ok();
        return changed;
    };
    recorded(write);
    if (!status)
        m_ui.message(status.message);
    return changed;
}

Status CoordinateGridModel::edit(const QModelIndex &index, const QString &text) {
    if (!index.isValid() || static_cast<size_t>(index.row()) >= m_points.size())
        return Status::success();
    if (cellText(index.row(), index.column()) == text)
        return Status::success();
    const PointField field = fieldOf(index.column());
    crd::CrdPoint stored;
    const Status status = crd::editPointField(m_file, m_points[static_cast<size_t>(index.row())],
                                              field, sstr(text), stored);
    if (!status)
        return status;
    if (field == PointField::Name) {
        reload(m_order); // the point moved to its new name's place
    } else {
        m_points[static_cast<size_t>(index.row())] = stored;
        emit dataChanged(this->index(index.row(), 0), this->index(index.row(), kColumns - 1));
    }
    // Last, so that whoever listens reads the points as they now are.
    emit pointsChanged();
    return status;
}

Qt::ItemFlags CoordinateGridModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

QVariant CoordinateGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    switch (fieldOf(section)) {
    case PointField::Name:
        return qtr("PntNo");
    case PointField::Northing:
        return qtr("Northing");
    case PointField::Easting:
        return qtr("Easting");
    case PointField::Elevation:
        return qtr("Elevation");
    case PointField::Description:
        return qtr("Description");
    }
    return {};
}

void CoordinateGridModel::reload(crd::CoordinateOrder order) {
    beginResetModel();
    m_order = order;
    m_points.clear();
    if (m_file.isOpen())
        crd::readAllPoints(m_file, m_points);
    endResetModel();
}

int CoordinateGridModel::rowOf(const std::string &name) const {
    for (size_t i = 0; i < m_points.size(); ++i)
        if (m_points[i].name == name)
            return static_cast<int>(i);
    return -1;
}

bool CoordinateGridModel::deleteRow(int row) {
    if (row < 0 || static_cast<size_t>(row) >= m_points.size())
        return false;
    const std::string name = m_points[static_cast<size_t>(row)].name;
    const long removed =
        m_file.deletePoints([&](const crd::CrdPoint &p) { return p.name == name; });
    if (removed < 0) {
        m_ui.message(crd::CoordinateFile::errorText(m_file.lastError()));
        return false;
    }
    beginRemoveRows({}, row, row);
    m_points.erase(m_points.begin() + row);
    endRemoveRows();
    emit pointsChanged();
    return true;
}

std::optional<std::pair<int, int>> CoordinateGridModel::find(const std::string &what, int row,
                                                             int column) const {
    const auto hit = crd::findInPoints(m_points, m_order, what, row, column);
    if (!hit)
        return std::nullopt;
    return std::make_pair(hit->row, hit->column);
}

long CoordinateGridModel::replace(const std::string &what, const std::string &with, bool all) {
    crd::PointReplace replace;
    replace.find = what;
    replace.replace = with;
    replace.order = m_order;
    replace.confirmEach = !all;
    const long count = crd::replaceInPoints(m_file, replace, m_ui);
    reload(m_order);
    if (count > 0)
        emit pointsChanged();
    return count;
}

CoordinateGridDelegate::CoordinateGridDelegate(CoordinateGridModel &model, Interaction &ui,
                                               QObject *parent)
    : QStyledItemDelegate(parent), m_model(model), m_ui(ui) {}

QWidget *CoordinateGridDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                              const QModelIndex &index) const {
    m_editing = index;
    return QStyledItemDelegate::createEditor(parent, option, index);
}

bool CoordinateGridDelegate::take(QWidget *editor) {
    auto *line = qobject_cast<QLineEdit *>(editor);
    if (!line || !m_editing.isValid())
        return true;
    Status status;
    auto write = [&] {
        status = m_model.edit(m_editing, line->text());
        return status.ok();
    };
    m_model.recorded(write);
    if (status)
        return true;
    // The message box takes the focus for a while; the editor must not
    // take that for the user leaving the cell.
    m_complaining = true;
    m_ui.message(status.message);
    m_complaining = false;
    QPointer<QLineEdit> keep(line);
    line->setFocus(Qt::OtherFocusReason);
    QTimer::singleShot(0, line, [keep] {
        if (keep) {
            keep->activateWindow();
            keep->setFocus(Qt::OtherFocusReason);
        }
    });
    return false;
}

bool CoordinateGridDelegate::eventFilter(QObject *object, QEvent *event) {
    auto *editor = qobject_cast<QWidget *>(object);
    if (!editor)
        return QStyledItemDelegate::eventFilter(object, event);
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool leaves = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab ||
                            key == Qt::Key_Backtab;
        if (leaves && !take(editor))
            return true;
    } else if (event->type() == QEvent::FocusOut) {
        if (m_complaining)
            return true;
        if (!take(editor))
            return true;
    }
    return QStyledItemDelegate::eventFilter(object, event);
}

} // namespace tramline::app
