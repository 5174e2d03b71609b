// A coordinate system named in one word, as geo convert and crd transform
// take it: "latlon", FAMILY:ZONE of this program's lists ("State Plane
// 83:CO North", "UTM:13"), an EPSG code ("EPSG:2231") or a PROJ string.
#pragma once

#include "base/status.h"
#include "geodesy/crs_transform.h"

#include <string>

namespace tramline::cli {

/// The definition CrsTransform::open() takes for `text`, and in `area` the
/// database system whose area of use is the zone's (empty when PROJ knows
/// it from the definition). Fails when a family's zone does not exist or
/// has no formulas here.
Status systemDefinition(const std::string &text, std::string &definition, std::string &area);

/// Opens the conversion between two systems named as above.
Status openTransform(const std::string &from, const std::string &to,
                     geodesy::CrsTransform &transform);

} // namespace tramline::cli
