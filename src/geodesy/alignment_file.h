// Alignment files: one line per alignment point, the eight values, the two
// use flags, the description, the coordinate system and the geoid.
//
// The eight values are written in this order: latitude, longitude (WGS 84,
// decimal degrees, north and east positive), ellipsoid height, local X
// (east), local Y (north), local Z, HRMS, VRMS (the localization's units).
// The flags are 'Y' or 'N'.
#pragma once

#include "geodesy/alignment_points.h"
#include "geodesy/status.h"

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace tramline::geodesy {

/// Lines longer than this are not alignment points.
inline constexpr std::size_t kMaxAlignmentLine = 1024;

struct AlignmentFile {
    std::vector<AlignmentPoint> points;
    std::string systemText; ///< of the last line: "State Plane 83: Alabama East", "EPSG: 2177"
    std::string geoidName;  ///< of the last line, "GEOID=" removed; empty for none
};

/// The system text of a line: the family's name, then ": " and the zone
/// for families with zones; "EPSG: code" for a system by EPSG code.
std::string alignmentSystemText(const LocalizationSettings &settings);

/// One line as written, "\n" included.
std::string alignmentLine(const AlignmentPoint &point, const std::string &systemText,
                          const std::string &geoidName);

/// Reads alignment lines; blank lines are skipped. Fails with Format and
/// the line number for a line that is too long, has too few fields, a
/// value that is not a number or a position off the earth, and with
/// InvalidInput for more than 99 points. Nothing is returned on failure.
Status readAlignment(std::istream &in, AlignmentFile &file);

/// Reads an alignment file ("dat", and "loc" and "gc3" files written in
/// the same lines). Fails with NotFound when it cannot be opened.
Status loadAlignmentFile(const std::filesystem::path &path, AlignmentFile &file);

/// Writes the points. A file named "DICTIONARY" (in any case, with any
/// extension) is left alone and `written` stays false. Fails with Io
/// ("\nError: unable to save file %s") when the file cannot be created.
Status saveAlignmentFile(const std::filesystem::path &path, const AlignmentFile &file,
                         bool &written);

} // namespace tramline::geodesy
