#include "convert/jxl_environment.h"

#include "base/format.h"

#include <algorithm>
#include <cmath>

namespace tramline::convert {

JxlGrid utmZoneOf(double latitude, double longitude) {
    const int zone = int(std::floor((longitude + 180.0) / 6.0)) + 1;
    return {std::clamp(zone, 1, 60), latitude < 0.0};
}

void writeJxlDisplaySettings(JxlWriter &out, LinearUnit unit) {
    const bool metres = unit == LinearUnit::Metres;
    const bool us = unit == LinearUnit::UsSurveyFeet;
    const char *distance = metres ? "Metres" : us ? "USSurveyFeet" : "InternationalFeet";
    out.raw("DistanceUnits", distance);
    out.raw("HeightUnits", distance);
    out.raw("AngleUnits", "DMSDegrees");
    out.raw("AzimuthFormat", "Azimuth");
    out.raw("LatitudeLongitudeUnits", "DMSDegrees");
    out.raw("CoordinateOrder", "North-East-Elevation");
    out.raw("TemperatureUnits", metres ? "Celsius" : "Fahrenheit");
    out.raw("PressureUnits", metres ? "mmHg" : "InchHg");
    out.raw("GradeUnits", "Percentage");
    out.raw("AreaUnits", metres ? "SquareMetres" : us ? "SquareUSSurveyFeet" : "SquareFeet");
    out.raw("VolumeUnits", metres ? "CubicMetres" : us ? "CubicUSSurveyFeet" : "CubicFeet");
    out.raw("StationingFormat", "1+000.0");
    out.empty("StationIndexIncrement");
}

namespace {

using namespace jxl;

// The parts of the two coordinate system forms that never change.
constexpr JxlField kEllipsoid[] = {open("Ellipsoid"), value("EarthRadius", "6378137"),
                                   value("Flattening", "0.00335281068751"), close("Ellipsoid")};
constexpr JxlField kLocalSite[] = {open("LocalSite"),
                                   value("Type", "Grid"),
                                   empty("ProjectLocationLatitude"),
                                   empty("ProjectLocationLongitude"),
                                   value("ProjectLocationHeight", "0"),
                                   close("LocalSite")};
constexpr JxlField kNoHorizontalAdjustment[] = {
    open("HorizontalAdjustment"), value("Type", "NoAdjustment"), close("HorizontalAdjustment")};

constexpr JxlField kScaleOnlyProjection[] = {open("Projection"),
                                             value("Type", "ScaleOnly"),
                                             value("Scale", "1"),
                                             value("SouthAzimuth", "false"),
                                             value("GridOrientation", "IncreasingNorthEast"),
                                             value("ApplySeaLevelCorrection", "false"),
                                             close("Projection")};
constexpr JxlField kScaleOnlyDatum[] = {open("Datum"), value("Type", "NoDatum"), close("Datum")};
constexpr JxlField kScaleOnlyRest[] = {open("VerticalAdjustment"),
                                       value("Type", "NoAdjustment"),
                                       close("VerticalAdjustment"),
                                       open("CombinedScaleFactor"),
                                       open("Location"),
                                       empty("Latitude"),
                                       empty("Longitude"),
                                       value("Height", "0"),
                                       close("Location"),
                                       value("Scale", "1"),
                                       close("CombinedScaleFactor")};

constexpr JxlField kUtmProjectionEnd[] = {
    value("SouthAzimuth", "false"), value("GridOrientation", "IncreasingNorthEast"),
    value("ApplySeaLevelCorrection", "true"), close("Projection")};
constexpr JxlField kUtmDatum[] = {open("Datum"),
                                  value("Type", "ThreeParameter"),
                                  value("Direction", "WGS84ToLocal"),
                                  value("EarthRadius", "6378137"),
                                  value("Flattening", "0.00335281067183"),
                                  value("TranslationX", "0"),
                                  value("TranslationY", "0"),
                                  value("TranslationZ", "0"),
                                  close("Datum")};
constexpr JxlField kUtmRest[] = {open("VerticalAdjustment"), value("Type", "GeoidModel"),
                                 value("GeoidName", "G12AUS"), close("VerticalAdjustment"),
                                 empty("CombinedScaleFactor")};

constexpr JxlField kJobSettingsAndTimeZone[] = {open("JobSettings"),
                                                open("NeighbourhoodAdjustment"),
                                                value("Applied", "false"),
                                                value("WeightExponent", "0.5"),
                                                close("NeighbourhoodAdjustment"),
                                                close("JobSettings"),
                                                open("TimeZone"),
                                                value("ZoneName", "Eastern Standard Time"),
                                                value("HoursToUTC", "5"),
                                                close("TimeZone")};

void scaleOnly(JxlWriter &out) {
    out.fixed(kEllipsoid);
    out.fixed(kScaleOnlyProjection);
    out.fixed(kLocalSite);
    out.fixed(kScaleOnlyDatum);
    out.fixed(kNoHorizontalAdjustment);
    out.fixed(kScaleOnlyRest);
}

void utm(JxlWriter &out, const JxlGrid &grid) {
    out.raw("ZoneName", format("%d%c", grid.zone, grid.south ? 'S' : 'N'));
    out.fixed(kEllipsoid);
    out.open("Projection");
    out.raw("Type", "TransverseMercator");
    out.number("CentralLatitude", 0.0, 8);
    out.number("CentralLongitude", grid.zone * 6.0 - 183.0, 8);
    out.raw("FalseNorthing", format("%f", grid.south ? 10000000.0 : 0.0));
    out.raw("FalseEasting", format("%f", 500000.0));
    out.raw("Scale", format("%f", 0.9996));
    out.fixed(kUtmProjectionEnd);
    out.fixed(kLocalSite);
    out.fixed(kUtmDatum);
    out.fixed(kNoHorizontalAdjustment);
    out.fixed(kUtmRest);
}

} // namespace

void writeJxlEnvironment(JxlWriter &out, LinearUnit unit, const JxlGrid &grid) {
    out.open("Environment");
    out.open("DisplaySettings");
    writeJxlDisplaySettings(out, unit);
    out.close("DisplaySettings");
    out.open("CoordinateSystem");
    if (grid.zone > 0)
        utm(out, grid);
    else
        scaleOnly(out);
    out.close("CoordinateSystem");
    out.fixed(kJobSettingsAndTimeZone);
    out.close("Environment");
}

} // namespace tramline::convert
