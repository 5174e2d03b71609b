// Geoid models: the integer codes 1 to 78, the ".grd" files each names,
// and the choice of the file that covers a position.
#pragma once

#include "geodesy/geoid_grid.h"
#include "geodesy/status.h"

#include <functional>
#include <string>
#include <vector>

namespace tramline::geodesy {

inline constexpr int kFirstGeoidModel = 1;
inline constexpr int kLastGeoidModel = 78;
/// AUSGeoid98, whose tiles are found by searching their headers.
inline constexpr int kAusGeoid98 = 10;

bool isGeoidModel(int code);

/// The model's name in messages: its file for a one-file model
/// ("egm96.grd"), the model's own name for tiled ones ("GEOID99").
std::string geoidModelName(int code);

/// Every file of the model, in the table's order (empty for an unknown
/// code).
std::vector<std::string> geoidModelFiles(int code);

/// Reads the bounds of a model's file for the searches of codes 10 and 21;
/// false when the file cannot be opened, which ends the search.
using GridBoundsReader = std::function<bool(const std::string &file, GridBounds &bounds)>;

/// The file of model `code` that covers a position, and the longitude to
/// look it up with.
struct GeoidFileChoice {
    std::string file;
    double longitude = 0.0; ///< positive east (0 to 360), but as given for codes 27 and 28
};

/// Chooses the file for a latitude and longitude (decimal degrees, north
/// and east positive). Longitudes are made positive east first, except
/// for codes 27 and 28. One-file models take their file whatever the
/// position (the file's own bounds decide later); tiled models (1 to 5)
/// pick a tile by latitude and longitude bands; codes 10 and 21 search the
/// headers of their files through `readBounds`.
///
/// Fails with NotFound ("Error: unable to find geoid model") for an
/// unknown code or a search that cannot open a file, and OutOfRange ("Error:
/// beyond area covered by" and the model's name) when no file covers the
/// point.
Status chooseGeoidFile(int code, double latitude, double longitude,
                       const GridBoundsReader &readBounds, GeoidFileChoice &choice);

/// The message for a point outside every file of a model.
std::string beyondAreaMessage(int code);

} // namespace tramline::geodesy
