#include "geodesy/localization_plot.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <algorithm>
#include <cmath>

namespace tramline::geodesy {

namespace {

constexpr double kSize = 600.0;  // drawing square, pixels
constexpr double kMargin = 60.0; // room for labels and arrows
constexpr double kShare = 0.1;   // largest arrow against the extent

struct Extent {
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
    double width() const { return std::max(maxX - minX, maxY - minY); }
};

Extent extentOf(const Localization &loc) {
    Extent e;
    bool first = true;
    for (const AlignmentPoint &p : loc.points) {
        if (first) {
            e = {p.localX, p.localX, p.localY, p.localY};
            first = false;
        }
        e.minX = std::min(e.minX, p.localX);
        e.maxX = std::max(e.maxX, p.localX);
        e.minY = std::min(e.minY, p.localY);
        e.maxY = std::max(e.maxY, p.localY);
    }
    return e;
}

} // namespace

double residualPlotFactor(const Localization &loc) {
    double largest = 0.0;
    for (const PointResidual &r : loc.residuals.points)
        largest = std::max(largest, r.horizontal);
    const double width = extentOf(loc).width();
    if (!(largest > 0.0) || !(width > 0.0))
        return 1.0;
    const double wanted = kShare * width / largest;
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    for (const double step : {5.0, 2.0, 1.0})
        if (step * power <= wanted)
            return step * power;
    return power;
}

std::string localizationPlotSvg(const Localization &loc) {
    const Extent e = extentOf(loc);
    const double width = e.width() > 0.0 ? e.width() : 1.0;
    const double scale = (kSize - 2 * kMargin) / width;
    const double factor = residualPlotFactor(loc);
    const auto sx = [&](double x) { return kMargin + (x - e.minX) * scale; };
    const auto sy = [&](double y) { return kSize - kMargin - (y - e.minY) * scale; };
    std::string svg;
    appendFormat(svg,
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" "
                 "viewBox=\"0 0 %.0f %.0f\">\n",
                 kSize, kSize + 40, kSize, kSize + 40);
    svg += "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    appendFormat(svg, "<text x=\"10\" y=\"20\" font-size=\"14\">%s</text>\n",
                 xmlEscaped(tr("Define Localization")).c_str());
    for (std::size_t i = 0; i < loc.points.size() && i < loc.residuals.points.size(); ++i) {
        const AlignmentPoint &p = loc.points[i];
        const PointResidual &r = loc.residuals.points[i];
        const double x = sx(p.localX), y = sy(p.localY);
        const double tx = sx(p.localX + factor * (r.computedX - p.localX));
        const double ty = sy(p.localY + factor * (r.computedY - p.localY));
        appendFormat(svg,
                     "<line x1=\"%.2f\" y1=\"%.2f\" x2=\"%.2f\" y2=\"%.2f\" stroke=\"red\" "
                     "stroke-width=\"1.5\"/>\n",
                     x, y, tx, ty);
        appendFormat(svg,
                     "<circle cx=\"%.2f\" cy=\"%.2f\" r=\"4\" stroke=\"black\" fill=\"%s\"/>\n", x,
                     y, p.useHorizontal ? "black" : "none");
        appendFormat(svg, "<text x=\"%.2f\" y=\"%.2f\" font-size=\"11\">%s</text>\n", x + 6, y - 6,
                     xmlEscaped(p.description).c_str());
    }
    appendFormat(svg, "<text x=\"10\" y=\"%.0f\" font-size=\"12\">%s %g</text>\n", kSize + 30,
                 xmlEscaped(tr("Horizontal residuals magnified")).c_str(), factor);
    svg += "</svg>\n";
    return svg;
}

} // namespace tramline::geodesy
