#include "adjust/network_plot.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace tramline::adjust {

namespace {

constexpr double kSize = 800.0;  // drawing area, pixels
constexpr double kMargin = 60.0; // room for names

struct Frame {
    double minNorth = 0, maxNorth = 0, minEast = 0, maxEast = 0, scale = 1;
    double x(double east) const { return kMargin + (east - minEast) * scale; }
    double y(double north) const { return kMargin + (maxNorth - north) * scale; }
};

Frame frameOf(const Solution &s) {
    Frame f;
    f.minNorth = f.minEast = std::numeric_limits<double>::max();
    f.maxNorth = f.maxEast = std::numeric_limits<double>::lowest();
    for (std::size_t p = 0; p < s.north.size(); ++p) {
        f.minNorth = std::min(f.minNorth, s.north[p]);
        f.maxNorth = std::max(f.maxNorth, s.north[p]);
        f.minEast = std::min(f.minEast, s.east[p]);
        f.maxEast = std::max(f.maxEast, s.east[p]);
    }
    const double extent = std::max({f.maxNorth - f.minNorth, f.maxEast - f.minEast, 1e-9});
    f.scale = (kSize - 2 * kMargin) / extent;
    return f;
}

} // namespace

double ellipseMagnification(const Network &, const Solution &s, const NetworkStatistics &st) {
    double largest = 0.0;
    for (const auto &p : st.points)
        largest = std::max(largest, p.standard.semiMajor);
    const Frame f = frameOf(s);
    const double extent = std::max(f.maxNorth - f.minNorth, f.maxEast - f.minEast);
    if (!(largest > 0.0) || !(extent > 0.0))
        return 1.0;
    // A round factor (1, 2 or 5 times a power of ten) that a reader can take in.
    const double target = extent / 20.0 / largest;
    const double decade = std::pow(10.0, std::floor(std::log10(target)));
    for (double step : {5.0, 2.0})
        if (decade * step <= target)
            return decade * step;
    return decade;
}

std::string networkSvg(const Network &network, const Solution &s, const NetworkStatistics &st) {
    const Frame f = frameOf(s);
    const double magnification = ellipseMagnification(network, s, st);
    std::set<int> suspectPoints;
    std::set<int> suspectObservations(st.suspects.begin(), st.suspects.end());
    for (int i : st.suspects) {
        const auto &o = network.observations[static_cast<std::size_t>(i)];
        for (int p : {o.from, o.at, o.to})
            if (p >= 0)
                suspectPoints.insert(p);
    }
    // As tall as the network needs, with room for the legend.
    const double height = (f.maxNorth - f.minNorth) * f.scale + 2 * kMargin + 30;
    std::string t;
    appendFormat(t,
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" "
                 "viewBox=\"0 0 %.0f %.0f\" font-family=\"sans-serif\" font-size=\"12\">\n",
                 kSize, height, kSize, height);
    appendFormat(t, "<rect width=\"%.0f\" height=\"%.0f\" fill=\"white\"/>\n", kSize, height);
    // Observed lines first, so that the points are drawn over them.
    t += "<g stroke-width=\"1\">\n";
    // Plain lines once per pair, then the suspects over them so that no
    // plain line of the same pair hides one.
    std::set<std::pair<int, int>> drawn;
    for (std::size_t k = 0; k < 2 * network.observations.size(); ++k) {
        const std::size_t i = k % network.observations.size();
        const auto &o = network.observations[i];
        const bool suspect = suspectObservations.count(static_cast<int>(i)) > 0;
        if (suspect != (k >= network.observations.size()))
            continue;
        const auto key = std::minmax(o.at, o.to);
        if (!suspect && !drawn.insert(key).second)
            continue;
        const auto a = static_cast<std::size_t>(o.at), b = static_cast<std::size_t>(o.to);
        appendFormat(t, "<line x1=\"%.2f\" y1=\"%.2f\" x2=\"%.2f\" y2=\"%.2f\" stroke=\"%s\"%s/>\n",
                     f.x(s.east[a]), f.y(s.north[a]), f.x(s.east[b]), f.y(s.north[b]),
                     suspect ? "#d00000" : "#8090a0", suspect ? " stroke-width=\"2.5\"" : "");
    }
    t += "</g>\n<g fill=\"none\" stroke=\"#0050c0\" stroke-width=\"1.2\">\n";
    for (const auto &p : st.points) {
        const auto i = static_cast<std::size_t>(p.point);
        const auto &e = p.standard;
        // SVG turns clockwise from the x axis (east); the azimuth turns
        // clockwise from north, so the major axis lies at azimuth - 90.
        appendFormat(t,
                     "<ellipse cx=\"%.2f\" cy=\"%.2f\" rx=\"%.2f\" ry=\"%.2f\" "
                     "transform=\"rotate(%.3f %.2f %.2f)\"/>\n",
                     f.x(s.east[i]), f.y(s.north[i]), e.semiMajor * magnification * f.scale,
                     e.semiMinor * magnification * f.scale, e.azimuth - 90.0, f.x(s.east[i]),
                     f.y(s.north[i]));
    }
    t += "</g>\n";
    for (std::size_t i = 0; i < network.points.size(); ++i) {
        const double x = f.x(s.east[i]), y = f.y(s.north[i]);
        const bool suspect = suspectPoints.count(static_cast<int>(i)) > 0;
        const char *colour = suspect ? "#d00000" : "black";
        if (network.points[i].control)
            appendFormat(t, "<polygon points=\"%.2f,%.2f %.2f,%.2f %.2f,%.2f\" fill=\"%s\"/>\n", x,
                         y - 7, x - 6, y + 4, x + 6, y + 4, colour);
        else
            appendFormat(t, "<circle cx=\"%.2f\" cy=\"%.2f\" r=\"3.5\" fill=\"%s\"/>\n", x, y,
                         colour);
        appendFormat(t, "<text x=\"%.2f\" y=\"%.2f\" fill=\"%s\">%s</text>\n", x + 7, y - 6, colour,
                     xmlEscaped(network.points[i].name).c_str());
    }
    appendFormat(
        t, "<text x=\"10\" y=\"%.0f\">%s</text>\n", height - 14,
        xmlEscaped(format(tr("Error ellipses magnified %g times; suspects in red"), magnification))
            .c_str());
    t += "</svg>\n";
    return t;
}

} // namespace tramline::adjust
