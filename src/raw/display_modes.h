// How the raw grid shows observations: the vertical value, the distance,
// the angle unit and the order of coordinates.
#pragma once

namespace tramline::raw {

enum class VerticalMode : int { VerticalAngle = 1, Zenith = 2, ElevationDifference = 3, None = 4 };
enum class DistanceMode : int { Slope = 1, Horizontal = 2 };

struct DisplayModes {
    int vertical = 2; ///< 1 vertical angle, 2 zenith, 3 elevation difference, 4 none
    int distance = 1; ///< 1 slope, 2 horizontal
    int angle = 1;    ///< 1 ddd.mmss, 0 gons (`ang_display_mode`)
    int neOrder = 0;  ///< 0 northing first, 1 easting first (`ne_order`)

    /// The vertical mode, a corrupt value (outside 1 to 4) read as zenith.
    VerticalMode verticalMode() const {
        return vertical >= 1 && vertical <= 4 ? static_cast<VerticalMode>(vertical)
                                              : VerticalMode::Zenith;
    }
    DistanceMode distanceMode() const {
        return distance == 2 ? DistanceMode::Horizontal : DistanceMode::Slope;
    }
};

} // namespace tramline::raw
