#include "app/coordinate_grid_model.h"

#include "app/qt_text.h"
#include "base/format.h"
#include "base/unset.h"
#include "crd/notes_file.h"

namespace tramline::app {

CoordinateGridModel::CoordinateGridModel(crd::CoordinateFile &file, Interaction &ui,
                                         QObject *parent)
    : QAbstractTableModel(parent), m_file(file), m_ui(ui) {}

int CoordinateGridModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_points.size());
}

int CoordinateGridModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : kColumns;
}

CoordinateGridModel::Field CoordinateGridModel::fieldOf(int column) const {
    switch (column) {
    case 0:
        return Name;
    case 1:
        return eastingFirst() ? Easting : Northing;
    case 2:
        return eastingFirst() ? Northing : Easting;
    case 3:
        return Elevation;
    default:
        return Description;
    }
}

QString CoordinateGridModel::cellText(int row, int column) const {
    if (row < 0 || static_cast<size_t>(row) >= m_points.size())
        return {};
    const crd::CrdPoint &p = m_points[static_cast<size_t>(row)];
    switch (fieldOf(column)) {
    case Name:
        return qstr(p.name);
    case Northing:
        return qstr(format("%.4f", p.northing));
    case Easting:
        return qstr(format("%.4f", p.easting));
    case Elevation:
        return isUnset(p.elevation) ? QString() : qstr(format("%.4f", p.elevation));
    case Description:
        return qstr(p.description);
    }
    return {};
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
    if (!index.isValid() || role != Qt::EditRole ||
        static_cast<size_t>(index.row()) >= m_points.size())
        return false;
    if (cellText(index.row(), index.column()) == value.toString())
        return false;
    crd::CrdPoint point = m_points[static_cast<size_t>(index.row())];
    const std::string text = sstr(value.toString().trimmed());
    const Field field = fieldOf(index.column());
    double number = 0.0;
    if (field == Northing || field == Easting || field == Elevation) {
        if (text.empty() && field == Elevation) {
            number = kUnsetPositive;
        } else if (!parseNumber(text, number)) {
            m_ui.message(format(tramline::tr("Error: %s is not a number"), text.c_str()));
            return false;
        }
    }
    switch (field) {
    case Name:
        point.name = text;
        break;
    case Northing:
        point.northing = number;
        break;
    case Easting:
        point.easting = number;
        break;
    case Elevation:
        point.elevation = number;
        break;
    case Description:
        point.description = sstr(value.toString());
        break;
    }
    const std::string oldName = m_points[static_cast<size_t>(index.row())].name;
    if (field == Name) {
        // A new name is a new point; the old one goes, with its notes
        // following it. An existing name is not overwritten.
        crd::CrdPoint existing;
        if (m_file.readPoint(point.name, existing, 0, true)) {
            m_ui.message(
                format(tramline::tr("Error: point %s already exists"), point.name.c_str()));
            return false;
        }
    }
    if (!m_file.writePoint(point)) {
        m_ui.message(crd::CoordinateFile::errorText(m_file.lastError()));
        return false;
    }
    if (field == Name) {
        crd::NotesFile notes;
        if (notes.load(m_file.notesPath())) {
            const auto moved = notes.notesFor(oldName);
            for (const auto &note : moved)
                m_file.addNote(point.name, note);
        }
        m_file.deletePoints([&](const crd::CrdPoint &p) { return p.name == oldName; });
        emit pointsChanged();
        reload(m_order);
        return true;
    }
    // Read the point back: the file may have cut or adjusted it.
    m_file.readPoint(point.name, point, 0, true);
    m_points[static_cast<size_t>(index.row())] = point;
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), kColumns - 1));
    emit pointsChanged();
    return true;
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
    case Name:
        return qtr("PntNo");
    case Northing:
        return qtr("Northing");
    case Easting:
        return qtr("Easting");
    case Elevation:
        return qtr("Elevation");
    case Description:
        return qtr("Description");
    }
    return {};
}

void CoordinateGridModel::reload(raw::CoordinateOrder order) {
    beginResetModel();
    m_order = order;
    m_points.clear();
    if (m_file.isOpen()) {
        crd::CrdPoint p;
        m_file.setCurrentIndex(-1);
        while (m_file.readNext(p, 1, true))
            m_points.push_back(p);
    }
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

std::optional<std::pair<int, int>> CoordinateGridModel::find(const QString &what, int row,
                                                             int column) const {
    const int rows = rowCount();
    if (what.isEmpty() || rows == 0)
        return std::nullopt;
    const int startRow = std::clamp(row, 0, rows - 1);
    for (int step = 0; step <= rows; ++step) {
        const int r = (startRow + step) % rows;
        const int first = step == 0 ? column + 1 : 0;
        const int end = step == rows ? std::min(column + 1, kColumns) : kColumns;
        for (int c = std::max(first, 0); c < end; ++c)
            if (cellText(r, c).contains(what))
                return std::make_pair(r, c);
    }
    return std::nullopt;
}

int CoordinateGridModel::replace(const QString &what, const QString &with, bool all) {
    if (what.isEmpty())
        return 0;
    int count = 0;
    // Points are followed by name: a renamed point moves to its place in
    // the file's order, and must neither be skipped nor met twice.
    const std::vector<crd::CrdPoint> snapshot = m_points;
    for (const auto &point : snapshot) {
        std::string name = point.name;
        for (int c = 0; c < kColumns; ++c) {
            const int r = rowOf(name);
            if (r < 0)
                break;
            QString text = cellText(r, c);
            if (!text.contains(what))
                continue;
            if (!all) {
                const int answer =
                    m_ui.choose(tramline::tr("Search and Replace"),
                                format(tramline::tr("Replace in row %ld column %ld?"),
                                       static_cast<long>(r + 1), static_cast<long>(c + 1)),
                                {tramline::tr("Yes"), tramline::tr("No"), tramline::tr("Cancel")});
                if (answer == 1)
                    continue;
                if (answer != 0)
                    return count;
            }
            const int hits = static_cast<int>(text.count(what));
            text.replace(what, with);
            if (setData(index(r, c), text)) {
                count += hits;
                if (c == 0)
                    name = sstr(text.trimmed());
            }
        }
    }
    return count;
}

} // namespace tramline::app
