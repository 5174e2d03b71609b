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

void scaleOnly(JxlWriter &out) {
    out.open("Ellipsoid");
    out.raw("EarthRadius", "6378137");
    out.raw("Flattening", "0.00335281068751");
    out.close("Ellipsoid");
    out.open("Projection");
    out.raw("Type", "ScaleOnly");
    out.raw("Scale", "1");
    out.raw("SouthAzimuth", "false");
    out.raw("GridOrientation", "IncreasingNorthEast");
    out.raw("ApplySeaLevelCorrection", "false");
    out.close("Projection");
    out.open("LocalSite");
    out.raw("Type", "Grid");
    out.empty("ProjectLocationLatitude");
    out.empty("ProjectLocationLongitude");
    out.raw("ProjectLocationHeight", "0");
    out.close("LocalSite");
    out.open("Datum");
    out.raw("Type", "NoDatum");
    out.close("Datum");
    out.open("HorizontalAdjustment");
    out.raw("Type", "NoAdjustment");
    out.close("HorizontalAdjustment");
    out.open("VerticalAdjustment");
    out.raw("Type", "NoAdjustment");
    out.close("VerticalAdjustment");
    out.open("CombinedScaleFactor");
    out.open("Location");
    out.empty("Latitude");
    out.empty("Longitude");
    out.raw("Height", "0");
    out.close("Location");
    out.raw("Scale", "1");
    out.close("CombinedScaleFactor");
}

void utm(JxlWriter &out, const JxlGrid &grid) {
    out.raw("ZoneName", format("%d%c", grid.zone, grid.south ? 'S' : 'N'));
    out.open("Ellipsoid");
    out.raw("EarthRadius", "6378137");
    out.raw("Flattening", "0.00335281068751");
    out.close("Ellipsoid");
    out.open("Projection");
    out.raw("Type", "TransverseMercator");
    out.number("CentralLatitude", 0.0, 8);
    out.number("CentralLongitude", grid.zone * 6.0 - 183.0, 8);
    out.raw("FalseNorthing", format("%f", grid.south ? 10000000.0 : 0.0));
    out.raw("FalseEasting", format("%f", 500000.0));
    out.raw("Scale", format("%f", 0.9996));
    out.raw("SouthAzimuth", "false");
    out.raw("GridOrientation", "IncreasingNorthEast");
    out.raw("ApplySeaLevelCorrection", "true");
    out.close("Projection");
    out.open("LocalSite");
    out.raw("Type", "Grid");
    out.empty("ProjectLocationLatitude");
    out.empty("ProjectLocationLongitude");
    out.raw("ProjectLocationHeight", "0");
    out.close("LocalSite");
    out.open("Datum");
    out.raw("Type", "ThreeParameter");
    out.raw("Direction", "WGS84ToLocal");
    out.raw("EarthRadius", "6378137");
    out.raw("Flattening", "0.00335281067183");
    out.raw("TranslationX", "0");
    out.raw("TranslationY", "0");
    out.raw("TranslationZ", "0");
    out.close("Datum");
    out.open("HorizontalAdjustment");
    out.raw("Type", "NoAdjustment");
    out.close("HorizontalAdjustment");
    out.open("VerticalAdjustment");
    out.raw("Type", "GeoidModel");
    out.raw("GeoidName", "G12AUS");
    out.close("VerticalAdjustment");
    out.empty("CombinedScaleFactor");
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
    out.open("JobSettings");
    out.open("NeighbourhoodAdjustment");
    out.raw("Applied", "false");
    out.raw("WeightExponent", "0.5");
    out.close("NeighbourhoodAdjustment");
    out.close("JobSettings");
    out.open("TimeZone");
    out.raw("ZoneName", "Eastern Standard Time");
    out.raw("HoursToUTC", "5");
    out.close("TimeZone");
    out.close("Environment");
}

} // namespace tramline::convert
