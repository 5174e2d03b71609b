#include "adjust/observation_model.h"

#include <cmath>
#include <numbers>

namespace tramline::adjust {

namespace {

void add(DesignRow &row, const Network &network, int point, double dNorth, double dEast) {
    const int unknown = network.points[static_cast<std::size_t>(point)].unknown;
    if (unknown < 0)
        return;
    row.column[row.count] = unknown;
    row.value[row.count++] = dNorth;
    row.column[row.count] = unknown + 1;
    row.value[row.count++] = dEast;
}

double wrapPositive(double radians) {
    const double turn = 2.0 * std::numbers::pi;
    double a = std::fmod(radians, turn);
    return a < 0.0 ? a + turn : a;
}

} // namespace

DesignRow linearize(const Network &network, const std::vector<double> &north,
                    const std::vector<double> &east, const NetworkObservation &o) {
    DesignRow row;
    const auto at = static_cast<std::size_t>(o.at);
    const auto to = static_cast<std::size_t>(o.to);
    const double dn = north[to] - north[at];
    const double de = east[to] - east[at];
    const double d2 = dn * dn + de * de;
    if (!(d2 > 0.0)) {
        row.degenerate = true;
        return row;
    }
    switch (o.kind) {
    case ObservationKind::Distance: {
        const double d = std::sqrt(d2);
        row.computed = d;
        add(row, network, o.at, -dn / d, -de / d);
        add(row, network, o.to, dn / d, de / d);
        break;
    }
    case ObservationKind::Azimuth:
        row.computed = wrapPositive(std::atan2(de, dn));
        add(row, network, o.at, de / d2, -dn / d2);
        add(row, network, o.to, -de / d2, dn / d2);
        break;
    case ObservationKind::Angle: {
        const auto from = static_cast<std::size_t>(o.from);
        const double bn = north[from] - north[at];
        const double be = east[from] - east[at];
        const double b2 = bn * bn + be * be;
        if (!(b2 > 0.0)) {
            row.degenerate = true;
            return row;
        }
        row.computed = wrapPositive(std::atan2(de, dn) - std::atan2(be, bn));
        add(row, network, o.from, be / b2, -bn / b2);
        add(row, network, o.at, de / d2 - be / b2, -dn / d2 + bn / b2);
        add(row, network, o.to, -de / d2, dn / d2);
        break;
    }
    }
    return row;
}

double misclosure(const NetworkObservation &o, double computed) {
    double k = o.value - computed;
    if (o.kind != ObservationKind::Distance) {
        const double turn = 2.0 * std::numbers::pi;
        k = std::remainder(k, turn);
    }
    return k;
}

} // namespace tramline::adjust
