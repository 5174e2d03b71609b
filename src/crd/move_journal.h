// The rollback journal of a coordinate file. Updates that move records
// (an insert into a sorted file, a bulk merge, sorting a first-revision
// file) first save the bytes they will overwrite, and the file's old size,
// in a journal beside the file, synced to disk; the journal goes once the
// moved file is synced. A journal found on the next open means an update
// died half-way: its bytes are put back, so the file is the old one again,
// never a mixture of old and new.
#pragma once

#include "crd/byte_store.h"

#include <cstdint>
#include <filesystem>

namespace tramline::crd {

/// The journal of the coordinate file `path`: beside it, "-journal" added.
std::filesystem::path journalPathFor(const std::filesystem::path &path);

/// Saves bytes [from, end of `store`) and the store's size in `journal`,
/// synced. False when the journal could not be written (the store is then
/// untouched and the update must not start).
bool beginMove(const std::filesystem::path &journal, ByteStore &store, std::uint64_t from);

/// Syncs `store` and removes the journal: the update is complete.
bool finishMove(const std::filesystem::path &journal, ByteStore &store);

enum class Recovery {
    Clean,      ///< no journal
    RolledBack, ///< an interrupted update was undone
    Discarded,  ///< a journal that was never finished: the file was not yet touched
    Failed      ///< the journal is whole but could not be applied
};

/// Undoes an interrupted update of `store` from `journal`, if there is one.
Recovery recoverMove(const std::filesystem::path &journal, ByteStore &store);

} // namespace tramline::crd
