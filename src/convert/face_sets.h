// Grouping the face-1 and face-2 readings of one set-up into
// direct/reverse sets, each written as BD, FD, FR, BR, the order the
// direct-reverse reduction reads them in. The GSI and SDR imports share
// it; they differ only in the rule that closes a round.
//
// The rule: every face-1 reading to the backsight point opens a round that
// lasts until the next such reading or the end of the set-up. A face-2
// reading to the backsight closes the round (the first or the last one, as
// the caller's rule says). Within a closed round each face-1 reading to
// another point is paired with the first face-2 reading to the same point
// not yet paired, looked for in the part of the round the rule allows.
// Every pair gives one set (the round's backsight readings as BD and BR
// around the pair as FD and FR), in the order the face-1 readings were
// taken. Readings before the first round, rounds without a closing reading
// or without a pair, and readings without their other face stay single, in
// the order read, after the round's sets.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tramline::convert {

struct FaceReading {
    bool face2 = false;
    std::string to; ///< the point read
};

enum class SetRole { Single, BD, FD, FR, BR };

struct PlacedReading {
    std::size_t index; ///< into the readings given
    SetRole role;
};

/// Where a round's face-2 foresights may lie, seen from its closing reading.
enum class ReverseWindow { WholeRound, BeforeClosing, AfterClosing };

struct RoundRule {
    bool lastClosing = false; ///< the last face-2 backsight reading closes, else the first
    ReverseWindow window = ReverseWindow::WholeRound;
};

/// The readings in output order with their roles: a backsight reading once
/// for every set of its round, every other reading exactly once. No round
/// opens when `backsight` is empty.
std::vector<PlacedReading> groupFaceSets(const std::vector<FaceReading> &readings,
                                         const std::string &backsight, RoundRule rule);

} // namespace tramline::convert
