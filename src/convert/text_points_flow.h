// Text point import into, and export out of, an open coordinate file,
// with the messages of both: "Read in %ld points.", "File %s successfully
// written.", "Error: unable to read file", "Error: unable to write file".
#pragma once

#include "base/file_output.h"
#include "base/interaction.h"
#include "base/status.h"
#include "convert/text_points_export.h"
#include "convert/text_points_import.h"

#include <filesystem>

namespace tramline::crd {
class CoordinateFile;
}

namespace tramline::convert {

struct TextImportSummary {
    long lines = 0;
    long pointsStored = 0;
    long notPoints = 0;
    std::string report; ///< refused points
};

/// Reads the file and stores its points in `file` (open for update) with
/// one bulk write. Names are text in an alphanumeric file, integers in a
/// numeric one.
Status importTextPointsFile(const std::filesystem::path &source, crd::CoordinateFile &file,
                            const PointColumns &columns, Interaction &ui,
                            TextImportSummary &summary);

/// Writes the points of `file` whose names lie in `range` ("A-B", a list
/// as users type it; empty: all), in the file's order. `written` gets the
/// count.
Status exportTextPointsFile(crd::CoordinateFile &file, const std::filesystem::path &destination,
                            const TextExportOptions &options, std::string_view range,
                            Interaction &ui, long &written);
/// The same into a file or a stream (standard output).
Status exportTextPointsFile(crd::CoordinateFile &file, FileOutput &destination,
                            const TextExportOptions &options, std::string_view range,
                            Interaction &ui, long &written);

} // namespace tramline::convert
