#include "app/plot_data.h"

#include "base/unset.h"
#include "raw/classify.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace tramline::app {

namespace {

// The largest of 1, 2, 5 times a power of ten that is at most `value`.
double roundDown125(double value) {
    if (!(value > 0.0) || !std::isfinite(value))
        return 0.0;
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (double step : {5.0, 2.0, 1.0})
        if (step * power <= value * (1.0 + 1e-12))
            return step * power;
    return power;
}

} // namespace

PlotData plotData(const raw::RawDocument &document, const std::vector<crd::CrdPoint> &points) {
    PlotData data;
    data.unit = document.units().linear;
    std::map<std::string, const crd::CrdPoint *> byName;
    for (const auto &p : points) {
        if (isUnset(p.northing) || isUnset(p.easting))
            continue; // a point without a position has no place on a plan
        if (byName.emplace(p.name, &p).second)
            data.points.push_back(p);
    }
    std::set<std::pair<std::string, std::string>> drawn;
    for (const auto &row : document.rows()) {
        if (!raw::isObservationType(row.type) || row.cells.size() <= raw::kForesightCell)
            continue;
        const std::string &from = row.cells[raw::kOccupiedCell];
        const std::string &to = row.cells[raw::kForesightCell];
        const auto a = byName.find(from), b = byName.find(to);
        if (a == byName.end() || b == byName.end() || from == to)
            continue;
        const auto key = std::minmax(from, to);
        if (!drawn.insert({key.first, key.second}).second)
            continue;
        PlotLine line;
        line.from = from;
        line.to = to;
        line.fromNorth = a->second->northing;
        line.fromEast = a->second->easting;
        line.toNorth = b->second->northing;
        line.toEast = b->second->easting;
        line.traverse = row.type == "TR";
        data.lines.push_back(std::move(line));
    }
    return data;
}

double closureMagnification(double closureLength, double plotSize) {
    if (!(closureLength > 0.0) || !(plotSize > 0.0))
        return 1.0;
    return std::max(1.0, roundDown125(plotSize / 10.0 / closureLength));
}

double ellipseMagnification(const std::vector<PlotEllipse> &ellipses, double plotSize) {
    double largest = 0.0;
    for (const auto &e : ellipses)
        largest = std::max(largest, e.semiMajor);
    if (!(largest > 0.0) || !(plotSize > 0.0))
        return 1.0;
    // Shrinking is allowed: an ellipse larger than the network is news too.
    const double factor = roundDown125(plotSize / 20.0 / largest);
    return factor > 0.0 ? factor : 1.0;
}

double scaleBarLength(double maximum) {
    return roundDown125(maximum);
}

} // namespace tramline::app
