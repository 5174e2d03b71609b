// Giving a stored point a new name. The point keeps its coordinates,
// description and notes; a name already in use is refused, so that a
// rename never overwrites another point.
//
// Usage from the command line: tramline-cli crd rename FILE OLD NEW.
#pragma once

#include "base/status.h"
#include "crd/coordinate_file.h"

namespace tramline::crd {

/// Ok when `name` can take a new point in the file: a valid name for its
/// layout (else the store's message for the name) that no stored point
/// has (else "Error: point NAME already exists").
Status checkNameFree(CoordinateFile &file, std::string_view name);

/// Renames point `from` to `to`, moving its notes; the history (when kept)
/// records a renumbering. `renamed` (when given) gets the point as stored
/// under its new name. Renaming a point to a name it already has (as the
/// file writes names) changes nothing. On failure the file holds the
/// point under its old name.
Status renamePoint(CoordinateFile &file, std::string_view from, std::string_view to,
                   CrdPoint *renamed = nullptr);

} // namespace tramline::crd
