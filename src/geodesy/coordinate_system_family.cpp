#include "geodesy/coordinate_system_family.h"

#include "base/text.h"
#include "base/translation.h"

#include <cctype>
#include <string>

namespace tramline::geodesy {

namespace {

struct FamilyNames {
    const char *name;
    const char *description;
};

constexpr FamilyNames kFamilies[kFamilyCount] = {
    {trNoop("State Plane 83"), "Projection: State Plane 83"},
    {trNoop("State Plane 27"), "Projection: State Plane 27"},
    {trNoop("UTM"), "Projection: UTM"},
    {trNoop("Lat/Lon"), "Projection: Lat/Lon"},
    {trNoop("Great Britain-OSGB36"), "Projection: OSGB36"},
    {trNoop("Australia"), "Projection: Australia"},
    {trNoop("New Zealand-NZGD2000"), "Projection: NZGD2000"},
    {trNoop("New Zealand-NZGD49"), "Projection: NZGD49"},
    {trNoop("France NTF-GR3DF97A"), "Projection: France NTF-GR3DF97A"},
    {trNoop("Barbados National Grid"), "Projection: Barbados National Grid"},
    {trNoop("More Pre-Defined/User-Defined"), ""},
    {trNoop("Australia-AGD84/AMG"), ""},
    {trNoop("Australia-AGD66/AMG"), ""},
};

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
        if (equalsIgnoreCase(name, kFamilies[i].name))
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
