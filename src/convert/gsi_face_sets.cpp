#include "convert/gsi_face_sets.h"

namespace tramline::convert::gsi {

std::vector<PlacedReading> groupFaceSets(const std::vector<FaceReading> &readings,
                                         const std::string &backsight, FaceOrder order) {
    const RoundRule rule = order == FaceOrder::BFFB ? RoundRule{true, ReverseWindow::BeforeClosing}
                                                    : RoundRule{false, ReverseWindow::AfterClosing};
    return convert::groupFaceSets(readings, backsight, rule);
}

} // namespace tramline::convert::gsi
