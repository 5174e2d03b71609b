// The least-squares observation file (".lsq"): one record a line,
// comma-separated, fixed decimals. Control points are held fixed, adjust
// points are the unknowns with their approximate positions, and the
// observations are horizontal distances, angles right and azimuths.
//
//   CP,id,northing,easting          AP,id,northing,easting
//   DIST,occupy,foresight,distance,standard error
//   ANG,backsight,occupy,foresight,angle (degrees),standard error (seconds)
//   AZ,occupy,foresight,azimuth (degrees),standard error (seconds)
//   ZVAL,id,elevation
#pragma once

#include "base/status.h"

#include <filesystem>
#include <istream>
#include <string>
#include <vector>

namespace tramline::adjust {

struct LsqPoint {
    std::string name;
    double north = 0.0; ///< length unit of the job
    double east = 0.0;
    long line = 0; ///< line of the file, 0 when not read from one
};

enum class ObservationKind { Distance, Angle, Azimuth };

/// One observation. Points are named `at` (occupy), `to` (foresight) and,
/// for angles, `from` (backsight).
struct LsqObservation {
    ObservationKind kind = ObservationKind::Distance;
    std::string from; ///< backsight of an angle; empty otherwise
    std::string at;
    std::string to;
    double value = 0.0;  ///< distance (length unit) or angle/azimuth (decimal degrees)
    double stdErr = 0.0; ///< length unit for distances, seconds for angles and azimuths
    long line = 0;
};

struct LsqElevation {
    std::string name;
    double elevation = 0.0;
};

struct LsqData {
    std::vector<LsqPoint> control;
    std::vector<LsqPoint> adjust;
    std::vector<LsqObservation> observations; ///< in file order
    std::vector<LsqElevation> elevations;     ///< kept for the file; the solve is horizontal
    bool empty() const { return control.empty() && adjust.empty() && observations.empty(); }
};

/// Reads the records of `in`. Blank lines are skipped; a line that is not
/// a record of the file fails with its line number and text. Standard errors
/// must be positive. Point names are not checked against each other here
/// (the network does that).
Status readLsq(std::istream &in, LsqData &data);

/// The file's text, records in the order control, adjust, observations,
/// elevations.
std::string lsqText(const LsqData &data);

/// Writes the file whole or not at all: "Error: failed to write
/// least-squares file" on failure.
Status saveLsq(const std::filesystem::path &path, const LsqData &data);

/// Reads a file from disk: "Error: failed to open read.dat" when it cannot
/// be opened (the program's message for the missing data file).
Status loadLsq(const std::filesystem::path &path, LsqData &data);

} // namespace tramline::adjust
