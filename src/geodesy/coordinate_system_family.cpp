#include "geodesy/coordinate_system_family.h"

#include <cctype>
#include <string>

namespace tramline::geodesy {

namespace {

struct FamilyNames {
    const char *name;
    const char *description;
};

constexpr FamilyNames kFamilies[kFamilyCount] = {
    {"State Plane 83", "Projection: State Plane 83"},
    {"State Plane 27", "Projection: State Plane 27"},
    {"UTM", "Projection: UTM"},
    {"Lat/Lon", "Projection: Lat/Lon"},
    {"Great Britain-OSGB36", "Projection: OSGB36"},
    {"Australia", "Projection: Australia"},
    {"New Zealand-NZGD2000", "Projection: NZGD2000"},
    {"New Zealand-NZGD49", "Projection: NZGD49"},
    {"France NTF-GR3DF97A", "Projection: France NTF-GR3DF97A"},
    {"Barbados National Grid", "Projection: Barbados National Grid"},
    {"More Pre-Defined/User-Defined", ""},
    {"Australia-AGD84/AMG", ""},
    {"Australia-AGD66/AMG", ""},
};

std::string lower(std::string_view s) {
    std::string out(s);
    for (char &c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

} // namespace

std::optional<CoordinateSystemFamily> familyFromCode(int code) {
    if (code < 0 || code >= kFamilyCount)
        return std::nullopt;
    return static_cast<CoordinateSystemFamily>(code);
}

const char *familyName(CoordinateSystemFamily family) {
    return kFamilies[static_cast<int>(family)].name;
}

std::optional<CoordinateSystemFamily> familyFromName(std::string_view name) {
    for (int i = 0; i < kFamilyCount; ++i)
        if (name == kFamilies[i].name)
            return static_cast<CoordinateSystemFamily>(i);
    for (int i = 0; i < kFamilyCount; ++i)
        if (lower(name) == lower(kFamilies[i].name))
            return static_cast<CoordinateSystemFamily>(i);
    if (!name.empty() && name.size() <= 2 && std::isdigit(static_cast<unsigned char>(name[0])) &&
        std::isdigit(static_cast<unsigned char>(name.back())))
        return familyFromCode(std::stoi(std::string(name)));
    return std::nullopt;
}

const char *familyDescription(CoordinateSystemFamily family) {
    return kFamilies[static_cast<int>(family)].description;
}

} // namespace tramline::geodesy
