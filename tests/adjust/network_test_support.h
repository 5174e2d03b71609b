// Reading the published networks beside the clone and their answers.
#pragma once

#include "adjust/lsq_run.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace tramline::adjust::testing {

inline std::filesystem::path networksDir() {
    return TRAMLINE_NETWORKS_DIR;
}

/// The networks with an answer, sorted by name; empty when the folder is absent.
inline std::vector<std::string> publishedNetworks() {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto &e : std::filesystem::directory_iterator(networksDir(), ec))
        if (e.path().extension() == ".lsq")
            names.push_back(e.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

struct Expected {
    double north = 0, east = 0, sNorth = 0, sEast = 0;
};

/// {point: {N, E, sN, sE}} of NAME.expected.json (a flat file of that
/// shape only).
inline std::map<std::string, Expected> expectedAnswer(const std::string &name) {
    std::ifstream in(networksDir() / (name + ".expected.json"));
    std::stringstream ss;
    ss << in.rdbuf();
    const std::string text = ss.str();
    std::map<std::string, Expected> out;
    const std::regex point(R"re("([^"]+)"\s*:\s*\{([^}]*)\})re");
    const std::regex field(R"re("(N|E|sN|sE)"\s*:\s*(-?[0-9.eE+-]+))re");
    for (std::sregex_iterator it(text.begin(), text.end(), point), end; it != end; ++it) {
        Expected e;
        const std::string body = (*it)[2];
        for (std::sregex_iterator f(body.begin(), body.end(), field); f != end; ++f) {
            const double v = std::stod((*f)[2]);
            const std::string key = (*f)[1];
            (key == "N" ? e.north : key == "E" ? e.east : key == "sN" ? e.sNorth : e.sEast) = v;
        }
        out[(*it)[1]] = e;
    }
    return out;
}

inline bool loadNetwork(const std::string &name, LsqData &data) {
    return loadLsq(networksDir() / (name + ".lsq"), data).ok();
}

/// The redundancy numbers share out the degrees of freedom, and the
/// weighted residuals give back s0.
inline void expectRedundancyIdentities(const LsqRun &run) {
    const auto &s = run.solution;
    EXPECT_NEAR(run.statistics.redundancySum, s.degreesOfFreedom, 1e-6);
    double vtpv = 0;
    for (std::size_t i = 0; i < run.network.observations.size(); ++i) {
        const auto &o = run.network.observations[i];
        vtpv += s.residual[i] * s.residual[i] / (o.sigma * o.sigma);
    }
    if (s.degreesOfFreedom > 0) {
        EXPECT_NEAR(vtpv, s.degreesOfFreedom * s.s0 * s.s0, 1e-9 * (1 + vtpv));
    }
}

} // namespace tramline::adjust::testing
