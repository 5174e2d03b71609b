// A coordinate system named in one word, as geo convert and crd transform
// take it: "latlon", FAMILY:ZONE of this program's lists ("State Plane
// 83:CO North", "UTM:13"), an EPSG code ("EPSG:2231") or a PROJ string.
#pragma once

#include "base/status.h"

#include <string>

namespace tramline::cli {

/// The definition CrsTransform::open() takes for `text`. Fails when a
/// family's zone does not exist or has no formulas here.
Status systemDefinition(const std::string &text, std::string &definition);

} // namespace tramline::cli
