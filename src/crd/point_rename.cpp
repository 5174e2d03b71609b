#include "crd/point_rename.h"

#include "base/format.h"
#include "base/translation.h"
#include "crd/notes_file.h"
#include "crd/point_name_rules.h"

namespace tramline::crd {

namespace {

Status storeFailure(StatusCode code, int error) {
    return Status::failure(code, errorText(error));
}

// The store's own verdict on a name, before anything is looked up: a
// numeric file would read "12A" as point 12.
int nameError(const CoordinateFile &file, std::string_view name) {
    if (file.format() == kFormatNumeric) {
        long number = 0;
        return parseNumericName(name, number);
    }
    return checkAlphanumericName(normaliseAlphanumericName(name));
}

} // namespace

Status checkNameFree(CoordinateFile &file, std::string_view name) {
    if (!file.isOpen())
        return storeFailure(StatusCode::Io, kNotOpen);
    if (const int error = nameError(file, name))
        return storeFailure(StatusCode::InvalidInput, error);
    CrdPoint existing;
    if (file.readPoint(name, existing, PointSearch::Exact, Verbosity::Quiet))
        return Status::failure(
            StatusCode::InvalidInput,
            format(tr("Error: point %s already exists"), std::string(name).c_str()));
    return Status::success();
}

Status renamePoint(CoordinateFile &file, std::string_view from, std::string_view to,
                   CrdPoint *renamed) {
    if (!file.isOpen())
        return storeFailure(StatusCode::Io, kNotOpen);
    CrdPoint old;
    if (!file.readPoint(from, old, PointSearch::Exact, Verbosity::Quiet))
        return storeFailure(StatusCode::NotFound, file.lastError());
    CrdPoint existing;
    if (nameError(file, to) == kNoError &&
        file.readPoint(to, existing, PointSearch::Exact, Verbosity::Quiet) &&
        existing.name == old.name) {
        if (renamed)
            *renamed = old;
        return Status::success();
    }
    if (Status free = checkNameFree(file, to); !free)
        return free;

    CrdPoint moved = old;
    moved.name = std::string(to);
    if (!file.writePoint(moved, Verbosity::Quiet))
        return storeFailure(StatusCode::InvalidInput, file.lastError());
    file.readPoint(to, moved, PointSearch::Exact, Verbosity::Quiet);

    // The notes move before the old point goes, as deleting a point
    // deletes the notes still filed under its name.
    NotesFile notes;
    const bool notesMoved =
        notes.load(file.notesPath()) &&
        (notes.rename(old.name, moved.name) == 0 || notes.save(file.notesPath()));
    if (!notesMoved) {
        // Undone: the point stays under its old name, with its notes.
        file.deletePoints([&](const CrdPoint &p) { return p.name == moved.name; });
        return storeFailure(StatusCode::Io, kReadWriteFailed);
    }
    if (file.deletePoints([&](const CrdPoint &p) { return p.name == old.name; }) < 0)
        return storeFailure(StatusCode::Io, file.lastError());
    file.addHistory(&old, &moved, kHistoryOperationRenumber);
    if (renamed)
        *renamed = moved;
    return Status::success();
}

} // namespace tramline::crd
