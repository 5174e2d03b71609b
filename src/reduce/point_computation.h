// The measurement pass: the set-up walk's client that computes every
// shot's foresight and keeps the listing of the run. Points are gathered
// in memory and written by the caller at the end, so that a run the user
// cancels leaves the coordinate file as it was.
#pragma once

#include "base/bulk_allocator.h"
#include "base/interaction.h"
#include "base/text_hash.h"
#include "raw/reader.h"
#include "reduce/process_options.h"
#include "reduce/setup_walk.h"
#include "reduce/traverse_adjustment.h"

#include <functional>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tramline::reduce {

/// A point the pass stores.
struct ComputedPoint {
    TraversePoint point;  ///< elevation unset when hasElevation is false
    long line = 0;        ///< raw line (grid row) that gave it
    bool control = false; ///< from a store point record: never overwritten by a shot
};

/// The angle balance shot as measured.
struct BalanceShot {
    std::string occupied, foresight;
    double measuredAzimuth = 0.0; ///< decimal degrees
    long line = 0;
};

/// The SDR adjustments a collector stored in "--HZADJ:" and "--VERTADJ:"
/// notes, used when the user says so.
struct SdrHorizontalAdjustment {
    double originNorth = 0, originEast = 0, deltaNorth = 0, deltaEast = 0;
    double rotation = 0; ///< decimal degrees, clockwise like an azimuth
    double scale = 1;
};
struct SdrVerticalAdjustment {
    double originNorth = 0, originEast = 0, heightConstant = 0, slopeNorth = 0, slopeEast = 0;
};

struct PassInput {
    const raw::RawFile *file = nullptr;
    std::string rawFileName;
    ProcessOptions options;
    /// Coordinates stored before the run (the coordinate file).
    std::function<std::optional<TraversePoint>(const std::string &)> lookup;
    /// Traverse points held fixed (adjusted coordinates of a second pass).
    std::map<std::string, TraversePoint, std::less<>> fixed;
    /// Added to the direction of every traverse shot (angle balance), degrees.
    double traverseAngleCorrection = 0.0;
    std::optional<SdrHorizontalAdjustment> sdrHorizontal;
    std::optional<SdrVerticalAdjustment> sdrVertical;
    /// The closing reference point: a shot to it is measured, not stored.
    std::string closingPoint;
    /// When set, the sideshot list is written here as it grows instead of
    /// being kept in PassResult::sideshots (a million shots make 60 MB).
    std::ostream *sideshotOut = nullptr;
    /// The same for the listing (PassResult::listing), 120 MB for a million shots.
    std::ostream *listingOut = nullptr;
    /// Without it the pass makes no listing (a later pass whose listing
    /// nobody shows).
    bool withListing = true;
};

struct PassResult {
    enum class Status { Done, Stopped, ReturnToEditor };
    Status status = Status::Done;
    std::string error; ///< why the pass stopped
    std::vector<ComputedPoint, BulkAllocator<ComputedPoint>>
        points; ///< in the order they were stored (latest wins)
    /// Name -> latest entry of points, for the points the run looks up:
    /// set-ups, backsights, control, depths and elevations, the closing
    /// and angle balance points. Keeping a million sideshots out of it is
    /// what makes a large job fast.
    TextMap<size_t> index;
    std::vector<TraverseSide> sides; ///< every TR, CL and CL+AB shot, file order
    std::vector<BalanceShot> balanceShots;
    std::optional<TraversePoint> closingEnd; ///< last computed position of the closing point
    std::string listing, sideshots, multipleBacksights, depths;
    std::vector<std::string> warnings;
    std::vector<std::string> notes; ///< "name\ttext" point notes to add
    int traverseLines = 0, sideshotTraverses = 0, sideshotCount = 0, storePoints = 0;

    /// The latest stored position of a point the run looks up (see index).
    const ComputedPoint *find(std::string_view name) const;
};

/// Runs the pass. Questions (missing coordinates) go to `ui`.
PassResult computePoints(const PassInput &input, Interaction &ui);

/// Parses "--HZADJ:" / "--VERTADJ:" note texts (after the dashes).
std::optional<SdrHorizontalAdjustment> parseHorizontalAdjustment(std::string_view note);
std::optional<SdrVerticalAdjustment> parseVerticalAdjustment(std::string_view note);

/// Offers the SDR adjustments the raw data's "--HZADJ:" and "--VERTADJ:"
/// notes carry ("Use SDR Horiz Adjustment?"); those the user accepts are set.
void askSdrAdjustments(const raw::RawFile &file, Interaction &ui,
                       std::optional<SdrHorizontalAdjustment> &horizontal,
                       std::optional<SdrVerticalAdjustment> &vertical);

/// The inclined-plane height correction, then the plane transformation of
/// north and east (rotation clockwise about the origin, then the deltas).
void applySdrVertical(const SdrVerticalAdjustment &adjustment, TraversePoint &point);
void applySdrHorizontal(const SdrHorizontalAdjustment &adjustment, TraversePoint &point);

} // namespace tramline::reduce
