// Grouping face-1 and face-2 readings of one station into direct/reverse
// sets, which must come out in the order BD, FD..., FR..., BR.
//
// The rule: the readings of a station (a run of F1/F2 records from one
// occupied point, target heights between them allowed) are split into
// rounds. Every face-1 reading to the backsight point opens a round that
// lasts until the next such reading or the end of the run. A round is a
// set when it holds a face-2 reading to the backsight point; its first one
// closes the set as BR. In a set the opening reading is BD, the face-1
// readings to other points are FD and the face-2 readings to other points
// FR, each in the order read. Everything else (readings before the first
// round, rounds without a face-2 backsight, a second face-2 backsight in
// one round) is written as a single sideshot, after the set it belongs to.
// This takes both ways crews measure: all of face 1 then all of face 2, and
// face 1 and face 2 to each target in turn.
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

/// Every reading exactly once, in output order, with its role.
std::vector<PlacedReading> groupFaceReadings(const std::vector<FaceReading> &readings,
                                             const std::string &backsight);

} // namespace tramline::convert::sdr
