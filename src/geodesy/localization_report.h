// The "Define Localization" report of a fitted localization.
#pragma once

#include "base/report.h"
#include "geodesy/localization.h"

#include <string>

namespace tramline::geodesy {

/// The report's text, section by section as the report settings ask:
/// datum, ellipsoid, seven parameters, geoid and projection (projection
/// parameters); the horizontal and vertical transformations (transformation
/// parameters, with their formulas when asked); then always the scale
/// factors, residuals, units, warnings and the point table.
std::string localizationReportText(const Localization &localization,
                                   const LocalizationReportSettings &settings);

/// The report as a titled report of one tab.
Report localizationReport(const Localization &localization,
                          const LocalizationReportSettings &settings);

} // namespace tramline::geodesy
