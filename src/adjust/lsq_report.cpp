#include "adjust/lsq_report.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"

#include <cmath>

namespace tramline::adjust {

namespace {

struct ChiSquareRow {
    double lower, upper;
};

// The program's own table, kept as it always was (some rows differ from
// printed tables on purpose: earlier reports must stay comparable).
constexpr ChiSquareRow kChiSquare[30] = {
    {0.0039, 3.84}, {0.1026, 5.99}, {0.352, 7.81}, {0.711, 9.49},  {1.15, 11.07}, {1.64, 12.59},
    {2.17, 14.07},  {2.73, 15.51},  {3.33, 16.92}, {3.94, 18.31},  {4.57, 19.68}, {5.23, 21.03},
    {5.89, 22.36},  {6.57, 23.68},  {7.26, 25},    {7.56, 26.3},   {7.96, 27.3},  {8.59, 28.87},
    {9.39, 29.87},  {10.85, 31.41}, {11.6, 32.41}, {12.35, 33.41}, {13.1, 34.41}, {13.85, 36.42},
    {14.6, 37.42},  {15.35, 38.42}, {16.1, 39.42}, {16.85, 40.42}, {17.6, 41.42}, {18.45, 43.77},
};

// A format without arguments, as printf would print it.
std::string printfText(const char *text) {
    long count = 0;
    return replaceAll(text, "%%", "%", count);
}

std::string angleText(double degreesValue, AngleUnit unit) {
    if (unit == AngleUnit::Gons)
        return format("%.4f", degreesToGons(degreesValue));
    return formatDms(degreesValue, 4);
}

void pointList(std::string &t, const char *title, const std::vector<LsqPoint> &points) {
    appendFormat(t, "%s", tr(title));
    appendFormat(t, "\n%-9.9s %-11.11s %s", tr("Point#"), tr("Northing"), tr("Easting"));
    for (const auto &p : points)
        appendFormat(t, "\n%-9.9s %-11.3f %-11.3f", p.name.c_str(), p.north, p.east);
    t += "\n\n";
}

const char *kindWord(ObservationKind kind) {
    switch (kind) {
    case ObservationKind::Distance:
        return tr("distance");
    case ObservationKind::Angle:
        return tr("angle");
    case ObservationKind::Azimuth:
        return tr("azimuth");
    }
    return "";
}

} // namespace

std::optional<std::pair<double, double>> chiSquareBounds(int r) {
    if (r < 1 || r > 30)
        return std::nullopt;
    const auto &row = kChiSquare[r - 1];
    return std::make_pair(row.lower, row.upper);
}

std::optional<bool> chiSquarePasses(const Solution &s) {
    const auto bounds = chiSquareBounds(s.degreesOfFreedom);
    if (!bounds)
        return std::nullopt;
    const double statistic = s.degreesOfFreedom * s.s0 * s.s0;
    return statistic >= bounds->first && statistic <= bounds->second;
}

std::string inputListing(const LsqData &data, AngleUnit angleUnit) {
    std::string t;
    pointList(t, trNoop("Control Points"), data.control);
    pointList(t, trNoop("Adjust Points"), data.adjust);
    appendFormat(t, "%s\n%s", tr("Distance Observations"),
                 tr("Occupy    FSight    Distance  StdErr"));
    for (const auto &o : data.observations)
        if (o.kind == ObservationKind::Distance)
            appendFormat(t, "\n%-9.9s %-9.9s %-9.3f %.3f", o.at.c_str(), o.to.c_str(), o.value,
                         o.stdErr);
    appendFormat(t, "\n\n%s", tr("Angle Observations"));
    appendFormat(t, "\n%-9.9s %-9.9s %-9.9s %-13.13s %s", tr("BSight"), tr("Occupy"), tr("FSight"),
                 tr("Angle"), tr("StdErr"));
    for (const auto &o : data.observations) {
        const std::string angle = angleText(o.value, angleUnit);
        if (o.kind == ObservationKind::Angle)
            appendFormat(t, "\n%-9.9s %-9.9s %-9.9s %-13.13s %.3f\"", o.from.c_str(), o.at.c_str(),
                         o.to.c_str(), angle.c_str(), o.stdErr);
        else if (o.kind == ObservationKind::Azimuth)
            appendFormat(t, "\n%-9.9s %-9.9s           %-13.13s %.3f\"", o.at.c_str(), o.to.c_str(),
                         angle.c_str(), o.stdErr);
    }
    t += "\n\n";
    return t;
}

std::string solutionText(const Network &network, const Solution &s, std::string &shiftWarning) {
    std::string t;
    appendFormat(t, tr("Solution Converged in %d Iterations"), s.iterations);
    appendFormat(t, "\n%s: %.3f", tr("Reference Standard Deviation"),
                 s.degreesOfFreedom > 0 ? s.s0 : 0.0);
    if (const auto bounds = chiSquareBounds(s.degreesOfFreedom)) {
        appendFormat(t, "\n");
        appendFormat(t, tr("Chi-Square statistic: %.3f, Range for 95%%: %.3f to %.3f"),
                     s.degreesOfFreedom * s.s0 * s.s0, bounds->first, bounds->second);
        t += "\n";
        t += printfText(*chiSquarePasses(s)
                            ? tr("Adjustment Passes Chi-Square test at 95%% confidence level")
                            : tr("Adjustment Fails Chi-Square test at 95%% confidence level"));
    }
    appendFormat(t, "\n\n%s: %.3f\n", tr("Max adjustment"), s.maxShift);
    if (s.maxShift > kAllowedShift) {
        shiftWarning = format(tr("Warning: adjustment moved points by up to %.3f"), s.maxShift);
        t += shiftWarning + "\n";
    }
    appendFormat(t, "\n%s\n", tr("Adjusted Points"));
    appendFormat(t, "%-9.9s %-11.11s %-11.11s %-9.9s %s\n", tr("Point#"), tr("Northing"),
                 tr("Easting"), tr("N-StdErr"), tr("E-StdErr"));
    for (std::size_t p = 0; p < network.points.size(); ++p) {
        if (network.points[p].control)
            continue;
        const int point = static_cast<int>(p);
        appendFormat(t, "%-9.9s %-11.3f %-11.3f %-9.3f %.3f\n", network.points[p].name.c_str(),
                     s.north[p], s.east[p], s.northStdErr(network, point),
                     s.eastStdErr(network, point));
    }
    return t;
}

std::string suspectSentence(const Network &network, const NetworkStatistics &statistics,
                            int observation) {
    const auto &o = network.observations[static_cast<std::size_t>(observation)];
    const auto &st = statistics.observations[static_cast<std::size_t>(observation)];
    const std::string name = observationName(network, o);
    if (o.kind == ObservationKind::Distance)
        return format(tr("Suspect: %s %s, residual %.3f, standardized %.1f"), kindWord(o.kind),
                      name.c_str(), st.residual, st.standardized);
    return format(tr("Suspect: %s %s, residual %.1f\", standardized %.1f"), kindWord(o.kind),
                  name.c_str(), st.residual, st.standardized);
}

std::string statisticsText(const Network &network, const Solution &s,
                           const NetworkStatistics &statistics) {
    std::string t;
    appendFormat(t, tr("Reference standard deviation %.3f with %d degrees of freedom"),
                 s.degreesOfFreedom > 0 ? s.s0 : 0.0, s.degreesOfFreedom);
    t += "\n\n";
    appendFormat(t, "%s\n", tr("Error Ellipses"));
    appendFormat(t,
                 tr("Standard ellipses from s0 and N^-1; 95%% ellipses are %.4f times larger "
                    "(chi-square, 2 degrees of freedom)."),
                 kConfidence95Factor);
    appendFormat(t, "\n%-9.9s %-9.9s %-9.9s %-9.9s %-9.9s %-13.13s %-9.9s %s\n", tr("Point#"),
                 tr("N-StdErr"), tr("E-StdErr"), tr("Major"), tr("Minor"), tr("Azimuth"),
                 tr("Major95"), tr("Minor95"));
    for (const auto &p : statistics.points) {
        const auto &e = p.standard;
        appendFormat(t, "%-9.9s %-9.4f %-9.4f %-9.4f %-9.4f %-13.13s %-9.4f %.4f\n",
                     network.points[static_cast<std::size_t>(p.point)].name.c_str(), p.northStdErr,
                     p.eastStdErr, e.semiMajor, e.semiMinor, formatDms(e.azimuth, 4).c_str(),
                     e.semiMajor * kConfidence95Factor, e.semiMinor * kConfidence95Factor);
    }

    appendFormat(t, "\n%s\n", tr("Observations"));
    appendFormat(t, "%-9.9s %-29.29s %-11.11s %-7.7s %s\n", tr("Kind"), tr("Points"),
                 tr("Residual"), tr("Redund"), tr("Standardized"));
    for (std::size_t i = 0; i < network.observations.size(); ++i) {
        const auto &o = network.observations[i];
        const auto &st = statistics.observations[i];
        const std::string name = observationName(network, o);
        std::string residual = o.kind == ObservationKind::Distance ? format("%.4f", st.residual)
                                                                   : format("%.2f\"", st.residual);
        appendFormat(t, "%-9.9s %-29.29s %-11.11s %-7.3f ", kindWord(o.kind), name.c_str(),
                     residual.c_str(), st.redundancy);
        t += st.tested ? format("%.2f", st.standardized) : std::string("-");
        if (st.suspect)
            t += " *";
        t += "\n";
    }
    appendFormat(t, tr("Sum of redundancy numbers: %.3f"), statistics.redundancySum);
    t += "\n\n";
    appendFormat(t, "%s\n", tr("Data Snooping"));
    appendFormat(t,
                 tr("Baarda's test: |standardized residual| = |v| / (sigma sqrt(r)) above %.2f "
                    "(alpha 0.001) marks a suspect."),
                 kSnoopingCriticalValue);
    t += "\n";
    if (statistics.suspects.empty())
        t += tr("No suspect observations.");
    for (int i : statistics.suspects)
        t += suspectSentence(network, statistics, i) + "\n";
    if (!statistics.relative.empty()) {
        appendFormat(t, "\n%s\n", tr("Relative Error Ellipses"));
        appendFormat(t, "%-9.9s %-9.9s %-9.9s %-9.9s %s\n", tr("From"), tr("To"), tr("Major"),
                     tr("Minor"), tr("Azimuth"));
        for (const auto &r : statistics.relative)
            appendFormat(t, "%-9.9s %-9.9s %-9.4f %-9.4f %s\n",
                         network.points[static_cast<std::size_t>(r.from)].name.c_str(),
                         network.points[static_cast<std::size_t>(r.to)].name.c_str(),
                         r.ellipse.semiMajor, r.ellipse.semiMinor,
                         formatDms(r.ellipse.azimuth, 4).c_str());
    }
    return t;
}

} // namespace tramline::adjust
