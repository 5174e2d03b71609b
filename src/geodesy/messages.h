// Every text the geodesy module shows to the user, in one place so that
// translators and tests see them all. The English text is the lookup key;
// call tr() on it before showing it.
#pragma once

#include "base/translation.h"

namespace tramline::geodesy::messages {

// Datum shift files.
inline constexpr const char *kMissingDatumShiftFile = trNoop("Error: missing datum shift file %s");
inline constexpr const char *kMissingOstnFile = trNoop("Error: missing OSTN file %s");
inline constexpr const char *kOutsideTransformationBoundary =
    trNoop("Error: outside transformation boundary");
inline constexpr const char *kOutsideShiftGrid = trNoop("Point is outside the range of the grid");
inline constexpr const char *kGridHeaderIncomplete =
    trNoop("Grid file truncated - header incomplete");
inline constexpr const char *kMissingGsType = trNoop("Missing GS_TYPE record in grid file header");
inline constexpr const char *kUnsupportedGsType =
    trNoop("Unsupported GS_TYPE in grid file - must be SECONDS");
inline constexpr const char *kMultipleGrids =
    trNoop("Grid file contains multiple grids - not supported");
inline constexpr const char *kInvalidNumSrec = trNoop("Invalid NUM_SREC record");
inline constexpr const char *kInvalidLatInc = trNoop("Invalid LAT_INC record in sub grid header");
inline constexpr const char *kNadConverter =
    trNoop("\nInternal Error1: failed to open NadConverter");

// Geoid models.
inline constexpr const char *kBeyondArea = trNoop("Error: beyond area covered by");
inline constexpr const char *kModelNotFound = trNoop("Error: unable to find geoid model");
inline constexpr const char *kDownloadFailed =
    trNoop("Error %d: failed to download geoid from\n%s");
inline constexpr const char *kGeoidNotSetGps =
    trNoop("Warning: Geoid model not set.\nRun Configure Field->GPS Settings.");
inline constexpr const char *kBeyondGeoidGps =
    trNoop("Warning: Beyond set Geoid model area.\nRun Configure Field->GPS Settings to reset.");
inline constexpr const char *kAusGeoidNotInstalled =
    trNoop("Error: AUSGeoid98 Geoid model not installed.");
inline constexpr const char *kAusGeoidNotDefined = trNoop(
    "Warning: AUSGeoid98 Geoid model not defined for current position.\nRun Configure Field->GPS "
    "Settings.");

// The Set Geoid Area tool.
inline constexpr const char *kMaxGeoidSize = trNoop("Warning: max geoid size is 15 degrees");
inline constexpr const char *kNotWithinCoverage =
    trNoop("Error: Point is not within grid coverage.");
inline constexpr const char *kUnableToWriteGeoid = trNoop("Error: unable to write Geoid grid.");
inline constexpr const char *kDone = trNoop("Done");
inline constexpr const char *kUnableToSetModel = trNoop("Error2: unable to set Geoid model.");
inline constexpr const char *kUnableToReadGeoid = trNoop("Error unable to read geoid");
inline constexpr const char *kGeoidNotSet = trNoop("Error: Geoid not set");

// Messages of this program's own making (no older text exists for them).
inline constexpr const char *kTypeNotSupported =
    trNoop("Error: projection type %s is not supported");
inline constexpr const char *kZoneNotSupported = trNoop("Error: zone %s is not supported");
inline constexpr const char *kUnknownZone = trNoop("Error: no zone %s in %s");
inline constexpr const char *kZoneNeedsGridZone =
    trNoop("Error: zone %s needs a grid zone number or a position");
inline constexpr const char *kBadGridZone = trNoop("Error: grid zone %s is not part of %s");
inline constexpr const char *kLatitudeBeyondPoles = trNoop("Error: latitude beyond the poles");
inline constexpr const char *kOutsideProjection =
    trNoop("Error: point outside the area the projection can map");
inline constexpr const char *kInvalidParameters =
    trNoop("Error: invalid projection parameters: %s");
inline constexpr const char *kNoZoneDatabase =
    trNoop("Error: the zone database (proj.db) cannot be read: %s");
inline constexpr const char *kNotWkt =
    trNoop("Error: not a compound coordinate system description");
inline constexpr const char *kBadWktValue =
    trNoop("Error: bad value in coordinate system description: %s");
inline constexpr const char *kCannotOpen = trNoop("Error: unable to open %s");
inline constexpr const char *kCannotWrite = trNoop("Error: unable to write %s");
inline constexpr const char *kGridFileBad = trNoop("Error: %s is not a grid file");
inline constexpr const char *kGridFileTruncated = trNoop("Error: grid file %s is truncated");
inline constexpr const char *kUnknownGeoidModel = trNoop("Error: no geoid model %d");
inline constexpr const char *kDatumShiftFailed = trNoop("Error: datum shift failed");
inline constexpr const char *kInvalidLongInc = trNoop("Invalid LONG_INC record in sub grid header");
inline constexpr const char *kInvalidExtent = trNoop("Invalid grid extent in sub grid header");
inline constexpr const char *kInvalidGsCount = trNoop("Invalid GS_COUNT record in sub grid header");
inline constexpr const char *kNodesTruncated =
    trNoop("Grid file truncated - grid nodes incomplete");
inline constexpr const char *kBadNode = trNoop("Invalid grid node record");

} // namespace tramline::geodesy::messages
