#include "reduce/process_report.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "geodesy/geoid_model.h"

#include <algorithm>
#include <unordered_map>

namespace tramline::reduce {

PassCounts countsOf(const PassResult &p) {
    return {p.traverseLines, p.sideshotTraverses, p.sideshotCount, p.storePoints};
}

std::string unitsLine(LinearUnit linear, AngleUnit angle) {
    const char *length = linear == LinearUnit::Metres         ? tr("Metres")
                         : linear == LinearUnit::UsSurveyFeet ? tr("US Survey Feet")
                                                              : tr("International Feet");
    const char *angles = angle == AngleUnit::Gons ? tr("Gons") : tr("Degrees (ddd.mmss)");
    return format(tr("Units: %s, %s"), length, angles) + "\n";
}

std::string reportHeader(const std::string &rawFileName, const std::string &coordinateFileName,
                         const ProcessOptions &options,
                         const std::optional<SdrHorizontalAdjustment> &sdrH,
                         const std::optional<SdrVerticalAdjustment> &sdrV) {
    std::string h;
    appendFormat(h, "%s: %s\n", tr("Raw File"), rawFileName.c_str());
    appendFormat(h, "%s: %s\n", tr("Coordinate File"), coordinateFileName.c_str());
    appendFormat(h, "%s: %s\n", tr("Control File"), "NONE");
    if (options.stadia)
        appendFormat(h, "\n%s\n", tr("Stadia Reduction Method"));
    if (options.combinedScaleFactor) {
        h += tr("Calculate Combined Scale Factor for Each Measurement: ON");
        const std::string geoid =
            options.geoidModel != 0 ? geodesy::geoidModelName(options.geoidModel) : tr("None");
        appendFormat(h, "\n%s: %s\n", tr("Geoid"), geoid.c_str());
    } else {
        appendFormat(h, "%s: %.8f\n", tr("Scale Factor"), options.scaleFactor);
    }
    h += options.curvature ? tr("Correct for Earth Curvature: ON")
                           : tr("Correct for Earth Curvature: OFF");
    h += "\n";
    if (sdrH) {
        appendFormat(h, "\n%s\n", tr("SDR Horiz Adjustment"));
        appendFormat(h, "%s: %.5f\n%s: %.5f\n", tr("Origin Northing"), sdrH->originNorth,
                     tr("Origin Easting"), sdrH->originEast);
        appendFormat(h, "%s: %.5f\n%s: %.5f\n", tr("Delta Northing"), sdrH->deltaNorth,
                     tr("Delta Easting"), sdrH->deltaEast);
        appendFormat(h, "%s: %.6f\n%s: %.12f\n", tr("Rotation"), sdrH->rotation, tr("Scale"),
                     sdrH->scale);
    }
    if (sdrV) {
        appendFormat(h, "\n%s\n", tr("SDR Vertical Adjustment"));
        appendFormat(h, "%s: %.5f\n%s: %.5f\n", tr("Origin Northing"), sdrV->originNorth,
                     tr("Origin Easting"), sdrV->originEast);
        appendFormat(h, "%s: %.5f\n", tr("Height Constant"), sdrV->heightConstant);
        appendFormat(h, "%s: %.8f\n%s: %.8f\n", tr("Slope North"), sdrV->slopeNorth,
                     tr("Slope East"), sdrV->slopeEast);
    }
    return h;
}

std::string passSummary(const PassCounts &p) {
    std::string s = "\n";
    appendFormat(s, "%s  : %d\n", tr("Traverse Lines"), p.traverseLines);
    appendFormat(s, "%s: %d\n", tr("Sideshot Traverses"), p.sideshotTraverses);
    appendFormat(s, "%s       : %d\n", tr("SideShots"), p.sideshotCount);
    appendFormat(s, "%s    : %d\n", tr("Store Points"), p.storePoints);
    return s;
}

std::string closureText(const char *title, const Closure &c, const ClosureNames &names,
                        const PassCounts &counts) {
    std::string t;
    appendFormat(t, "\n\n%s", title);
    appendFormat(t, "\n%s: %s\n%s: %s\n%s: %s\n", tr("Starting Point"), names.start.c_str(),
                 tr("Closing Reference Point"), names.closingReference.c_str(), tr("Ending Point"),
                 names.end.c_str());
    appendFormat(t, "%s: %s\n", tr("Azimuth Of Error"), formatDms(c.azimuth, 4).c_str());
    appendFormat(t, "%-16.16s: %.5f\n", tr("North Error"), c.north);
    appendFormat(t, "%-16.16s: %.5f\n", tr("East Error"), c.east);
    appendFormat(t, "%-16.16s: %.5f\n", tr("Vertical Error"), c.vertical);
    appendFormat(t, "%-16.16s: %.5f\n", tr("Hz Dist Error"), c.horizontal);
    appendFormat(t, "%-16.16s: %.5f\n", tr("Sl Dist Error"), c.slope);
    appendFormat(t, "%-16.16s: %d\n", tr("Traverse Lines"), counts.traverseLines);
    appendFormat(t, "%-16.16s: %d\n", tr("Sideshot Traverses"), counts.sideshotTraverses);
    appendFormat(t, "%-16.16s: %d\n", tr("SideShots"), counts.sideshotCount);
    appendFormat(t, "%-16.16s: %d\n", tr("Store Points"), counts.storePoints);
    appendFormat(t, "%s: %s\n", tr("Horiz Dist Traversed"),
                 format("%.4f", c.horizontalTraversed).c_str());
    appendFormat(t, "%s: %s\n", tr("Slope Dist Traversed"),
                 format("%.4f", c.slopeTraversed).c_str());
    t += precisionLine(c) + "\n";
    return t;
}

std::string balancedClosureExtra(const TraversePoint &start, const TraversePoint &end,
                                 const Closure &c) {
    std::string t;
    appendFormat(t, "\n%-16.16s\n", tr("Starting Coordinates"));
    appendFormat(t, "%-16.16s: %.5f\n%-16.16s: %.5f\n", tr("North"), start.north, tr("East"),
                 start.east);
    appendFormat(t, "%-16.16s\n", tr("Ending   Coordinates"));
    appendFormat(t, "%-16.16s: %.5f\n%-16.16s: %.5f\n", tr("North"), end.north, tr("East"),
                 end.east);
    appendFormat(t, "%s: %.4f\n%s: %.4f\n", tr("Total Hz Dist Traversed"), c.horizontalTraversed,
                 tr("Total Sl Dist Traversed"), c.slopeTraversed);
    return t;
}

std::string adjustmentHeading(const char *closureTitle) {
    std::string t;
    appendFormat(t, "%s\n\n", closureTitle);
    appendFormat(t, "%-9.9s %-11.11s %-11.11s %-11.11s %-11.11s %-6.6s %s\n", tr("Point"),
                 tr("North"), tr("East"), tr("Elevation"), tr("Side"), tr("Shift"),
                 tr("Description"));
    return t;
}

std::string pointList(const PassResult &pass) {
    // Views into the points' own names, which outlive the map.
    std::unordered_map<std::string_view, const TraversePoint *> latest;
    for (const auto &cp : pass.points)
        latest[cp.point.name.view()] = &cp.point;
    std::vector<const TraversePoint *> points;
    for (const auto &[name, p] : latest)
        points.push_back(p);
    std::sort(points.begin(), points.end(), [](const TraversePoint *a, const TraversePoint *b) {
        return comparePointNames(a->name, b->name) < 0;
    });
    std::string out;
    for (const auto *p : points)
        appendFormat(out, "%-9.9s %12.4f %12.4f %s %s\n", p->name.str().c_str(), p->north, p->east,
                     p->hasElevation ? format("%10.4f", p->elevation).c_str() : "          ",
                     p->description.str().c_str());
    return out;
}

std::string reportTail(const ReportTail &t) {
    std::string tail;
    if (!t.sideshots.empty() && t.reportSideshots) {
        // Piece by piece: the list may be 60 MB, and a sum of strings
        // would copy it once for every +.
        tail.reserve(t.sideshots.size() + t.multipleBacksights.size() + t.depths.size() +
                     t.warnings.size() + 128);
        tail += '\n';
        tail += tr("Sideshots");
        tail += "\n\n";
        tail += t.sideshots;
    }
    if (!t.multipleBacksights.empty())
        tail +=
            std::string("\n") + tr("Multiple Backsight Orientation") + "\n" + t.multipleBacksights;
    if (!t.depths.empty())
        tail += std::string("\n") + tr("Depth Adjustments") + t.depths + "\n";
    if (!t.warnings.empty())
        tail += std::string("\n") + tr("Warnings:") + "\n" + t.warnings;
    return tail;
}

} // namespace tramline::reduce
