#include "reduce/traverse_closure.h"

#include "base/format.h"
#include "base/translation.h"
#include "reduce/point_store.h"

namespace tramline::reduce {

std::optional<TraversePoint>
knownBeforeRun(const PassResult &pass, crd::CoordinateFile &coordinates, const std::string &name) {
    if (auto p = storedPoint(coordinates, name))
        return p;
    if (const auto *c = pass.find(name); c && c->control)
        return c->point;
    return std::nullopt;
}

std::optional<TraversePoint> knownClosingPoint(const PassResult &pass,
                                               crd::CoordinateFile &coordinates,
                                               const KnownPoint &given, const std::string &name) {
    if (!given.north || !given.east)
        return knownBeforeRun(pass, coordinates, name);
    TraversePoint p;
    p.name = name;
    p.north = *given.north;
    p.east = *given.east;
    p.hasElevation = given.elevation.has_value();
    p.elevation = given.elevation.value_or(0.0);
    return p;
}

TraverseClosure closeTraverse(const PassResult &pass, const TraverseChoice &choice,
                              long closingLine, const KnownPoint &given,
                              const std::string &closingName, crd::CoordinateFile &coordinates) {
    TraverseClosure t;
    const auto *found = pass.find(choice.start);
    const auto start = found ? found->point : storedPoint(coordinates, choice.start);
    if (!start) {
        t.error = format(tr("Error: unable to find starting point %s."), choice.start.c_str());
        return t;
    }
    t.start = *start;
    t.sides = traverseSides(pass.sides, choice, closingLine);
    if (t.sides.empty() || t.sides.back().line != closingLine) {
        t.error = format(tr("Error: unable to find ending point %s."), choice.end.c_str());
        return t;
    }
    const auto known = knownClosingPoint(pass, coordinates, given, closingName);
    if (!known) {
        t.error = format(tr("No coordinate stored for Closure Point %s"), closingName.c_str());
        return t;
    }
    t.knownEnd = *known;
    t.computedEnd = t.start;
    for (const auto &side : t.sides) {
        t.computedEnd.north += side.dNorth;
        t.computedEnd.east += side.dEast;
        t.computedEnd.hasElevation = t.computedEnd.hasElevation && side.hasElevation;
        t.computedEnd.elevation += side.dElevation;
    }
    t.closure = computeClosure(t.computedEnd, t.knownEnd, t.sides);
    t.ok = true;
    return t;
}

} // namespace tramline::reduce
