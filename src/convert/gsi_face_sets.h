// Grouping the face-1 and face-2 readings of one set-up into
// direct/reverse sets by the order the crew observed them in, each set
// written as BD, FD, FR, BR.
//
// The rule: every face-1 reading to the backsight point opens a round that
// lasts until the next such reading or the end of the set-up. Within a
// round each face-1 reading to another point is paired with the first
// face-2 reading to the same point not yet paired. The order chosen says
// which face-2 backsight reading closes the round and where the face-2
// foresights must lie:
// - BFFB (backsight, foresights on face 1, foresights on face 2, backsight):
//   the round's last face-2 backsight reading closes it, and only face-2
//   foresights before it pair;
// - BFBF (backsight and foresights on face 1, then backsight and
//   foresights on face 2): the round's first face-2 backsight reading
//   closes it, and only face-2 foresights after it pair.
// Every pair gives one set, in the order the face-1 readings were taken.
// Readings before the first round, rounds without a closing reading or
// without a pair, and readings without their other face stay single, in
// the order read, after the round's sets.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tramline::convert::gsi {

enum class FaceOrder { BFFB, BFBF };

struct FaceReading {
    bool face2 = false;
    std::string to; ///< the point read
};

enum class SetRole { Single, BD, FD, FR, BR };

struct PlacedReading {
    std::size_t index; ///< into the readings given
    SetRole role;
};

/// The readings in output order with their roles: a backsight reading once
/// for every set of its round, every other reading exactly once.
std::vector<PlacedReading> groupFaceSets(const std::vector<FaceReading> &readings,
                                         const std::string &backsight, FaceOrder order);

} // namespace tramline::convert::gsi
