// The raw data grid's model: one row per record of the raw document, the
// Type column first, then the cells. Column headers follow the current
// row's record type, so each row's cells carry their own captions as tool
// tips.
#pragma once

#include "raw/document.h"

#include <QAbstractTableModel>

namespace tramline::app {

class RawGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit RawGridModel(raw::RawDocument &document, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Call after the document was replaced (opened, cleared).
    void reload();

private:
    raw::RawDocument &m_document;
};

} // namespace tramline::app
