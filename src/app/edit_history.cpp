#include "app/edit_history.h"

#include "crd/coordinate_file.h"

#include <algorithm>
#include <set>

namespace tramline::app {

namespace {

bool sameRows(const std::vector<raw::RawRow> &a, const std::vector<raw::RawRow> &b) {
    // The origins are how the rows came to be shown, not what they say.
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto &x, const auto &y) {
        return x.type == y.type && x.cells == y.cells;
    });
}

bool sameNotes(const std::vector<crd::PointNote> &a, const std::vector<crd::PointNote> &b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto &x, const auto &y) {
        return x.name == y.name && x.text == y.text;
    });
}

class EditStep : public QUndoCommand {
public:
    EditStep(const QString &text, EditHistory &history, EditPicture before, EditPicture after,
             bool rows, bool points)
        : QUndoCommand(text), m_history(history), m_before(std::move(before)),
          m_after(std::move(after)), m_rows(rows), m_points(points) {}

    void undo() override { m_history.restore(m_before, m_rows, m_points); }
    void redo() override {
        // The edit itself has been made when the step is pushed.
        if (m_done)
            m_history.restore(m_after, m_rows, m_points);
        m_done = true;
    }

private:
    EditHistory &m_history;
    EditPicture m_before, m_after;
    bool m_rows, m_points;
    bool m_done = false;
};

} // namespace

EditHistory::EditHistory(raw::RawDocument &document, crd::CoordinateFile &points, QObject *parent)
    : QObject(parent), m_document(document), m_points(points) {
    m_stack.setUndoLimit(100);
}

EditPicture EditHistory::picture() const {
    EditPicture p;
    p.rows = m_document.rows();
    p.shownIn = m_document.modes();
    p.angleUnit = m_document.angleUnit();
    if (m_points.isOpen()) {
        crd::readAllPoints(m_points, p.points);
        crd::NotesFile notes;
        if (notes.load(m_points.notesPath()))
            p.notes = notes.notes();
    }
    return p;
}

bool EditHistory::record(const QString &text, const std::function<bool()> &edit) {
    if (m_depth > 0)
        return edit();
    ++m_depth;
    EditPicture before = picture();
    const bool result = edit();
    EditPicture after = picture();
    --m_depth;
    const bool rows = !sameRows(before.rows, after.rows);
    const bool points = before.points != after.points || !sameNotes(before.notes, after.notes);
    if (rows || points)
        m_stack.push(new EditStep(text, *this, std::move(before), std::move(after), rows, points));
    return result;
}

void EditHistory::restore(const EditPicture &picture, bool rows, bool points) {
    if (rows) {
        m_document.restoreRows(picture.rows, picture.shownIn, picture.angleUnit);
        emit rowsRestored();
    }
    if (!points || !m_points.isOpen())
        return;
    // Only the points that differ are written, so that the notes of the
    // others stay where they are.
    std::vector<crd::CrdPoint> now;
    crd::readAllPoints(m_points, now);
    std::set<std::string> wanted;
    for (const auto &p : picture.points)
        wanted.insert(p.name);
    const bool extra = std::any_of(
        now.begin(), now.end(), [&](const crd::CrdPoint &p) { return !wanted.contains(p.name); });
    if (extra)
        m_points.deletePoints([&](const crd::CrdPoint &p) { return !wanted.contains(p.name); });
    for (const auto &p : picture.points)
        if (std::find(now.begin(), now.end(), p) == now.end())
            m_points.writePoint(p, crd::Verbosity::Quiet);
    // Deleting a point takes its notes with it: the notes go back as they were.
    crd::NotesFile notes;
    if (notes.load(m_points.notesPath()) && !sameNotes(notes.notes(), picture.notes)) {
        crd::NotesFile pictured;
        for (const auto &note : picture.notes)
            pictured.add(note.name, note.text);
        pictured.save(m_points.notesPath());
    }
    emit pointsRestored();
}

} // namespace tramline::app
