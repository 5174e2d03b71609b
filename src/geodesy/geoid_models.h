// Geoid separations from the models: chooses the grid that covers a point,
// makes sure it is present, opens it once and interpolates in it.
#pragma once

#include "geodesy/geoid_files.h"
#include "geodesy/geoid_grid.h"
#include "geodesy/geoid_model.h"
#include "geodesy/status.h"

#include <map>
#include <string>

namespace tramline::geodesy {

class GeoidModels {
public:
    explicit GeoidModels(GeoidFolders folders) : m_folders(std::move(folders)) {}

    const GeoidFolders &folders() const { return m_folders; }

    /// The opened grid of model `code` that covers a point (decimal
    /// degrees, north and east positive), fetching it when it is missing,
    /// and the longitude to look it up with. The grid stays open for later
    /// calls. Fails with the messages of chooseGeoidFile(), the download's,
    /// a grid that cannot be read, or OutOfRange ("Error: beyond area
    /// covered by" and the model) when the file does not cover the point.
    Status gridAt(int code, double latitude, double longitude, const GeoidGrid *&grid,
                  double &lookupLongitude);

    /// The geoid separation (metres, geoid above the ellipsoid positive) of
    /// model `code` at a point.
    Status separation(int code, double latitude, double longitude, double &separation);

private:
    Status open(const std::string &file, const GeoidGrid *&grid);

    GeoidFolders m_folders;
    std::map<std::string, GeoidGrid> m_grids;
};

/// The separation as GPS reduction asks for it, with the messages it shows:
/// no model (code 0) gives "Warning: Geoid model not set...", a point
/// outside the model "Warning: Beyond set Geoid model area...", and
/// AUSGeoid98 its own two messages (not installed, not defined here).
Status gpsSeparation(GeoidModels &models, int code, double latitude, double longitude,
                     double &separation);

} // namespace tramline::geodesy
