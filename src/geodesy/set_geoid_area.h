// The Set Geoid Area tool: cuts a square of a geoid model around the job's
// position and writes it as a separation grid of its own, so that the job
// carries a small grid instead of the whole model. The last entries are
// kept in "setgeoid.ini".
#pragma once

#include "base/interaction.h"
#include "geodesy/geoid_models.h"
#include "geodesy/status.h"

#include <filesystem>

namespace tramline::geodesy {

enum class LatitudeSide { North, South };
enum class LongitudeSide { East, West };
/// The unit of the square's side: degrees, or statute miles.
enum class AreaSizeUnit { Degrees, Miles };

/// The tool's entries. "setgeoid.ini" keeps the three choices as 1/0 flags
/// (is_north, is_east, is_deg).
struct GeoidAreaSettings {
    double latitude = 0.0;  ///< as entered, ddd.mmss, without sign
    double longitude = 0.0; ///< as entered, ddd.mmss, without sign
    int model = 0;          ///< the geoid model code ("is_geoid99")
    double size = 1.0;      ///< side of the square, in `sizeUnit`
    LatitudeSide latitudeSide = LatitudeSide::North;
    LongitudeSide longitudeSide = LongitudeSide::West;
    AreaSizeUnit sizeUnit = AreaSizeUnit::Degrees;
};

inline constexpr const char *kSetGeoidIni = "setgeoid.ini";
/// The largest square the tool cuts, degrees.
inline constexpr double kMaxGeoidAreaDegrees = 15.0;

/// Reads "setgeoid.ini": one key a line, lines of at most 222 characters;
/// unknown keys and bad values are skipped. False (settings untouched)
/// when the file cannot be opened.
bool loadGeoidAreaSettings(const std::filesystem::path &file, GeoidAreaSettings &settings);

/// Writes "setgeoid.ini" in its fixed order: lat_val, lon_val,
/// is_geoid99, size, is_north, is_east, is_deg.
bool saveGeoidAreaSettings(const std::filesystem::path &file, const GeoidAreaSettings &settings);

/// Asks for the entries in the tool's form (position, size, model),
/// starting from `settings`. False when the user cancels or an entry is
/// not a number.
bool askGeoidArea(Interaction &ui, GeoidAreaSettings &settings);

/// Cuts the square and writes it to `output` in the ".grd" layout. Every
/// outcome is also shown through `ui` ("Done", or the tool's error and
/// warning messages).
Status setGeoidArea(GeoidModels &models, const GeoidAreaSettings &settings,
                    const std::filesystem::path &output, Interaction &ui);

} // namespace tramline::geodesy
