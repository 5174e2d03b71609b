// The coordinate grid's model: the points of the working coordinate file
// in file order, one row a point: PntNo, Northing, Easting (or Easting,
// Northing in easting-first order), Elevation, Description. Edits are
// written to the file at once.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "crd/coordinate_file.h"
#include "crd/point_fields.h"

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <functional>
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

    /// Writes a cell from typed text without saying anything: the status
    /// carries the message of a refused text ("Error: %s is not a number").
    Status edit(const QModelIndex &index, const QString &text);
    /// Runs every cell edit through `recorder` (the undo history).
    void setRecorder(std::function<bool(const std::function<bool()> &)> recorder) {
        m_recorder = std::move(recorder);
    }
    /// Runs a write through the recorder, when there is one.
    bool recorded(const std::function<bool()> &write) {
        return m_recorder ? m_recorder(write) : write();
    }

    /// Reads the points again, with the coordinate columns in `order`.
    void reload(crd::CoordinateOrder order);
    const std::vector<crd::CrdPoint> &points() const { return m_points; }
    /// The row of a point, or -1.
    int rowOf(const std::string &name) const;

    /// Deletes the point of a row (with its notes). False when the file
    /// could not be rewritten.
    bool deleteRow(int row);

    /// Looks for `what` in the cells' texts row by row, left to right,
    /// after (row, column), wrapping round once.
    std::optional<std::pair<int, int>> find(const std::string &what, int row, int column) const;
    /// Replaces `what` by `with` in every cell, asking "Replace in row %ld
    /// column %ld?" for each unless `all`; Cancel stops. Returns the count.
    long replace(const std::string &what, const std::string &with, bool all);

    /// The text of a cell as the grid shows it.
    QString cellText(int row, int column) const;

signals:
    /// A point was written or deleted: the coordinate file has changed.
    void pointsChanged();

private:
    crd::PointField fieldOf(int column) const;

    crd::CoordinateFile &m_file;
    Interaction &m_ui;
    std::vector<crd::CrdPoint> m_points;
    crd::CoordinateOrder m_order = crd::CoordinateOrder::NorthingEasting;
    std::function<bool(const std::function<bool()> &)> m_recorder;
};

/// The coordinate grid's editor: a text the file refuses is not taken and
/// the editor stays open on it, focus and all, with the message shown, so
/// that the surveyor corrects it where it was typed.
class CoordinateGridDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    CoordinateGridDelegate(CoordinateGridModel &model, Interaction &ui, QObject *parent = nullptr);
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    /// True when the editor's text went in (or needs not); otherwise says
    /// why and gives the editor its focus back.
    bool take(QWidget *editor);

    CoordinateGridModel &m_model;
    Interaction &m_ui;
    mutable QPersistentModelIndex m_editing;
    bool m_complaining = false;
};

} // namespace tramline::app
