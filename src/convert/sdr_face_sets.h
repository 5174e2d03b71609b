// The SDR import's direct/reverse sets (face_sets.h): the round's first
// face-2 reading to the backsight closes it, and face-2 foresights pair
// wherever they lie in the round. This takes both ways crews measure: all
// of face 1 then all of face 2, and both faces to each target in turn.
#pragma once

#include "convert/face_sets.h"

namespace tramline::convert::sdr {

using convert::FaceReading;
using convert::PlacedReading;
using convert::SetRole;

std::vector<PlacedReading> groupFaceReadings(const std::vector<FaceReading> &readings,
                                             const std::string &backsight);

} // namespace tramline::convert::sdr
