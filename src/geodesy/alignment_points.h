// The alignment points of a localization (GPS positions paired with known
// local coordinates) and the settings that say how they are fitted and
// reported.
#pragma once

#include "base/units.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tramline::geodesy {

/// At most this many alignment points make one localization.
inline constexpr std::size_t kMaxAlignmentPoints = 99;
/// Descriptions are cut to this many characters.
inline constexpr std::size_t kAlignmentDescriptionLength = 79;

/// One alignment point. The description names the point (a raw file's
/// point name when loaded from one).
struct AlignmentPoint {
    double latitude = 0.0;        ///< WGS 84, decimal degrees, north positive
    double longitude = 0.0;       ///< WGS 84, decimal degrees, east positive
    double ellipsoidHeight = 0.0; ///< WGS 84 ellipsoid height, localization units
    double localX = 0.0;          ///< local easting, localization units
    double localY = 0.0;          ///< local northing, localization units
    double localZ = 0.0;          ///< local elevation, localization units
    double hrms = 0.0;            ///< horizontal quality of the GPS position
    double vrms = 0.0;            ///< vertical quality of the GPS position
    bool useHorizontal = true;
    bool useVertical = true;
    std::string description;
};

/// The columns of the point list, in order.
std::vector<std::string> alignmentColumnNames();

/// What several measurements of one point make.
enum class MultipleMeasurements : int { UseLast = 0, Average = 1, UseFirst = 2 };

/// The units of the localization ("is_metric"), in the order the choice
/// lists them.
enum class LocalizationUnits : int { UsFeet = 0, Metres = 1, InternationalFeet = 2 };

LinearUnit linearUnit(LocalizationUnits units);
/// "US Feet", "Meters", "Int'l Feet" (untranslated).
const char *unitsChoice(LocalizationUnits units);
/// "US Feet", "Meters", "International Feet": the report's spelling.
const char *unitsReportName(LocalizationUnits units);

struct LocalizationSettings {
    std::string family; ///< "proj_type": the family's name
    std::string zone;
    std::string datumName;
    bool defineDatum = false; ///< estimate the seven parameters from the points
    bool useAlignmentFile = false;
    bool rigid = false;           ///< "Rigid Body (No Scale)" instead of "Plane Similarity"
    bool tilted = false;          ///< "Tilted Plane" instead of "Level Plane"
    bool geodeticAzimuth = false; ///< one point: "Geodetic" instead of "State Plane Grid"
    bool rotateOnly = false;      ///< two points: "Rotate Only" instead of "Fit & Rotate"
    int geoidModel = 0;           ///< 0: none
    double projectScale = 1.0;    ///< grid distance over ground distance
    int places = 3;               ///< report decimals, 2 to 4
    LocalizationUnits units = LocalizationUnits::Metres;
    MultipleMeasurements multiple = MultipleMeasurements::UseLast;
    bool pointNotes = false;
};

/// "Localization Report Settings", kept in "locreport.ini".
struct LocalizationReportSettings {
    bool projectionParameters = true;
    bool transformationParameters = true;
    bool formulas = true;
};

inline constexpr const char *kLocalizationReportIni = "locreport.ini";

/// The settings as "key=value" lines under their keys, and back. Unknown
/// keys and values that do not parse leave the setting as it was.
std::string settingsText(const LocalizationSettings &settings);
void applySettingsText(const std::string &text, LocalizationSettings &settings);
std::string reportSettingsText(const LocalizationReportSettings &settings);
void applyReportSettingsText(const std::string &text, LocalizationReportSettings &settings);

/// Reads and writes "locreport.ini"; a missing file keeps the defaults.
LocalizationReportSettings loadReportSettings(const std::filesystem::path &path);
bool saveReportSettings(const std::filesystem::path &path,
                        const LocalizationReportSettings &settings);

/// Merges points of the same description as `multiple` says, keeping the
/// order of first appearance.
std::vector<AlignmentPoint> mergeRepeatedPoints(const std::vector<AlignmentPoint> &points,
                                                MultipleMeasurements multiple);

} // namespace tramline::geodesy
