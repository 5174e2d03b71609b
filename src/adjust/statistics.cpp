#include "adjust/statistics.h"

#include "adjust/observation_model.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <utility>

namespace tramline::adjust {

Ellipse ellipseOf(double qnn, double qee, double qne) {
    const double mean = 0.5 * (qnn + qee);
    const double radius = std::hypot(0.5 * (qnn - qee), qne);
    Ellipse e;
    e.semiMajor = std::sqrt(std::max(0.0, mean + radius));
    e.semiMinor = std::sqrt(std::max(0.0, mean - radius));
    // The major axis turns from north towards east by half the angle of
    // (qnn - qee, 2 qne).
    double az = 0.5 * std::atan2(2.0 * qne, qnn - qee) * 180.0 / std::numbers::pi;
    if (az < 0.0)
        az += 180.0;
    e.azimuth = az;
    return e;
}

namespace {

Ellipse pointEllipse(const Solution &s, int u) {
    const double f = s.s0 * s.s0;
    return ellipseOf(f * s.cofactorAt(u, u), f * s.cofactorAt(u + 1, u + 1),
                     f * s.cofactorAt(u, u + 1));
}

// Covariance of the coordinate differences b - a: Qaa + Qbb - Qab - Qba.
Ellipse relativeEllipse(const Solution &s, int a, int b) {
    const auto q = [&](int i, int j) { return s.cofactorAt(i, j); };
    const double f = s.s0 * s.s0;
    const double nn = q(a, a) + q(b, b) - 2.0 * q(a, b);
    const double ee = q(a + 1, a + 1) + q(b + 1, b + 1) - 2.0 * q(a + 1, b + 1);
    const double ne = q(a, a + 1) + q(b, b + 1) - q(a, b + 1) - q(a + 1, b);
    return ellipseOf(f * nn, f * ee, f * ne);
}

} // namespace

NetworkStatistics networkStatistics(const Network &network, const Solution &s) {
    NetworkStatistics out;
    for (std::size_t p = 0; p < network.points.size(); ++p) {
        const int u = network.points[p].unknown;
        if (u < 0)
            continue;
        const int point = static_cast<int>(p);
        out.points.push_back({point, s.northStdErr(network, point), s.eastStdErr(network, point),
                              pointEllipse(s, u)});
    }

    std::set<std::pair<int, int>> pairs;
    for (std::size_t i = 0; i < network.observations.size(); ++i) {
        const auto &o = network.observations[i];
        const DesignRow row = linearize(network, s.north, s.east, o);
        // a^T N^-1 a over the row's few non-zero entries, all inside the
        // pattern of N (the observation itself couples them).
        double aqa = 0.0;
        for (int j = 0; j < row.count; ++j)
            for (int k = 0; k < row.count; ++k)
                aqa += row.value[j] * row.value[k] * s.cofactorAt(row.column[j], row.column[k]);
        ObservationStatistics st;
        const bool angular = o.kind != ObservationKind::Distance;
        const double v = i < s.residual.size() ? s.residual[i] : 0.0;
        st.residual = angular ? v * kSecondsPerRadian : v;
        st.redundancy = std::clamp(1.0 - aqa / (o.sigma * o.sigma), 0.0, 1.0);
        out.redundancySum += 1.0 - aqa / (o.sigma * o.sigma);
        if (st.redundancy >= 0.001) {
            st.tested = true;
            st.standardized = v / (o.sigma * std::sqrt(st.redundancy));
            st.suspect = std::fabs(st.standardized) > kSnoopingCriticalValue;
        }
        if (st.suspect)
            out.suspects.push_back(static_cast<int>(i));
        out.observations.push_back(st);

        const int ua = network.points[static_cast<std::size_t>(o.at)].unknown;
        const int ub = network.points[static_cast<std::size_t>(o.to)].unknown;
        if (ua >= 0 && ub >= 0)
            pairs.insert(std::minmax(o.at, o.to));
    }
    std::stable_sort(out.suspects.begin(), out.suspects.end(), [&](int a, int b) {
        return std::fabs(out.observations[static_cast<std::size_t>(a)].standardized) >
               std::fabs(out.observations[static_cast<std::size_t>(b)].standardized);
    });
    for (const auto &[a, b] : pairs)
        out.relative.push_back(
            {a, b,
             relativeEllipse(s, network.points[static_cast<std::size_t>(a)].unknown,
                             network.points[static_cast<std::size_t>(b)].unknown)});
    return out;
}

} // namespace tramline::adjust
