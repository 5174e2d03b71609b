// How the raw grid shows observations: the vertical value, the distance,
// the angle unit and the order of coordinates. The settings file keeps two
// of them as integers; the shell converts where it reads and writes it.
#pragma once

#include "base/coordinate_order.h"
#include "base/units.h"

namespace tramline::raw {

enum class VerticalMode : int { VerticalAngle = 1, Zenith = 2, ElevationDifference = 3, None = 4 };
enum class DistanceMode : int { Slope = 1, Horizontal = 2 };
using tramline::CoordinateOrder;

struct DisplayModes {
    VerticalMode vertical = VerticalMode::Zenith;
    DistanceMode distance = DistanceMode::Slope;
    AngleUnit angle = AngleUnit::DegreesMinutesSeconds;
    CoordinateOrder order = CoordinateOrder::NorthingEasting;

    /// The vertical mode, a corrupt value (one no enumerator names) read as
    /// zenith.
    VerticalMode verticalMode() const {
        return isVerticalMode(vertical) ? vertical : VerticalMode::Zenith;
    }
    DistanceMode distanceMode() const {
        return distance == DistanceMode::Horizontal ? DistanceMode::Horizontal
                                                    : DistanceMode::Slope;
    }
    bool eastingFirst() const { return order == CoordinateOrder::EastingNorthing; }

    static constexpr bool isVerticalMode(VerticalMode mode) {
        return mode == VerticalMode::VerticalAngle || mode == VerticalMode::Zenith ||
               mode == VerticalMode::ElevationDifference || mode == VerticalMode::None;
    }
};

} // namespace tramline::raw
