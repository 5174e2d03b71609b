// The network the solve works on: the points of an observation file indexed
// by name, the unknowns (north and east of every adjust point), and the
// observations in radians and length units with their standard errors.
#pragma once

#include "adjust/lsq_file.h"
#include "base/status.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace tramline::adjust {

/// Seconds of arc in a radian, as the program has always converted them.
inline constexpr double kSecondsPerRadian = 206264.8;

struct NetworkPoint {
    std::string name;
    double north = 0.0;
    double east = 0.0;
    bool control = false;
    int unknown = -1; ///< column of its north (east is the next); -1 for control
};

struct NetworkObservation {
    ObservationKind kind = ObservationKind::Distance;
    int from = -1; ///< backsight point of an angle; -1 otherwise
    int at = -1;
    int to = -1;
    double value = 0.0; ///< length, or radians
    double sigma = 0.0; ///< length, or radians
    long line = 0;
};

struct Network {
    std::vector<NetworkPoint> points; ///< control points first, then adjust points, as read
    std::vector<NetworkObservation> observations;
    std::unordered_map<std::string, int> index;
    int unknowns = 0;

    int find(const std::string &name) const {
        const auto it = index.find(name);
        return it == index.end() ? -1 : it->second;
    }
};

/// Builds the network. Fails when a point is listed twice, an observation
/// names an unknown point or joins a point to itself, a standard error is not
/// positive, there is no control point, or an adjust point is in no
/// observation (the last two leave the network without a datum: the message
/// names the points). "Error: no least-squares data found. Run Prepare
/// Least-Squares Data." when the data holds nothing.
Status buildNetwork(const LsqData &data, Network &network);

/// Names of the points of an observation as "3-4" or "2-1-3" (backsight,
/// occupy, foresight) for messages.
std::string observationName(const Network &network, const NetworkObservation &o);

} // namespace tramline::adjust
