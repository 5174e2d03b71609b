// Process > GPS: every GPS position of a raw file brought onto the local
// grid by a fitted localization and stored in the coordinate file; and the
// alignment points a raw file offers (GPS positions paired with the grid
// coordinates of "--GS," notes or store points of the same name).
//
// A GPS record's LA and LN are packed ddd.mmss (north and east positive),
// its EL the ellipsoid height in the file's linear unit.
#pragma once

#include "base/report.h"
#include "crd/coordinate_file.h"
#include "geodesy/localization.h"
#include "raw/reader.h"

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace tramline::reduce {

struct GpsPosition {
    std::string name;
    std::string description;
    double latitude = 0.0;  ///< decimal degrees
    double longitude = 0.0; ///< decimal degrees
    double height = 0.0;    ///< ellipsoid height, the file's linear unit
    std::size_t lineNumber = 0;
};

/// The GPS records of a file, in file order; records whose position does
/// not parse are left out.
std::vector<GpsPosition> gpsPositions(const raw::RawFile &file);

/// Reads the alignment points of a raw file: each GPS record whose point
/// has grid coordinates in a "--GS," note or a store point of the same
/// name, heights brought from the file's unit into `units`. Repeated
/// measurements of a point are merged as `multiple` says. Fails with
/// NotFound ("No calibration records found") when no point pairs up.
Status alignmentFromRaw(std::istream &in, geodesy::LocalizationUnits units,
                        geodesy::MultipleMeasurements multiple,
                        std::vector<geodesy::AlignmentPoint> &points);
Status alignmentFromRawFile(const std::filesystem::path &path, geodesy::LocalizationUnits units,
                            geodesy::MultipleMeasurements multiple,
                            std::vector<geodesy::AlignmentPoint> &points);

struct GpsProcessResult {
    bool ok = false;
    std::string error; ///< why nothing was stored
    Report report;
    long pointsStored = 0;
};

/// Localizes every GPS record of `file` (whose linear unit gives the
/// heights' unit) and stores the points, in one bulk write, under their
/// names with their descriptions. A position that cannot be localized is
/// reported as a warning and not stored; a file without GPS records stores
/// nothing and fails. With the localization's "Create Point Notes" every
/// stored point gets the note "LINE:n,FILE:name" (its record's line and
/// `rawFileName`).
GpsProcessResult processGps(const raw::RawFile &file, const std::string &rawFileName,
                            const geodesy::Localization &localization,
                            const geodesy::GridProjector &projector,
                            crd::CoordinateFile &coordinates);

} // namespace tramline::reduce
