// A picture of a localization: the alignment points on the local grid with
// their horizontal residual vectors magnified, as SVG.
#pragma once

#include "geodesy/localization.h"

#include <string>

namespace tramline::geodesy {

/// The magnification of the residual vectors: a 1, 2 or 5 times a power of
/// ten that draws the largest residual about a tenth as long as the wider
/// side of the points' extent (1 when every residual is zero).
double residualPlotFactor(const Localization &localization);

/// The SVG document (north up). Points used horizontally are filled
/// circles, the others rings; the legend states the factor.
std::string localizationPlotSvg(const Localization &localization);

} // namespace tramline::geodesy
