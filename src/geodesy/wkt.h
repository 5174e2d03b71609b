// The compound well-known-text description of a coordinate system, as the
// program writes it for other software (one line per system) and reads it
// back.
//
// Angles are written in radians, the unit the text itself declares for
// its geographic part (UNIT["Radians",1]), so that other readers of
// well-known text, PROJ's among them, take them at their declared value.
#pragma once

#include "geodesy/coordinate_system.h"
#include "geodesy/status.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tramline::geodesy {

/// The system as one line of compound well-known text, ending in "\n".
/// Double quotes inside the names are written as single quotes, which
/// keeps the line readable by every parser.
std::string writeWkt(const CoordinateSystem &system);

/// How saveWkt() treats a file that is already there.
enum class WktWrite { Replace, Append };

/// Writes the line to `path`: a new file (replacing an old one whole), or a
/// line added at the end of an existing file.
Status saveWkt(const CoordinateSystem &system, const std::filesystem::path &path, WktWrite mode);

/// Reads one line that begins with "COMPD_CS" into `system`. Parameter
/// names are taken without regard to case and in any order; linear values
/// under UNIT["Foot_US",...] are converted to metres; angles are read in
/// the unit of the geographic part (radians when it names none).
Status readWkt(std::string_view line, CoordinateSystem &system);

/// Reads every "COMPD_CS" line of a file. A file without one, or with a
/// line that cannot be read, fails with the message of the first problem.
Status loadWkt(const std::filesystem::path &path, std::vector<CoordinateSystem> &systems);

} // namespace tramline::geodesy
