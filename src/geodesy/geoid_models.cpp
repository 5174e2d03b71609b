#include "geodesy/geoid_models.h"

#include "base/translation.h"
#include "geodesy/messages.h"

#include <fstream>

namespace tramline::geodesy {

Status GeoidModels::open(const std::string &file, const GeoidGrid *&grid) {
    if (auto it = m_grids.find(file); it != m_grids.end()) {
        grid = &it->second;
        return Status::success();
    }
    std::filesystem::path path;
    if (Status status = ensureGridPresent(m_folders, file, path); !status)
        return status;
    GeoidGrid loaded;
    if (Status status = GeoidGrid::load(path, loaded); !status)
        return status;
    grid = &m_grids.emplace(file, std::move(loaded)).first->second;
    return Status::success();
}

Status GeoidModels::gridAt(int code, double latitude, double longitude, const GeoidGrid *&grid,
                           double &lookupLongitude) {
    // The searched models read only the headers of the files they pass.
    const GridBoundsReader readBounds = [this](const std::string &file, GridBounds &bounds) {
        if (auto it = m_grids.find(file); it != m_grids.end()) {
            bounds = it->second.bounds();
            return true;
        }
        std::filesystem::path path;
        if (!ensureGridPresent(m_folders, file, path))
            return false;
        std::ifstream in(path, std::ios::binary);
        return in && readGridBounds(in, bounds).ok();
    };
    GeoidFileChoice choice;
    if (Status status = chooseGeoidFile(code, latitude, longitude, readBounds, choice); !status)
        return status;
    const GeoidGrid *opened = nullptr;
    if (Status status = open(choice.file, opened); !status)
        return status;
    if (!opened->bounds().contains(latitude, choice.longitude))
        return Status::failure(StatusCode::OutOfRange, beyondAreaMessage(code));
    grid = opened;
    lookupLongitude = choice.longitude;
    return Status::success();
}

Status GeoidModels::separation(int code, double latitude, double longitude, double &separation) {
    const GeoidGrid *grid = nullptr;
    double lon = 0;
    if (Status status = gridAt(code, latitude, longitude, grid, lon); !status)
        return status;
    if (!grid->separation(latitude, lon, separation))
        return Status::failure(StatusCode::OutOfRange, beyondAreaMessage(code));
    return Status::success();
}

Status gpsSeparation(GeoidModels &models, int code, double latitude, double longitude,
                     double &separation) {
    if (!isGeoidModel(code))
        return Status::failure(StatusCode::NotFound, tr(messages::kGeoidNotSetGps));
    Status status = models.separation(code, latitude, longitude, separation);
    if (status)
        return status;
    if (code == kAusGeoid98) {
        if (status.code == StatusCode::OutOfRange)
            return Status::failure(status.code, tr(messages::kAusGeoidNotDefined));
        return Status::failure(status.code, tr(messages::kAusGeoidNotInstalled));
    }
    if (status.code == StatusCode::OutOfRange)
        return Status::failure(status.code, tr(messages::kBeyondGeoidGps));
    return status;
}

} // namespace tramline::geodesy
