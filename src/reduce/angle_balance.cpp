#include "reduce/angle_balance.h"

#include "base/angles.h"
#include "base/format.h"
#include "base/translation.h"
#include "raw/angle_math.h"
#include "reduce/setup_walk.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace tramline::reduce {

using raw::HorizontalKind;

double correctionPerAngle(double angularErrorDegrees, int sides) {
    return sides > 0 ? angularErrorDegrees / sides : 0.0;
}

std::string correctedAngle(HorizontalKind kind, double angle, double correction, int turns,
                           AngleUnit unit) {
    switch (kind) {
    case HorizontalKind::NE:
    case HorizontalKind::SE:
    case HorizontalKind::SW:
    case HorizontalKind::NW: {
        const double az = normalizeDegrees(shotAzimuth(kind, angle, 0.0) + turns * correction);
        const char *ns = az <= 90.0 || az >= 270.0 ? "N" : "S";
        const char *ew = az <= 180.0 ? "E" : "W";
        const double b = az <= 90.0    ? az
                         : az <= 180.0 ? 180.0 - az
                         : az <= 270.0 ? az - 180.0
                                       : 360.0 - az;
        return std::string(ns) + formatDms(b, 4) + ew;
    }
    default:
        break;
    }
    // An angle turned left turns the other way round.
    const bool turnedLeft = kind == HorizontalKind::AL || kind == HorizontalKind::DL;
    const double corrected =
        normalizeDegrees(angle + (turnedLeft ? -correction : correction) * turns);
    const char *code = kind == HorizontalKind::None ? "AR" : raw::horizontalKindName(kind);
    return code + (unit == AngleUnit::Gons ? format("%.4f", degreesToGons(corrected))
                                           : formatDms(corrected, 4));
}

std::string correctedAngles(const raw::RawFile &file, const std::vector<TraverseSide> &sides,
                            double correction) {
    std::string t = std::string("\n") + tr("Corrected Angles") + "\n";
    const AngleUnit unit = file.units.angle;
    // Side number by raw line, the first side of a line winning: one lookup
    // per record instead of a search through every side.
    std::unordered_map<long, int> sideByLine;
    sideByLine.reserve(sides.size());
    for (size_t i = 0; i < sides.size(); ++i)
        sideByLine.emplace(sides[i].line, static_cast<int>(i) + 1);
    for (const auto &node : file.nodes) {
        if (node.type != raw::RecordType::Observation || !node.observation.hasHorizontal)
            continue;
        const auto side = sideByLine.find(static_cast<long>(node.lineNumber));
        if (side == sideByLine.end())
            continue;
        const raw::Observation &o = node.observation;
        const int k = side->second;
        const int turns = turnedFromBacksight(o.horizontalKind) ? 1 : k;
        appendFormat(t, "%-9.9s %-9.9s %s\n", o.occupied.str().c_str(), o.foresight.str().c_str(),
                     correctedAngle(o.horizontalKind, raw::angleToDegrees(o.horizontal, unit),
                                    correction, turns, unit)
                         .c_str());
    }
    return t;
}

std::optional<size_t> findBadAngle(const TraversePoint &computedEnd, const TraversePoint &knownEnd,
                                   const std::vector<TraverseSide> &sides,
                                   double angularErrorDegrees, double horizontalError) {
    if (sides.size() < 2 || horizontalError == 0.0)
        return std::nullopt;
    const double cr = std::cos(radians(angularErrorDegrees));
    const double sr = std::sin(radians(angularErrorDegrees));
    std::vector<std::pair<double, double>> forward, backward(sides.size());
    double fn = computedEnd.north, fe = computedEnd.east;
    for (auto it = sides.rbegin(); it != sides.rend(); ++it) {
        fn -= it->dNorth;
        fe -= it->dEast;
    }
    for (const auto &s : sides) {
        forward.emplace_back(fn, fe);
        fn += s.dNorth;
        fe += s.dEast;
    }
    double bn = knownEnd.north, be = knownEnd.east;
    for (size_t i = sides.size(); i-- > 0;) {
        const double dn = sides[i].dNorth * cr - sides[i].dEast * sr;
        const double de = sides[i].dNorth * sr + sides[i].dEast * cr;
        bn -= dn;
        be -= de;
        backward[i] = {bn, be};
    }
    size_t best = 0;
    double bestDistance = 1e300;
    for (size_t i = 1; i < sides.size(); ++i) {
        const double d = std::hypot(forward[i].first - backward[i].first,
                                    forward[i].second - backward[i].second);
        if (d < bestDistance) {
            bestDistance = d;
            best = i;
        }
    }
    if (bestDistance > horizontalError / 10.0)
        return std::nullopt;
    return best;
}

std::string findBadAngleText(const std::vector<TraverseSide> &sides, std::optional<size_t> bad) {
    std::string t = std::string("\n") + tr("Find Bad Angle") + "\n";
    if (!bad || *bad == 0 || *bad >= sides.size())
        return t + tr("Bad angle not found") + "\n";
    return t + tr("Bad Angle at Setup") + "\n" +
           format("%s %s, %s %s", tr("Occupy Point"), sides[*bad].from.c_str(),
                  tr("Backsight Point"), sides[*bad - 1].from.c_str()) +
           "\n";
}

std::string angleBalanceText(double reference, double measured, const raw::RawFile &file,
                             const std::vector<TraverseSide> &sides,
                             std::optional<size_t> badAngle) {
    const double error = angularError(reference, measured);
    const int n = static_cast<int>(sides.size());
    const double correction = correctionPerAngle(error, n);
    // A gon file's report speaks gons throughout, as its corrected angles do.
    const AngleUnit unit = file.units.angle;
    auto angle = [unit](double degreesValue) {
        if (unit != AngleUnit::Gons)
            return signedDms(degreesValue);
        return format("%.4f", degreesToGons(degreesValue));
    };
    std::string t;
    appendFormat(t, "\n%s: %s  %s: %s\n", tr("Reference Closing Azimuth"), angle(reference).c_str(),
                 tr("Measured Closing Azimuth"), angle(measured).c_str());
    t += format(tr("Angular Error: %s for %d traverse sides"), angle(error).c_str(), n) + "\n";
    appendFormat(t, "%s: %s\n", tr("Adjusting Each Angle"), angle(correction).c_str());
    t += correctedAngles(file, sides, correction);
    t += findBadAngleText(sides, badAngle);
    return t;
}

std::string signedDms(double degreesValue) {
    return (degreesValue < 0 ? "-" : "") + formatDms(std::fabs(degreesValue), 4);
}

} // namespace tramline::reduce
