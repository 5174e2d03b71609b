#include "convert/sdr_face_sets.h"

namespace tramline::convert::sdr {

std::vector<PlacedReading> groupFaceReadings(const std::vector<FaceReading> &readings,
                                             const std::string &backsight) {
    return groupFaceSets(readings, backsight, RoundRule{false, ReverseWindow::WholeRound});
}

} // namespace tramline::convert::sdr
