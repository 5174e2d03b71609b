// The GSI import's direct/reverse sets (face_sets.h) by the "Direct-Reverse
// Order" the user chose:
// - BFFB (backsight, foresights on face 1, foresights on face 2, backsight):
//   the round's last face-2 backsight reading closes it, and only face-2
//   foresights before it pair;
// - BFBF (backsight and foresights on face 1, then backsight and
//   foresights on face 2): the round's first face-2 backsight reading
//   closes it, and only face-2 foresights after it pair.
#pragma once

#include "convert/face_sets.h"

namespace tramline::convert::gsi {

enum class FaceOrder { BFFB, BFBF };

using convert::FaceReading;
using convert::PlacedReading;
using convert::SetRole;

std::vector<PlacedReading> groupFaceSets(const std::vector<FaceReading> &readings,
                                         const std::string &backsight, FaceOrder order);

} // namespace tramline::convert::gsi
