#include "geodesy/localization_report.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "geodesy/alignment_file.h"
#include "geodesy/geoid_model.h"
#include "geodesy/projection_type.h"

#include <string>

namespace tramline::geodesy {

namespace {

void projectionSection(const Localization &loc, std::string &out) {
    const Ellipsoid e = loc.system.ellipsoid();
    const std::string datum =
        loc.settings.datumName.empty() ? loc.system.datum : loc.settings.datumName;
    appendFormat(out, "%s: %s\n", tr("Datum Name"), datum.c_str());
    appendFormat(out, "%s: %s a: %.3f 1/f: %.11f\n", tr("Ellipsoid Name"), e.name.c_str(), e.a,
                 e.inverseFlattening);
    const DatumShift &s = loc.helmertEstimated ? loc.helmert : loc.system.shift;
    out += tr("Helmert 7-Parameter Transformation (WGS84 to Datum)\n");
    appendFormat(out, tr("Translate (m) DX: %.4f DY: %.4f DZ: %.4f\n"), s.dx, s.dy, s.dz);
    appendFormat(out, tr("Rotate (seconds) RX: %.6f RY: %.6f RZ: %.6f\n"), s.rx, s.ry, s.rz);
    appendFormat(out, "%s: %.8f\n", tr("Scale (ppm)"), s.scalePpm);
    const std::string geoid =
        loc.settings.geoidModel ? geoidModelName(loc.settings.geoidModel) : tr("None");
    appendFormat(out, "%s: %s\n", tr("Geoid"), geoid.c_str());
    appendFormat(out, "%s: %s (%s)\n", tr("Projection Type"),
                 tr(projectionTypeName(loc.system.type)),
                 alignmentSystemText(loc.settings).c_str());
    out += '\n';
}

void horizontalSection(const Localization &loc, bool formulas, std::string &out) {
    const HorizontalTransform &h = loc.horizontal;
    switch (h.method) {
    case HorizontalMethod::OnePoint:
        appendFormat(out, "%s: %s\n", tr("One Point Alignment Azimuth"),
                     loc.settings.geodeticAzimuth ? tr("Geodetic") : tr("State Plane Grid"));
        break;
    case HorizontalMethod::TwoPointFitRotate:
    case HorizontalMethod::TwoPointRotateOnly:
        appendFormat(out, "%s: %s\n", tr("Two Point Align Method"),
                     h.method == HorizontalMethod::TwoPointRotateOnly
                         ? tr("Rotate Only")
                         : tr("State Plane Fit and Rotate"));
        break;
    case HorizontalMethod::Similarity:
    case HorizontalMethod::Rigid:
        break;
    }
    const bool scaled =
        h.method == HorizontalMethod::Similarity || h.method == HorizontalMethod::TwoPointFitRotate;
    if (scaled) {
        out += tr("Over Determination by Plane Similarity");
        out += '\n';
        appendFormat(out, "a0: %.8f a1: %.8f\n", h.a0, h.a1);
        appendFormat(out, "b0: %.8f b1: %.8f\n", h.b0, h.b1);
        appendFormat(out, "%s: %.8f\n", tr("Rotation"), h.rotationDegrees());
        if (formulas) {
            out += "Local_X = a0 + a1*Grid_X - b1*Grid_Y\n";
            out += "Local_Y = b0 + b1*Grid_X + a1*Grid_Y\n";
        }
    } else {
        out += tr("Rigid Body Transformation (No Scale Factor)");
        out += '\n';
        appendFormat(out, "a0: %.8f b0: %.8f alpha: %.8f\n", h.a0, h.b0, h.rotationDegrees());
        if (formulas) {
            out += "Local_X = a0 + Grid_X*cos(alpha) - Grid_Y*sin(alpha)\n";
            out += "Local_Y = b0 + Grid_X*sin(alpha) + Grid_Y*cos(alpha)\n";
        }
    }
    out += '\n';
}

void verticalSection(const Localization &loc, bool formulas, std::string &out) {
    const VerticalTransform &v = loc.vertical;
    if (v.tilted) {
        out += tr("Tilted Plane");
        out += '\n';
        appendFormat(out, "a: %.8f b: %.8f c: %.8f d: %.8f\n", v.a, v.b, v.c, v.d);
        appendFormat(out, "%s: %.5f%%\n", tr("Slope North Component"), v.slopeNorthPercent());
        appendFormat(out, "%s:  %.5f%%\n", tr("Slope East Component"), v.slopeEastPercent());
        if (formulas)
            out += "Vertical Adjustment = (-a*x - b*y - d)/c\n";
    } else {
        out += tr("Level Plane");
        appendFormat(out, ": %.8f\n", v.adjustment(0.0, 0.0));
    }
    out += '\n';
}

void pointTable(const Localization &loc, std::string &out) {
    const int places = loc.settings.places;
    const std::string value = format("%%-12.%df ", places);
    const std::string number =
        format("%%-17.17s %s%s%%-14.%df %%s\n", value.c_str(), value.c_str(), places);
    const std::string residualsLine =
        format("%%-17.%df %s%s%%-14.%df %%c\n\n", places, value.c_str(), value.c_str(), places);
    const char *headings = "%-17.17s %-12.12s %-12.12s %-14.14s %s\n";
    out += std::string(70, '-') + '\n';
    appendFormat(out, headings, tr("Description"), tr("Northing"), tr("Easting"), tr("Elevation"),
                 "");
    appendFormat(out, headings, "", tr("Latitude"), tr("Longitude"), "", tr("Use Horz"));
    appendFormat(out, headings, tr("Horz Residual"), tr("Vert Residual"), tr("3D Residual"),
                 "Ellipsoid_Elv", tr("Use Vert"));
    out += std::string(70, '-') + '\n';
    for (std::size_t i = 0; i < loc.points.size(); ++i) {
        const AlignmentPoint &p = loc.points[i];
        const PointResidual &r = loc.residuals.points[i];
        out += format(number.c_str(), p.description.c_str(), r.computedY, r.computedX, r.computedZ,
                      tr("Calculated"));
        out += format(number.c_str(), "", p.localY, p.localX, p.localZ, tr("Control"));
        appendFormat(out, "%-17.17s %-12.12s %-12.12s %-14.14s %c\n", "",
                     formatDms(p.latitude, 5).c_str(), formatDms(p.longitude, 5).c_str(), "",
                     p.useHorizontal ? 'Y' : 'N');
        out += format(residualsLine.c_str(), r.horizontal, r.vertical, r.threeD, p.ellipsoidHeight,
                      p.useVertical ? 'Y' : 'N');
    }
}

} // namespace

std::string localizationReportText(const Localization &loc,
                                   const LocalizationReportSettings &settings) {
    std::string out;
    if (settings.projectionParameters)
        projectionSection(loc, out);
    if (settings.transformationParameters) {
        horizontalSection(loc, settings.formulas, out);
        verticalSection(loc, settings.formulas, out);
    }
    const ResidualSummary &r = loc.residuals;
    appendFormat(out, "%s: %.12f\n", tr("Project Scale Factor"), loc.settings.projectScale);
    appendFormat(out, "%s: %.4f\n", tr("Average Horizontal Residual"), r.averageHorizontal);
    appendFormat(out, "%s: %.4f\n", tr("Maximum Horizontal Residual"), r.maximumHorizontal);
    appendFormat(out, "%s:   %.4f\n", tr("Average Vertical Residual"), r.averageVertical);
    appendFormat(out, "%s:   %.4f\n", tr("Maximum Vertical Residual"), r.maximumVertical);
    appendFormat(out, "%s: %.10f\n", tr("Transformation Scale Factor"), loc.horizontal.scale());
    appendFormat(out, "%s: %s\n", tr("Coordinate Units"), tr(unitsReportName(loc.settings.units)));
    for (const std::string &warning : loc.warnings)
        out += "\n" + warning + "\n";
    out += '\n';
    pointTable(loc, out);
    return out;
}

Report localizationReport(const Localization &localization,
                          const LocalizationReportSettings &settings) {
    Report report(tr("Define Localization"));
    report.append(tr("Define Localization"), localizationReportText(localization, settings));
    return report;
}

} // namespace tramline::geodesy
