#include "geodesy/projection_type.h"

#include "base/text.h"
#include "base/translation.h"

namespace tramline::geodesy {

namespace {

struct TypeNames {
    const char *shown;
    const char *written;
};

constexpr TypeNames kTypeNames[kProjectionTypeCount] = {
    {trNoop("Transverse Mercator"), "Transverse_Mercator"},
    {trNoop("Lambert Conformal Conic 1SP"), "Lambert_Conformal_Conic"},
    {trNoop("Lambert Conformal Conic 2SP"), "Lambert_Conformal_Conic_2SP"},
    {trNoop("Double Stereographic"), "Oblique_Stereographic"},
    {trNoop("Oblique Mercator"), "Oblique_Mercator"},
    {trNoop("Oblique Stereographic"), "Stereographic"},
    {trNoop("Transverse Mercator 34"), "Transverse_Mercator_34"},
    {trNoop("Transverse Mercator GGRS87"), "Transverse_Mercator_GGRS87"},
    {trNoop("Transverse Mercator OSTN02"), "Transverse_Mercator_OSTN02"},
    {trNoop("Oblique Mercator EOV"), "Oblique_Mercator_EOV"},
    {trNoop("Hotine Oblique Mercator"), "Hotine_Oblique_Mercator"},
    {trNoop("Krovak Oblique Conic Conformal"), "Krovak_Oblique_Conic_Conformal"},
    {trNoop("Oblique Stereographic RD2000"), "Oblique_Stereographic_RD2000"},
    {trNoop("Oblique Stereographic RD2004"), "Oblique_Stereographic_RD2004"},
    {trNoop("Oblique Mercator 27"), "Oblique_Mercator_27"},
    {trNoop("Oblique Mercator 83"), "Oblique_Mercator_83"},
    {trNoop("Lambert Conformal Conic 27"), "Lambert_Conformal_Conic_27"},
    {trNoop("Transverse Mercator 27"), "Transverse_Mercator_27"},
    {trNoop("Transverse Mercator Alaska 27"), "Transverse_Mercator_Alaska_27"},
    {trNoop("Cassini_Soldner"), "Cassini_Soldner"},
    {trNoop("New Zealand Map Grid"), "New_Zealand_Map_Grid"},
};

struct ParameterInfo {
    const char *wktName;
    const char *label;
    ParameterKind kind;
};

constexpr ParameterInfo kParameters[kProjectionParameterCount] = {
    {"latitude_of_origin", trNoop("Latitude of Origin"), ParameterKind::Angle},
    {"central_meridian", trNoop("Central Meridian"), ParameterKind::Angle},
    {"scale_factor", trNoop("Scale Factor"), ParameterKind::Scale},
    {"false_easting", trNoop("False Easting"), ParameterKind::Length},
    {"false_northing", trNoop("False Northing"), ParameterKind::Length},
    {"standard_parallel_1", trNoop("Standard Parallel"), ParameterKind::Angle},
    {"standard_parallel_2", trNoop("Standard Parallel"), ParameterKind::Angle},
    {"latitude_of_center", trNoop("Latitude of Center"), ParameterKind::Angle},
    {"longitude_of_center", trNoop("Longitude of Center"), ParameterKind::Angle},
    {"azimuth", trNoop("Azimuth"), ParameterKind::Angle},
    {"rectified_grid_angle", trNoop("Rectified Grid Angle"), ParameterKind::Angle},
    {"pseudo_standard_parallel_1", trNoop("Pseudo Standard Parallel"), ParameterKind::Angle},
    {"denmark_area", trNoop("Area"), ParameterKind::Integer},
    {"zone_width", trNoop("Zone Width"), ParameterKind::Angle},
};

using P = ProjectionParameter;

} // namespace

std::optional<ProjectionType> projectionTypeFromCode(int code) {
    if (code < 0 || code >= kProjectionTypeCount)
        return std::nullopt;
    return static_cast<ProjectionType>(code);
}

const char *projectionTypeName(ProjectionType type) {
    return kTypeNames[static_cast<int>(type)].shown;
}

const char *projectionTypeWktName(ProjectionType type) {
    return kTypeNames[static_cast<int>(type)].written;
}

std::optional<ProjectionType> projectionTypeFromWktName(std::string_view name) {
    for (int i = 0; i < kProjectionTypeCount; ++i)
        if (equalsIgnoreCase(name, kTypeNames[i].written))
            return static_cast<ProjectionType>(i);
    return std::nullopt;
}

ParameterKind parameterKind(ProjectionParameter parameter) {
    return kParameters[static_cast<int>(parameter)].kind;
}

const char *parameterLabel(ProjectionParameter parameter) {
    return kParameters[static_cast<int>(parameter)].label;
}

const std::vector<WrittenParameter> &writtenParameters(ProjectionType type) {
    static const std::vector<WrittenParameter> tm = {{"false_easting", P::FalseEasting},
                                                     {"false_northing", P::FalseNorthing},
                                                     {"central_meridian", P::CentralMeridian},
                                                     {"scale_factor", P::ScaleFactor},
                                                     {"latitude_of_origin", P::LatitudeOfOrigin}};
    static const std::vector<WrittenParameter> lcc1 = {
        {"latitude_of_origin", P::LatitudeOfOrigin}, {"standard_parallel_1", P::StandardParallel1},
        {"central_meridian", P::CentralMeridian},    {"scale_factor", P::ScaleFactor},
        {"false_easting", P::FalseEasting},          {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> lcc2 = {
        {"latitude_of_origin", P::LatitudeOfOrigin},
        {"central_meridian", P::CentralMeridian},
        {"standard_parallel_1", P::StandardParallel1},
        {"standard_parallel_2", P::StandardParallel2},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> stereo = {
        {"latitude_of_origin", P::LatitudeOfOrigin},
        {"central_meridian", P::CentralMeridian},
        {"scale_factor", P::ScaleFactor},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> om = {
        {"latitude_of_center", P::LatitudeOfCenter},
        {"longitude_of_center", P::LongitudeOfCenter},
        {"azimuth", P::Azimuth},
        {"rectified_grid_angle", P::RectifiedGridAngle},
        {"XY_Plane_Rotation", P::RectifiedGridAngle},
        {"scale_factor", P::ScaleFactor},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> tm34 = {{"latitude_of_origin", P::LatitudeOfOrigin},
                                                       {"central_meridian", P::CentralMeridian},
                                                       {"scale_factor", P::ScaleFactor},
                                                       {"denmark_area", P::DenmarkArea},
                                                       {"false_easting", P::FalseEasting},
                                                       {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> ostn = {{"latitude_of_origin", P::LatitudeOfOrigin},
                                                       {"central_meridian", P::CentralMeridian},
                                                       {"scale_factor", P::ScaleFactor},
                                                       {"false_easting", P::FalseEasting},
                                                       {"false_northing", P::FalseNorthing},
                                                       {"zone_width", P::ZoneWidth}};
    static const std::vector<WrittenParameter> eov = {{"false_easting", P::FalseEasting},
                                                      {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> hotine = {
        {"latitude_of_center", P::LatitudeOfCenter},
        {"longitude_of_center", P::LongitudeOfCenter},
        {"azimuth", P::Azimuth},
        {"rectified_grid_angle", P::RectifiedGridAngle},
        {"scale_factor", P::ScaleFactor},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> krovak = {
        {"latitude_of_center", P::LatitudeOfCenter},
        {"longitude_of_center", P::LongitudeOfCenter},
        {"azimuth", P::Azimuth},
        {"scale_factor", P::ScaleFactor},
        {"pseudo_standard_parallel_1", P::PseudoStandardParallel},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> om83 = {
        {"latitude_of_center", P::LatitudeOfCenter},
        {"longitude_of_center", P::LongitudeOfCenter},
        {"azimuth", P::Azimuth},
        {"scale_factor", P::ScaleFactor},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> cassini = {
        {"latitude_of_origin", P::LatitudeOfOrigin},
        {"central_meridian", P::CentralMeridian},
        {"false_easting", P::FalseEasting},
        {"false_northing", P::FalseNorthing}};
    static const std::vector<WrittenParameter> none;

    switch (type) {
    case ProjectionType::TransverseMercator:
        return tm;
    case ProjectionType::LambertConformalConic1SP:
        return lcc1;
    case ProjectionType::LambertConformalConic2SP:
        return lcc2;
    case ProjectionType::DoubleStereographic:
    case ProjectionType::ObliqueStereographic:
    case ProjectionType::TransverseMercatorGgrs87:
    case ProjectionType::ObliqueStereographicRd2000:
    case ProjectionType::ObliqueStereographicRd2004:
        return stereo;
    case ProjectionType::ObliqueMercator:
        return om;
    case ProjectionType::TransverseMercator34:
        return tm34;
    case ProjectionType::TransverseMercatorOstn02:
        return ostn;
    case ProjectionType::ObliqueMercatorEov:
        return eov;
    case ProjectionType::HotineObliqueMercator:
        return hotine;
    case ProjectionType::Krovak:
        return krovak;
    case ProjectionType::ObliqueMercator83:
        return om83;
    case ProjectionType::CassiniSoldner:
    case ProjectionType::NewZealandMapGrid:
        return cassini;
    case ProjectionType::ObliqueMercator27:
    case ProjectionType::LambertConformalConic27:
    case ProjectionType::TransverseMercator27:
    case ProjectionType::TransverseMercatorAlaska27:
        break;
    }
    return none;
}

std::optional<ProjectionParameter> parameterFromWktName(std::string_view name) {
    for (int i = 0; i < kProjectionParameterCount; ++i)
        if (equalsIgnoreCase(name, kParameters[i].wktName))
            return static_cast<ProjectionParameter>(i);
    if (equalsIgnoreCase(name, "XY_Plane_Rotation"))
        return ProjectionParameter::RectifiedGridAngle;
    return std::nullopt;
}

bool usesCoefficients(ProjectionType type) {
    return type == ProjectionType::ObliqueMercator27 ||
           type == ProjectionType::LambertConformalConic27 ||
           type == ProjectionType::TransverseMercator27 ||
           type == ProjectionType::TransverseMercatorAlaska27;
}

std::vector<std::string> coefficientNames(ProjectionType type, std::size_t count) {
    switch (type) {
    case ProjectionType::ObliqueMercator27:
        return {"a", "b", "c", "d", "f", "g", "h", "i", "e", "epsilon", "lambda0"};
    case ProjectionType::TransverseMercatorAlaska27:
        return {"c", "cm"};
    case ProjectionType::LambertConformalConic27:
    case ProjectionType::TransverseMercator27: {
        const char prefix = type == ProjectionType::LambertConformalConic27 ? 'l' : 't';
        std::vector<std::string> names;
        for (std::size_t i = 1; i <= count; ++i)
            names.push_back(prefix + std::to_string(i));
        return names;
    }
    default:
        return {};
    }
}

} // namespace tramline::geodesy
