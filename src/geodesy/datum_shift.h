// The seven-parameter (Helmert) shift between WGS 84 and a system's datum.
//
// The record's values are applied as the well-known text states them:
// TOWGS84 (translations negated from the record, rotations and the
// inverted scale) is the position-vector transformation from the datum to
// WGS 84, with the small-angle rotation matrix that TOWGS84 implies, and
// the shift from WGS 84 is PROJ's inverse of it (good to a tenth of a
// millimetre). Other software reading our text then moves points the same
// way we do.
#pragma once

#include "geodesy/coordinate_system.h"
#include "geodesy/status.h"

#include <memory>

namespace tramline::geodesy {

/// The TOWGS84 values of a record: DX, DY, DZ (metres), RX, RY, RZ
/// (arc-seconds, position vector), scale difference (ppm), datum to WGS 84.
struct ToWgs84 {
    double values[7] = {};
};
ToWgs84 toWgs84(const DatumShift &shift);

class SevenParameterShift {
public:
    SevenParameterShift();
    ~SevenParameterShift();
    SevenParameterShift(SevenParameterShift &&) noexcept;
    SevenParameterShift &operator=(SevenParameterShift &&) noexcept;

    /// Prepares the shift between WGS 84 and the system's datum (on the
    /// system's ellipsoid).
    Status open(const CoordinateSystem &system);

    /// Moves a WGS 84 position onto the datum: latitude and longitude in
    /// decimal degrees (north and east positive), ellipsoid height metres.
    Status fromWgs84(double &latitude, double &longitude, double &height) const;

    /// Moves a position on the datum to WGS 84.
    Status toWgs84(double &latitude, double &longitude, double &height) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace tramline::geodesy
