// The coordinate grid's model: the points of the working coordinate file
// in file order, one row a point: PntNo, Northing, Easting (or Easting,
// Northing in easting-first order), Elevation, Description. Edits are
// written to the file at once.
#pragma once

#include "base/interaction.h"
#include "crd/coordinate_file.h"
#include "raw/display_modes.h"

#include <QAbstractTableModel>
#include <optional>

namespace tramline::app {

class CoordinateGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kColumns = 5;

    CoordinateGridModel(crd::CoordinateFile &file, Interaction &ui, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// Reads the points again, in the given coordinate order.
    void reload(raw::CoordinateOrder order);
    const std::vector<crd::CrdPoint> &points() const { return m_points; }
    /// The row of a point, or -1.
    int rowOf(const std::string &name) const;

    /// Deletes the point of a row (with its notes). False when the file
    /// could not be rewritten.
    bool deleteRow(int row);

    /// Looks for `what` in the cells' texts row by row, left to right,
    /// after (row, column), wrapping round once.
    std::optional<std::pair<int, int>> find(const QString &what, int row, int column) const;
    /// Replaces `what` by `with` in every cell, asking "Replace in row %ld
    /// column %ld?" for each unless `all`; Cancel stops. Returns the count.
    int replace(const QString &what, const QString &with, bool all);

    /// The text of a cell as the grid shows it.
    QString cellText(int row, int column) const;

signals:
    /// A point was written or deleted: the coordinate file has changed.
    void pointsChanged();

private:
    bool eastingFirst() const { return m_order == raw::CoordinateOrder::EastingNorthing; }
    enum Field { Name, Northing, Easting, Elevation, Description };
    Field fieldOf(int column) const;

    crd::CoordinateFile &m_file;
    Interaction &m_ui;
    std::vector<crd::CrdPoint> m_points;
    raw::CoordinateOrder m_order = raw::CoordinateOrder::NorthingEasting;
};

} // namespace tramline::app
