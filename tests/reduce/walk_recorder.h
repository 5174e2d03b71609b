// A client of the set-up walk that records every shot with its set-up, the
// way a network adjustment collects observations, and places each
// foresight so that later set-ups can occupy it.
#pragma once

#include "base/angles.h"
#include "reduce/setup_walk.h"

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tramline::test {

struct WalkRecorder : reduce::SetupWalkClient {
    struct Row {
        std::string occupied, backsight, foresight;
        double orientation, angle, azimuth, horizontal, vertical;
        std::optional<double> hi, hr;
        long setupLine, line;
    };
    std::map<std::string, reduce::TraversePoint> points;
    std::vector<Row> rows;
    std::vector<std::string> warnings;

    std::optional<reduce::TraversePoint> known(const std::string &name) override {
        const auto it = points.find(name);
        return it == points.end() ? std::nullopt : std::optional<reduce::TraversePoint>(it->second);
    }
    void given(const reduce::TraversePoint &p, long, reduce::GivenBy) override {
        points[p.name.str()] = p;
    }
    void shot(const reduce::Setup &s, const reduce::ReducedShot &shot) override {
        rows.push_back({s.occupied, s.backsight, shot.observation->foresight.str(), s.orientation,
                        shot.angle, shot.azimuth, shot.measurement.horizontal, shot.vertical, s.hi,
                        s.hr, s.line, shot.line});
        // Foresights become known, so that later set-ups can occupy them.
        reduce::TraversePoint p;
        p.name = shot.observation->foresight;
        p.north = s.station.north + shot.measurement.horizontal * std::cos(radians(shot.azimuth));
        p.east = s.station.east + shot.measurement.horizontal * std::sin(radians(shot.azimuth));
        points.emplace(p.name.str(), p);
    }
    void warning(const std::string &text) override { warnings.push_back(text); }
};

} // namespace tramline::test
