// The flow every raw-data import shares: read the source into the line
// list, let the converter turn it, write the RW5 lines to the destination
// in one pass and the points to the coordinate file. The desktop program
// passes the scratch file "rimport.tmp" as the destination and loads it
// afterwards; the command line passes the user's file.
//
// A failed import changes nothing: the destination is saved atomically
// after the conversion succeeded, and points are written only after it.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "convert/format.h"
#include "crd/crd_point.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace tramline::crd {
class CoordinateFile;
}

namespace tramline::convert {

/// The scratch raw file of the imports in `folder`: "rimport.tmp".
std::filesystem::path scratchImportPath(const std::filesystem::path &folder);

struct ImportPaths {
    std::filesystem::path source;
    std::filesystem::path destination;
    std::filesystem::path coordinateFile; ///< empty: points are not written
    /// A coordinate file the program holds open for update: used instead of
    /// opening `coordinateFile` (the desktop program's working file).
    crd::CoordinateFile *openCoordinateFile = nullptr;
};

/// What a finished import did, for the summary line and the report.
struct ImportSummary {
    long records = 0;
    long observations = 0;
    long pointsStored = 0;
    long pointsRefused = 0;
    std::map<std::string, long> skipped; ///< lines left out, by reason
    std::string report;                  ///< warnings and refused points
};

/// Runs one import. The three shared failures show their message through
/// `ui` and return Io: "Error: unable to read raw file", "Error: unable to
/// write rw5 file", "Error: unable to open coordinate file %s". A
/// converter's failure (Format, Cancelled) is returned as it is. On success
/// the converter's completion message has been shown.
Status runImport(ImportFunction convert, const ImportPaths &paths, Interaction &ui,
                 ImportSummary &summary);

/// The positions of `points` in point-name order (digit runs by value,
/// other characters without case); points of equal names keep the order
/// given, so that the last one still wins.
std::vector<std::uint32_t> pointNameOrder(std::span<const crd::CrdPoint> points);

/// Writes `points` into the open file, replacing points of the same names
/// (handed to the file in name order, which it writes fastest). Each
/// refused point adds "\n%s: %s %s %s" (Error, the file's error text,
/// "Unable to write point", the name) to `report`. Returns the count stored.
long writeImportedPoints(crd::CoordinateFile &file, std::span<const crd::CrdPoint> points,
                         std::string &report);
/// As above, for points the caller hands over: they are put in name order
/// in place, without a copy.
long writeImportedPoints(crd::CoordinateFile &file, std::vector<crd::CrdPoint> &&points,
                         std::string &report);

/// "Read %ld records: %ld observations, %ld points stored, %ld lines
/// skipped", with the reasons in parentheses when lines were skipped.
std::string summaryLine(const ImportSummary &summary);

} // namespace tramline::convert
