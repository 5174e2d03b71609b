// Geodesy reports failure with the Status that every module shares.
#pragma once

#include "base/status.h"

namespace tramline::geodesy {

using tramline::Status;
using tramline::StatusCode;

} // namespace tramline::geodesy
