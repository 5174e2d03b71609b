// What the plan view draws: the points of the coordinate grid, the lines
// the raw file measured between them (traverse legs and sideshot rays)
// and the closure of the last adjustment. Built from the data alone, so
// that what is drawn can be checked without a window.
#pragma once

#include "base/units.h"
#include "crd/crd_point.h"
#include "raw/document.h"

#include <optional>
#include <string>
#include <vector>

namespace tramline::app {

struct PlotLine {
    std::string from, to;
    double fromNorth = 0.0, fromEast = 0.0, toNorth = 0.0, toEast = 0.0;
    bool traverse = false; ///< a leg (TR); otherwise a sideshot ray
};

/// The misclosure at a traverse's end (computed minus known).
struct PlotClosure {
    std::string at;
    double north = 0.0, east = 0.0; ///< where the vector starts
    double errorNorth = 0.0, errorEast = 0.0;
};

/// A point's 95 % error ellipse from the last least-squares run.
struct PlotEllipse {
    std::string at;
    double north = 0.0, east = 0.0;
    double semiMajor = 0.0, semiMinor = 0.0;
    double azimuth = 0.0; ///< of the major axis, degrees clockwise from north
};

/// Where a localization puts an alignment point against its local
/// coordinates (computed minus local).
struct PlotResidual {
    std::string at;
    double north = 0.0, east = 0.0;
    double errorNorth = 0.0, errorEast = 0.0;
};

struct PlotData {
    std::vector<crd::CrdPoint> points;
    std::vector<PlotLine> lines;
    std::optional<PlotClosure> closure;
    std::vector<PlotEllipse> ellipses;
    std::vector<PlotResidual> residuals;
    double residualFactor = 1.0; ///< the localization's own, as its report draws them
    LinearUnit unit = LinearUnit::Metres;
};

/// Lines of the raw file's observation rows between points that have
/// coordinates; a pair measured more than once is drawn once.
PlotData plotData(const raw::RawDocument &document, const std::vector<crd::CrdPoint> &points);

/// The factor a closure vector is drawn magnified by, so that it shows at
/// about a tenth of the plot's size: a 1, 2 or 5 times a power of ten, at
/// least 1.
double closureMagnification(double closureLength, double plotSize);

/// The factor error ellipses are drawn magnified by: the largest 1, 2 or
/// 5 times a power of ten that keeps the largest semi-major axis within a
/// twentieth of `plotSize` (1 without a positive axis).
double ellipseMagnification(const std::vector<PlotEllipse> &ellipses, double plotSize);

/// A round length for a scale bar no longer than `maximum`: 1, 2 or 5
/// times a power of ten.
double scaleBarLength(double maximum);

} // namespace tramline::app
