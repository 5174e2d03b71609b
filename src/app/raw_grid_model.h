// The raw data grid's model: one row per row of the raw document, the Type
// column first, then the cells. Captions change with the row type: every
// cell carries its caption as a tool tip, and the column headers show the
// captions of the current row.
#pragma once

#include "raw/document.h"

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <functional>

namespace tramline::app {

class RawGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    /// Observations have the most cells: the Type column and seven.
    static constexpr int kColumns = 8;
    /// The column of the vertical value (hidden in the "None" display).
    static constexpr int kVerticalColumn = 1 + raw::kVerticalCell;
    static constexpr int kCodeColumn = 1 + raw::kCodeCell;

    explicit RawGridModel(raw::RawDocument &document, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// Refills the grid from the document (after open, new, display
    /// changes); the coordinate order is taken as it stands now.
    void reload();
    /// The row whose captions the headers show.
    void setCurrentRow(int row);
    int currentRow() const { return m_currentRow; }

    /// The document cell (1-based, 0 the type) that a grid column shows in
    /// a row: store points swap northing and easting in easting-first order.
    size_t cellColumn(int row, int column) const;
    /// The grid column that shows a document cell.
    int gridColumn(size_t row, size_t cellColumn) const;
    /// True when the row holds one text (a note, a whole record, a name)
    /// that spans the cell columns.
    bool isTextRow(int row) const;

    /// Runs every cell edit through `recorder` (the undo history).
    void setRecorder(std::function<bool(const std::function<bool()> &)> recorder) {
        m_recorder = std::move(recorder);
    }

signals:
    /// A row changed its type: its captions and its span may differ.
    void rowTypeChanged(int row);

private:
    bool write(const QModelIndex &index, const QVariant &value);

    raw::RawDocument &m_document;
    std::function<bool(const std::function<bool()> &)> m_recorder;
    int m_currentRow = -1;
    bool m_eastingFirst = false;
};

/// Editors of the raw grid: the Type list, the angle kinds of the "Code"
/// column, a line editor elsewhere.
class RawGridDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit RawGridDelegate(QObject *parent = nullptr);
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
};

} // namespace tramline::app
