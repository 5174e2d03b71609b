#include "crd/point_fields.h"

#include "base/format.h"
#include "base/unset.h"

namespace tramline::crd {

std::array<PointField, kPointColumns> pointColumns(CoordinateOrder order) {
    if (order == CoordinateOrder::EastingNorthing)
        return {PointField::Name, PointField::Easting, PointField::Northing, PointField::Elevation,
                PointField::Description};
    return {PointField::Name, PointField::Northing, PointField::Easting, PointField::Elevation,
            PointField::Description};
}

std::string pointFieldText(const CrdPoint &point, PointField field) {
    switch (field) {
    case PointField::Name:
        return point.name;
    case PointField::Northing:
        return format("%.4f", point.northing);
    case PointField::Easting:
        return format("%.4f", point.easting);
    case PointField::Elevation:
        return isUnset(point.elevation) ? std::string() : format("%.4f", point.elevation);
    case PointField::Description:
        return point.description;
    }
    return {};
}

} // namespace tramline::crd
