// What a solved network says about itself: error ellipses of the adjusted
// points, relative ellipses between observed pairs, and per observation its
// residual, redundancy number and standardized residual, with data snooping
// (Baarda's test) naming the suspect observations worst first.
//
// Choices: ellipses are a posteriori (s0^2 N^-1, as the standard errors);
// the 95 % ellipse is the standard one times sqrt(chi-square(2, 0.95)) =
// 2.4477. The standardized residual is Baarda's w = v / (sigma sqrt(r_i))
// with the a priori standard errors; an observation is a suspect when |w|
// exceeds 3.29 (two-sided alpha 0.001, the usual critical value of the
// test). Observations without redundancy (r_i < 0.001) are not tested.
#pragma once

#include "adjust/network.h"
#include "adjust/solve.h"

#include <vector>

namespace tramline::adjust {

inline constexpr double kSnoopingCriticalValue = 3.29;
inline constexpr double kConfidence95Factor = 2.4477;

struct Ellipse {
    double semiMajor = 0.0; ///< length unit
    double semiMinor = 0.0;
    double azimuth = 0.0; ///< of the major axis, decimal degrees 0..180 from north
};

struct PointStatistics {
    int point = -1;
    double northStdErr = 0.0, eastStdErr = 0.0;
    Ellipse standard;
};

struct RelativeEllipse {
    int from = -1, to = -1; ///< two adjust points joined by an observation
    Ellipse ellipse;
};

struct ObservationStatistics {
    double residual = 0.0;     ///< adjusted minus observed: length unit, or seconds
    double redundancy = 0.0;   ///< r_i, 0..1
    double standardized = 0.0; ///< Baarda's w; 0 when not tested
    bool tested = false;
    bool suspect = false;
};

struct NetworkStatistics {
    std::vector<PointStatistics> points; ///< adjust points, in network order
    std::vector<ObservationStatistics> observations;
    std::vector<RelativeEllipse> relative;
    std::vector<int> suspects; ///< observation indices, largest |w| first
    double redundancySum = 0.0;
};

/// The ellipse of a 2x2 covariance (north-north, east-east, north-east).
Ellipse ellipseOf(double qnn, double qee, double qne);

NetworkStatistics networkStatistics(const Network &network, const Solution &solution);

} // namespace tramline::adjust
