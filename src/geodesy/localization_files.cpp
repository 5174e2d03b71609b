#include "geodesy/localization_files.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/translation.h"
#include "geodesy/geoid_model.h"

#include <fstream>
#include <sstream>

namespace tramline::geodesy {

std::filesystem::path settingsPathFor(const std::filesystem::path &alignmentPath) {
    std::filesystem::path path = alignmentPath;
    return path.replace_extension(".ini");
}

Status saveLocalization(const std::filesystem::path &alignmentPath, const Localization &loc) {
    AlignmentFile file;
    file.points = loc.points;
    file.systemText = alignmentSystemText(loc.settings);
    file.geoidName = loc.settings.geoidModel ? geoidModelName(loc.settings.geoidModel) : "";
    bool written = false;
    if (Status status = saveAlignmentFile(alignmentPath, file, written); !status || !written)
        return status;
    const std::filesystem::path ini = settingsPathFor(alignmentPath);
    if (!saveTextAtomically(ini, settingsText(loc.settings)))
        return Status::failure(StatusCode::Io,
                               format(tr("\nError: unable to save file %s"), ini.string().c_str()));
    return {};
}

Status loadLocalization(const std::filesystem::path &alignmentPath, CoordinateSystem &system,
                        LocalizationSettings &settings, std::vector<AlignmentPoint> &points) {
    AlignmentFile file;
    if (Status status = loadAlignmentFile(alignmentPath, file); !status)
        return status;
    std::ifstream in(settingsPathFor(alignmentPath), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    applySettingsText(text.str(), settings);
    if (Status status = systemFromSettings(settings, system); !status)
        return status;
    points = mergeRepeatedPoints(file.points, settings.multiple);
    return {};
}

SeparationSource separationSource(GeoidModels &models, int code) {
    if (code == 0)
        return {};
    return [&models, code](double latitude, double longitude, double &separation) {
        return models.separation(code, latitude, longitude, separation);
    };
}

} // namespace tramline::geodesy
