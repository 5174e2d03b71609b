// Writing a run's points to the coordinate file: every point in the order
// the run stored them (the last of equal names wins), their notes, and,
// when the file keeps history, one entry per point under the processing
// operation that gave it.
#pragma once

#include "crd/coordinate_file.h"
#include "reduce/point_computation.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tramline::reduce {

/// A point as the coordinate file holds it; nothing when it holds none.
std::optional<TraversePoint> storedPoint(crd::CoordinateFile &coordinates, const std::string &name);

/// History operation codes of processing.
inline constexpr int kHistoryPointStore = 20; ///< "Point Store: Edit-Process Raw File"
inline constexpr int kHistorySideshot = 21;   ///< "Sideshot: Edit-Process Raw File"

/// Points per bulk write of storePoints().
inline constexpr size_t kStoreBlock = size_t{1} << 17;

struct StoreResult {
    long stored = 0;
    std::vector<std::string> warnings; ///< "\nFailed to store point %s\non line %ld."
};

/// Writes `pass`'s points into `coordinates`, taking them out of `pass`. Points named in `adjusted`
/// were moved by a traverse adjustment and are recorded under
/// `adjustedOperation` (27 transit, 28 compass, 29 Crandall); control
/// points under 20, the others under 21.
/// They go to the file in bulk writes of `block` points, so that a large
/// run never holds them twice over.
StoreResult storePoints(PassResult &pass, crd::CoordinateFile &coordinates,
                        const std::set<std::string> &adjusted, int adjustedOperation,
                        size_t block = kStoreBlock);

} // namespace tramline::reduce
