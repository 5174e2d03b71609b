// A kept localization: its alignment file and, beside it under the same
// name with ".ini", the localization settings (the keys of
// alignment_points.h). Process > GPS fits the kept points again with the
// kept settings.
#pragma once

#include "geodesy/alignment_file.h"
#include "geodesy/geoid_models.h"
#include "geodesy/localization.h"

#include <filesystem>

namespace tramline::geodesy {

/// The settings file that goes with an alignment file.
std::filesystem::path settingsPathFor(const std::filesystem::path &alignmentPath);

/// Writes the alignment file and its settings. Fails as saveAlignmentFile()
/// does; a "DICTIONARY" file writes neither.
Status saveLocalization(const std::filesystem::path &alignmentPath,
                        const Localization &localization);

/// Reads an alignment file and its settings (defaults when the settings
/// file is missing) and builds the system the settings name.
Status loadLocalization(const std::filesystem::path &alignmentPath, CoordinateSystem &system,
                        LocalizationSettings &settings, std::vector<AlignmentPoint> &points);

/// The geoid separations of model `code` (none for 0) from `models`, which
/// must outlive the result.
SeparationSource separationSource(GeoidModels &models, int code);

} // namespace tramline::geodesy
