// Prepare for the least-squares adjustment: the observations of a raw file
// (direct-reverse sets meaned) written as least-squares data, with the
// unadjusted coordinates of the processing pass as approximations.
//
// Control points are those the raw file or the coordinate file gives
// (occupy records with coordinates, store points, points looked up or
// entered); every other computed point is an adjust point. Each shot gives
// a DIST (its horizontal distance) and an ANG (backsight, occupy,
// foresight); at a set-up oriented by an azimuth alone the shot's direction
// is an AZ instead. A backsight record with both a point and an azimuth,
// and every reference azimuth ("AZ") record, give an AZ.
//
// Standard errors (the last CSE, SSE and MSE records before the shot; the
// defaults below where the file has none):
//   distance: sqrt(DT^2 + (PP 1e-6 D)^2 + IE^2 + TE^2)
//   angle:    sqrt(2 PE^2 + 2 RE^2 + (rho TE)^2 (1/D1^2 + 1/D2^2)
//                  + (rho IE D3)^2 / (2 D1^2 D2^2))      (seconds)
//   with D1, D2 the backsight and foresight lengths, D3 the distance
//   between backsight and foresight, rho = 206264.8; an angle is two
//   pointings and two readings.
//   azimuth:  CSE AZ.
#pragma once

#include "adjust/lsq_file.h"
#include "base/interaction.h"
#include "base/status.h"
#include "crd/coordinate_file.h"
#include "raw/reader.h"
#include "reduce/point_computation.h"
#include "reduce/process_options.h"

#include <filesystem>

namespace tramline::reduce {

/// The standard errors the raw file's records give. Lengths in metres here
/// (converted to the file's unit when used), angles in seconds.
struct ObservationErrors {
    double pointing = 2.0;            ///< PE, seconds: a 2" instrument's pointing
    double reading = 1.0;             ///< RE, seconds
    double distance = 0.003;          ///< DT, metres: constant part of the EDM error
    double ppm = 2.0;                 ///< PP, parts per million
    double instrumentCentre = 0.0015; ///< IE, metres: optical plummet
    double targetCentre = 0.002;      ///< TE, metres: prism pole with bubble
    double azimuth = 5.0;             ///< CSE AZ, seconds
};

/// Standard error of a horizontal distance `d` (file units; `unitsPerMetre`
/// converts the metric errors).
double distanceStdErr(const ObservationErrors &e, double d, double unitsPerMetre);
/// Standard error (seconds) of an angle with backsight length `d1`,
/// foresight length `d2` and backsight-foresight length `d3` (file units;
/// lengths of zero leave the centring terms out).
double angleStdErr(const ObservationErrors &e, double d1, double d2, double d3,
                   double unitsPerMetre);

/// Builds the least-squares data of `file`. `coordinates` (may be null)
/// gives the stored points. Fails with "Error: least-squares only handles
/// angle right shots" when a shot's angle is of another kind, and with the
/// pass's own errors.
Status prepareLeastSquares(const raw::RawFile &file, const ProcessOptions &options,
                           crd::CoordinateFile *coordinates, Interaction &ui,
                           adjust::LsqData &data);

/// The same from a file already reduced (direct-reverse sets meaned) and
/// its processing pass, whose points are the approximations.
Status collectLeastSquares(const raw::RawFile &file, const PassResult &pass,
                           const ProcessOptions &options, crd::CoordinateFile *coordinates,
                           Interaction &ui, adjust::LsqData &data);

/// The least-squares file kept beside a raw file: same name, ".lsq".
std::filesystem::path leastSquaresPathFor(const std::filesystem::path &rawFile);

} // namespace tramline::reduce
