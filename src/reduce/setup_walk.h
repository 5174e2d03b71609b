// The walk over a raw file's set-ups, in file order: each OC record opens a
// set-up, its BK records orient it (by a backsight point or an azimuth),
// LS records give the heights, "--Elevation: 2D|3D" notes switch the
// elevation mode, and every shot is reduced (scale factor, curvature and
// refraction, stadia) and turned into an azimuth. What becomes of a shot is
// the client's business: point computation stores its foresight, a network
// adjustment collects it as an observation of its set-up.
//
// Usage:
//   class Collector : public SetupWalkClient { ... shot(setup, shot) ... };
//   Collector c;
//   const WalkOutcome out = walkSetups(file, options, {}, c, ui);
#pragma once

#include "base/interaction.h"
#include "raw/reader.h"
#include "reduce/measurement.h"
#include "reduce/process_options.h"
#include "reduce/traverse_adjustment.h"

#include <optional>
#include <set>
#include <string>

namespace tramline::reduce {

/// The set-up in force when a shot is reduced.
struct Setup {
    std::string occupied;         ///< occupied point
    TraversePoint station;        ///< its coordinates
    long line = 0;                ///< raw line of the OC record
    std::string backsight;        ///< backsight point; empty when oriented by an azimuth
    double orientation = 0.0;     ///< backsight azimuth, decimal degrees
    bool oriented = false;        ///< a backsight has been taken
    bool orientedByPoint = false; ///< the last backsight oriented by its point's coordinates
    int backsights = 0;           ///< backsight records taken at this set-up
    std::optional<double> hi, hr; ///< instrument and rod heights; empty when unset
    double scaleFactor = 1.0;     ///< the fixed factor, or the combined one at the station
    bool elevations = true;       ///< 3D; "--Elevation: 2D" notes turn it off
    int traverseShotsBefore = 0;  ///< traverse shots walked before the set-up opened
};

/// One shot as reduced at its set-up.
struct ReducedShot {
    const raw::Observation *observation = nullptr;
    long line = 0;
    ReducedMeasurement measurement; ///< horizontal distance and height difference
    double vertical = 0.0;          ///< height difference, or the record's own in CE mode
    double angle = 0.0;             ///< the horizontal angle as measured, decimal degrees
    double azimuth = 0.0;           ///< decimal degrees 0..360, angle correction included
    bool traverse = false;          ///< a side of the traverse (TR, CL, CL+AB)
    bool balance = false;           ///< measures the closing direction (AB, CL+AB)
};

/// How the walk established a point's coordinates.
enum class GivenBy { OccupyRecord, Entered, StorePoint };

class SetupWalkClient {
public:
    virtual ~SetupWalkClient() = default;
    /// Coordinates of a point the walk needs: occupied and backsight
    /// points, the targets of elevation records and depth notes.
    virtual std::optional<TraversePoint> known(const std::string &name) = 0;
    /// Coordinates the walk established (an OC record's own, the user's
    /// entry, a store point record).
    virtual void given(const TraversePoint &, long /*line*/, GivenBy) {}
    /// An EL record or a depth note (`depth` set) changed a known point's elevation.
    virtual void elevationChanged(const TraversePoint &, long /*line*/,
                                  std::optional<double> /*depth*/) {}
    virtual void setupOpened(const Setup &) {}
    /// A BK record oriented the set-up (line of the record).
    virtual void backsightTaken(const Setup &, long /*line*/) {}
    /// The station a backsight point's direction is taken from; the
    /// occupied point unless the client knows a better position for it.
    virtual TraversePoint orientationStation(const Setup &setup) { return setup.station; }
    virtual void shot(const Setup &, const ReducedShot &) = 0;
    virtual void warning(const std::string &) {}
};

struct WalkOutcome {
    enum class Status { Done, Stopped, ReturnToEditor };
    Status status = Status::Done;
    std::string error; ///< why the walk stopped
};

/// Walks `file` with the reduction options of `options`, handing every set-up
/// event and reduced shot to `client`. Traverse directions are turned by
/// `traverseAngleCorrection` degrees per traverse side, so that the k-th side
/// turns by k corrections whatever kind of angle measured it. Missing
/// coordinates of occupied and backsight points are asked of `ui`.
WalkOutcome walkSetups(const raw::RawFile &file, const ProcessOptions &options,
                       double traverseAngleCorrection, SetupWalkClient &client, Interaction &ui);

/// Azimuth (decimal degrees, 0..360) of a shot's direction from the
/// backsight azimuth and its horizontal angle (decimal degrees) by kind.
double shotAzimuth(raw::HorizontalKind kind, double angle, double backsightAzimuth);

/// True for the angle kinds turned from the backsight direction (angles
/// and deflections); false for directions of their own (azimuths, bearings).
bool turnedFromBacksight(raw::HorizontalKind kind);

/// The points occupied somewhere in `file` (a sideshot to one of them is a
/// sideshot traverse).
std::set<std::string> occupiedPoints(const raw::RawFile &file);

} // namespace tramline::reduce
