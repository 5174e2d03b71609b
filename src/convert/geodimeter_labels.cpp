#include "convert/geodimeter_labels.h"

#include <array>

namespace tramline::convert::geodimeter {

namespace {

using R = LabelRole;

constexpr std::array<LabelInfo, kHighestLabel + 1> makeTable() {
    std::array<LabelInfo, kHighestLabel + 1> t{};
    t[0] = {R::Remark};
    t[2] = {R::Station};
    t[3] = {R::InstrumentHeight};
    t[4] = {R::Code};
    t[5] = {R::PointNumber};
    t[6] = {R::TargetHeight};
    t[7] = {R::HorizontalAngle};
    t[8] = {R::VerticalAngle};
    t[9] = {R::SlopeDistance};
    t[11] = {R::HorizontalDistance};
    t[21] = {R::ReferenceAngle};
    t[24] = {R::FaceOneAngle};
    t[30] = {R::Note, "--Atmospheric Correction: %s\n"};
    t[37] = {R::Northing};
    t[38] = {R::Easting};
    t[39] = {R::Elevation};
    t[40] = {R::Note, "--Delta N: %s\n"};
    t[41] = {R::Note, "--Delta E: %s\n"};
    t[42] = {R::Note, "--Delta Z: %s\n"};
    t[45] = {R::Note, "--Calculated Bearing Correction: %s\n"};
    t[46] = {R::Note, "--Standard Deviation: %s\n"};
    t[50] = {R::Note, "--Job Name: %s\n"};
    t[51] = {R::Note, "--Date: %s\n"};
    t[52] = {R::Note, "--Time: %s\n"};
    t[53] = {R::Note, "--Operator ID: %s\n"};
    t[54] = {R::Note, "--Project ID: %s\n"};
    t[55] = {R::Note, "--Instrument#: %s\n"};
    t[56] = {R::Note, "--Temperature: %s\n"};
    t[60] = {R::Info};
    t[61] = {R::Info};
    t[62] = {R::ReferenceObject};
    t[70] = {R::Note, "--Keyed Radial Offset: %s\n"};
    t[71] = {R::Note, "--Keyed Right Offset: %s\n"};
    t[72] = {R::Note, "--Calculated Radial Offset: %s\n"};
    t[73] = {R::Note, "--Calculated Right Offset: %s\n"};
    t[74] = {R::Note, "--Air Pressure: %s\n"};
    return t;
}

constexpr auto kTable = makeTable();

} // namespace

LabelInfo geodimeterLabel(int label) {
    if (label < 0 || label > kHighestLabel)
        return {};
    return kTable[std::size_t(label)];
}

} // namespace tramline::convert::geodimeter
