#include "crd/crd_point.h"

#include "base/unset.h"

namespace tramline::crd {

void CrdPoint::set(double e, double n, double z, std::string_view pointName,
                   std::string_view pointDescription, std::string_view pointCode, int lockedFlag) {
    easting = e;
    northing = n;
    elevation = isUnset(z) ? 0.0 : z;
    name = std::string(pointName.substr(0, kMaxPointText));
    description = std::string(pointDescription.substr(0, kMaxPointText));
    code = std::string(pointCode.substr(0, kMaxPointText));
    locked = lockedFlag;
}

} // namespace tramline::crd
