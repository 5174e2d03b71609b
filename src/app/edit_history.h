// Undo and Redo for every edit of both grids. An edit runs between two
// pictures of what it may touch (the raw rows, with the display modes they
// were shown in, and the points of the working coordinate file); when the
// pictures differ, one step goes on the undo stack. Going back puts the
// earlier picture back, converted into the display modes of the moment.
#pragma once

#include "crd/crd_point.h"
#include "crd/notes_file.h"
#include "raw/document.h"

#include <QUndoStack>
#include <functional>

namespace tramline::crd {
class CoordinateFile;
}

namespace tramline::app {

struct EditPicture {
    std::vector<raw::RawRow> rows;
    raw::DisplayModes shownIn;
    AngleUnit angleUnit = AngleUnit::DegreesMinutesSeconds;
    std::vector<crd::CrdPoint> points;
    std::vector<crd::PointNote> notes; ///< of the points, so that a deleted point gets its back
};

class EditHistory : public QObject {
    Q_OBJECT
public:
    EditHistory(raw::RawDocument &document, crd::CoordinateFile &points, QObject *parent = nullptr);

    /// Runs `edit` as one undoable step named `text`. Edits run inside an
    /// edit (a paste's cells) belong to the outer step. Returns what
    /// `edit` returned.
    bool record(const QString &text, const std::function<bool()> &edit);
    QUndoStack &stack() { return m_stack; }
    /// Forgets every step: after opening a file or processing, which
    /// change things no step knows about.
    void clear() { m_stack.clear(); }

    /// Puts a picture back (undo and redo).
    void restore(const EditPicture &picture, bool rows, bool points);

signals:
    void rowsRestored();
    void pointsRestored();

private:
    EditPicture picture() const;

    raw::RawDocument &m_document;
    crd::CoordinateFile &m_points;
    QUndoStack m_stack;
    int m_depth = 0;
};

} // namespace tramline::app
