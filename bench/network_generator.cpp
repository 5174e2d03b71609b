#include "network_generator.h"

#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace tramline::bench {

adjust::LsqData generatedNetwork(int points) {
    const int side = std::max(3, static_cast<int>(std::lround(std::sqrt(points))));
    std::mt19937 random(12345);
    std::normal_distribution<double> jitter(0.0, 15.0), approximation(0.0, 0.03),
        distanceError(0.0, 0.003), angleError(0.0, 2.0);
    std::vector<double> north(static_cast<std::size_t>(side * side)), east(north.size());
    const auto at = [side](int row, int col) { return static_cast<std::size_t>(row * side + col); };
    const auto name = [side](int row, int col) { return std::to_string(row * side + col + 1); };
    adjust::LsqData data;
    for (int r = 0; r < side; ++r)
        for (int c = 0; c < side; ++c) {
            north[at(r, c)] = 10000.0 - 100.0 * r + jitter(random);
            east[at(r, c)] = 5000.0 + 100.0 * c + jitter(random);
            const bool corner = (r == 0 || r == side - 1) && (c == 0 || c == side - 1);
            adjust::LsqPoint p{name(r, c), north[at(r, c)], east[at(r, c)], 0};
            if (corner) {
                data.control.push_back(p);
            } else {
                p.north += approximation(random);
                p.east += approximation(random);
                data.adjust.push_back(p);
            }
        }
    const auto distance = [&](std::size_t a, std::size_t b) {
        return std::hypot(north[b] - north[a], east[b] - east[a]);
    };
    const auto azimuth = [&](std::size_t a, std::size_t b) {
        return std::atan2(east[b] - east[a], north[b] - north[a]) * 180.0 / std::numbers::pi;
    };
    for (int r = 0; r < side; ++r)
        for (int c = 0; c < side; ++c) {
            for (const auto &[dr, dc] : {std::pair{0, 1}, std::pair{1, 0}}) {
                if (r + dr >= side || c + dc >= side)
                    continue;
                adjust::LsqObservation o;
                o.kind = adjust::ObservationKind::Distance;
                o.at = name(r, c);
                o.to = name(r + dr, c + dc);
                o.value = distance(at(r, c), at(r + dr, c + dc)) + distanceError(random);
                o.stdErr = 0.003;
                data.observations.push_back(o);
            }
            if (r == 0 || c == 0 || r == side - 1 || c == side - 1)
                continue;
            for (const auto &[fr, fc] : {std::pair{r - 1, c}, std::pair{r, c + 1}}) {
                adjust::LsqObservation o;
                o.kind = adjust::ObservationKind::Angle;
                o.from = name(r, c - 1);
                o.at = name(r, c);
                o.to = name(fr, fc);
                double angle = azimuth(at(r, c), at(fr, fc)) - azimuth(at(r, c), at(r, c - 1));
                angle = std::fmod(angle + 720.0, 360.0);
                o.value = angle + angleError(random) / 3600.0;
                o.stdErr = 2.0;
                data.observations.push_back(o);
            }
        }
    return data;
}

} // namespace tramline::bench
