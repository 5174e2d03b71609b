// Grouping face-1 and face-2 readings of one station into direct/reverse
// sets, each in the order BD, FD, FR, BR, as the reduction reads them.
//
// The rule: the readings of a station (a run of F1/F2 records from one
// occupied point, target heights between them allowed) are split into
// rounds. Every face-1 reading to the backsight point opens a round that
// lasts until the next such reading or the end of the run; the round's
// first face-2 reading to the backsight point closes it. In a closed round
// each face-1 reading to another point is paired with the first face-2
// reading to the same point not yet paired, and every pair gives one set:
// the round's backsight readings as BD and BR around the pair as FD and FR,
// in the order the face-1 readings were taken. Everything else (readings
// before the first round, rounds without a face-2 backsight or without a
// pair, readings without their other face) is written as single sideshots
// after the round's sets, in the order read. This takes both ways crews
// measure: all of face 1 then all of face 2, and both faces to each target
// in turn.
#pragma once

#include <string>
#include <vector>

namespace tramline::convert::sdr {

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
std::vector<PlacedReading> groupFaceReadings(const std::vector<FaceReading> &readings,
                                             const std::string &backsight);

} // namespace tramline::convert::sdr
