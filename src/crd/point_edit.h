// Changing one field of a stored point from the text a user typed, as the
// coordinate grid and find and replace do, and adding a point by hand
// (Add > Point): the same checks and messages wherever the edit comes from.
#pragma once

#include "base/status.h"
#include "crd/coordinate_file.h"
#include "crd/point_fields.h"

namespace tramline::crd {

/// Sets `field` of the stored `point` from `text`: a new name renames the
/// point (with its notes); coordinates and elevation must be numbers (an
/// empty elevation means none); a description is taken as typed. `stored`
/// gets the point as the file keeps it. The history, when kept, records
/// the edit.
Status editPointField(CoordinateFile &file, const CrdPoint &point, PointField field,
                      std::string_view text, CrdPoint &stored);

/// The name Add > Point offers: the number after the highest one, as
/// points are usually added in sequence; "1" in an empty file; nothing
/// when the highest name is not a number.
std::string nextPointName(const CoordinateFile &file);

/// Stores a new point; a name already used is refused (nothing is
/// overwritten). `stored` (when given) gets the point as the file keeps it.
Status addPoint(CoordinateFile &file, const CrdPoint &point, CrdPoint *stored = nullptr);

} // namespace tramline::crd
