#include "reduce/point_store.h"

#include "base/format.h"
#include "base/translation.h"
#include "base/unset.h"

#include <unordered_map>

namespace tramline::reduce {

std::optional<TraversePoint> storedPoint(crd::CoordinateFile &coordinates,
                                         const std::string &name) {
    crd::CrdPoint p;
    if (!coordinates.isOpen() || name.empty() ||
        !coordinates.readPoint(name, p, crd::PointSearch::Exact, crd::Verbosity::Quiet))
        return std::nullopt;
    TraversePoint t;
    t.name = p.name;
    t.north = p.northing;
    t.east = p.easting;
    t.hasElevation = !isUnset(p.elevation);
    t.elevation = t.hasElevation ? p.elevation : 0.0;
    t.description = p.description;
    return t;
}

StoreResult storePoints(PassResult &pass, crd::CoordinateFile &coordinates,
                        const std::set<std::string> &adjusted, int adjustedOperation) {
    StoreResult result;
    std::vector<crd::CrdPoint> points;
    std::vector<long> lines;
    std::vector<int> operations;
    points.reserve(pass.points.size());
    lines.reserve(pass.points.size());
    const bool history = coordinates.historyKeeping();
    // The points as they were, for the history: read before anything is written.
    std::unordered_map<std::string, crd::CrdPoint> before;
    for (auto &stored : pass.points) {
        crd::CrdPoint p;
        p.name = std::move(stored.point.name);
        p.northing = stored.point.north;
        p.easting = stored.point.east;
        p.elevation = stored.point.hasElevation ? stored.point.elevation : kUnsetPositive;
        p.description = std::move(stored.point.description);
        if (history) {
            operations.push_back(stored.control           ? kHistoryPointStore
                                 : adjusted.count(p.name) ? adjustedOperation
                                                          : kHistorySideshot);
            crd::CrdPoint old;
            if (!before.count(p.name) &&
                coordinates.readPoint(p.name, old, crd::PointSearch::Exact, crd::Verbosity::Quiet))
                before.emplace(p.name, old);
        }
        points.push_back(std::move(p));
        lines.push_back(stored.line);
    }
    std::vector<int> errors;
    result.stored = coordinates.writePoints(points, crd::Verbosity::Quiet, &errors);
    for (size_t i = 0; i < errors.size() && i < points.size(); ++i)
        if (errors[i] != 0)
            result.warnings.push_back(format(tr("\nFailed to store point %s\non line %ld."),
                                             points[i].name.c_str(), lines[i]));
    if (history) {
        for (size_t i = 0; i < points.size(); ++i) {
            if (i < errors.size() && errors[i] != 0)
                continue;
            const auto it = before.find(points[i].name);
            coordinates.addHistory(it == before.end() ? nullptr : &it->second, &points[i],
                                   operations[i]);
            before[points[i].name] = points[i]; // a later entry of the name changes this one
        }
    }
    for (const auto &note : pass.notes) {
        const size_t tab = note.find('\t');
        coordinates.addNote(note.substr(0, tab), note.substr(tab + 1));
    }
    return result;
}

} // namespace tramline::reduce
