// The fields of a point as tables show them: one column each for the name,
// the two coordinates (northing first unless the user chose easting
// first), the elevation and the description. The grid, find and replace
// and the coordinate report all read points through these texts, so that
// what a user searches for is what the user sees.
#pragma once

#include "base/coordinate_order.h"
#include "crd/crd_point.h"

#include <array>
#include <string>

namespace tramline::crd {

enum class PointField { Name, Northing, Easting, Elevation, Description };

using tramline::CoordinateOrder;

inline constexpr std::size_t kPointColumns = 5;

/// The fields in column order: name, the coordinates in `order`,
/// elevation, description.
std::array<PointField, kPointColumns> pointColumns(CoordinateOrder order);

/// A field as tables show it: coordinates with four decimals, no text for
/// a missing elevation.
std::string pointFieldText(const CrdPoint &point, PointField field);

} // namespace tramline::crd
