// Every text the geodesy module shows to the user, in one place so that
// translators and tests see them all. The English text is the lookup key;
// call tr() on it before showing it.
#pragma once

namespace tramline::geodesy::messages {

// Datum shift files.
inline constexpr const char *kMissingDatumShiftFile = "Error: missing datum shift file %s";
inline constexpr const char *kMissingOstnFile = "Error: missing OSTN file %s";
inline constexpr const char *kOutsideTransformationBoundary =
    "Error: outside transformation boundary";
inline constexpr const char *kOutsideShiftGrid = "Point is outside the range of the grid";
inline constexpr const char *kGridHeaderIncomplete = "Grid file truncated - header incomplete";
inline constexpr const char *kMissingGsType = "Missing GS_TYPE record in grid file header";
inline constexpr const char *kUnsupportedGsType =
    "Unsupported GS_TYPE in grid file - must be SECONDS";
inline constexpr const char *kMultipleGrids = "Grid file contains multiple grids - not supported";
inline constexpr const char *kInvalidNumSrec = "Invalid NUM_SREC record";
inline constexpr const char *kInvalidLatInc = "Invalid LAT_INC record in sub grid header";
inline constexpr const char *kNadConverter = "\nInternal Error1: failed to open NadConverter";

// Geoid models.
inline constexpr const char *kBeyondArea = "Error: beyond area covered by";
inline constexpr const char *kModelNotFound = "Error: unable to find geoid model";
inline constexpr const char *kDownloadFailed = "Error %d: failed to download geoid from\n%s";
inline constexpr const char *kGeoidNotSetGps =
    "Warning: Geoid model not set.\nRun Configure Field->GPS Settings.";
inline constexpr const char *kBeyondGeoidGps =
    "Warning: Beyond set Geoid model area.\nRun Configure Field->GPS Settings to reset.";
inline constexpr const char *kAusGeoidNotInstalled = "Error: AUSGeoid98 Geoid model not installed.";
inline constexpr const char *kAusGeoidNotDefined =
    "Warning: AUSGeoid98 Geoid model not defined for current position.\nRun Configure Field->GPS "
    "Settings.";

// The Set Geoid Area tool.
inline constexpr const char *kMaxGeoidSize = "Warning: max geoid size is 15 degrees";
inline constexpr const char *kNotWithinCoverage = "Error: Point is not within grid coverage.";
inline constexpr const char *kUnableToWriteGeoid = "Error: unable to write Geoid grid.";
inline constexpr const char *kDone = "Done";
inline constexpr const char *kUnableToSetModel = "Error2: unable to set Geoid model.";
inline constexpr const char *kUnableToReadGeoid = "Error unable to read geoid";
inline constexpr const char *kGeoidNotSet = "Error: Geoid not set";

// Messages of this program's own making (no older text exists for them).
inline constexpr const char *kTypeNotSupported = "Error: projection type %s is not supported";
inline constexpr const char *kZoneNotSupported = "Error: zone %s is not supported";
inline constexpr const char *kUnknownZone = "Error: no zone %s in %s";
inline constexpr const char *kZoneNeedsGridZone =
    "Error: zone %s needs a grid zone number or a position";
inline constexpr const char *kBadGridZone = "Error: grid zone %s is not part of %s";
inline constexpr const char *kLatitudeBeyondPoles = "Error: latitude beyond the poles";
inline constexpr const char *kOutsideProjection =
    "Error: point outside the area the projection can map";
inline constexpr const char *kInvalidParameters = "Error: invalid projection parameters: %s";
inline constexpr const char *kNoZoneDatabase =
    "Error: the zone database (proj.db) cannot be read: %s";
inline constexpr const char *kNotWkt = "Error: not a compound coordinate system description";
inline constexpr const char *kBadWktValue = "Error: bad value in coordinate system description: %s";
inline constexpr const char *kCannotOpen = "Error: unable to open %s";
inline constexpr const char *kCannotWrite = "Error: unable to write %s";
inline constexpr const char *kGridFileBad = "Error: %s is not a grid file";
inline constexpr const char *kGridFileTruncated = "Error: grid file %s is truncated";
inline constexpr const char *kUnknownGeoidModel = "Error: no geoid model %d";
inline constexpr const char *kDatumShiftFailed = "Error: datum shift failed";
inline constexpr const char *kInvalidLongInc = "Invalid LONG_INC record in sub grid header";
inline constexpr const char *kInvalidExtent = "Invalid grid extent in sub grid header";
inline constexpr const char *kInvalidGsCount = "Invalid GS_COUNT record in sub grid header";
inline constexpr const char *kNodesTruncated = "Grid file truncated - grid nodes incomplete";
inline constexpr const char *kBadNode = "Invalid grid node record";

} // namespace tramline::geodesy::messages
