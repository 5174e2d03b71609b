#include "reduce/point_store.h"

#include "base/format.h"
#include "base/translation.h"
#include "base/unset.h"

#include <algorithm>
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
                        const std::set<std::string> &adjusted, int adjustedOperation,
                        size_t block) {
    StoreResult result;
    const bool history = coordinates.historyKeeping();
    // The points as they were, for the history: read before anything is written.
    std::unordered_map<std::string, crd::CrdPoint> before;
    if (history) {
        for (const auto &stored : pass.points) {
            crd::CrdPoint old;
            if (!before.count(stored.point.name) &&
                coordinates.readPoint(stored.point.name, old, crd::PointSearch::Exact,
                                      crd::Verbosity::Quiet))
                before.emplace(stored.point.name, old);
        }
    }
    // Each block is one bulk write: the file ends as writing the points one
    // at a time would leave it, later points winning.
    block = std::max<size_t>(block, 1);
    std::vector<crd::CrdPoint> points;
    std::vector<int> errors;
    for (size_t first = 0; first < pass.points.size(); first += block) {
        const size_t end = std::min(pass.points.size(), first + block);
        points.clear();
        points.reserve(end - first);
        for (size_t i = first; i < end; ++i) {
            ComputedPoint &stored = pass.points[i];
            crd::CrdPoint p;
            p.name = std::move(stored.point.name);
            p.northing = stored.point.north;
            p.easting = stored.point.east;
            p.elevation = stored.point.hasElevation ? stored.point.elevation : kUnsetPositive;
            p.description = std::move(stored.point.description);
            points.push_back(std::move(p));
        }
        errors.clear();
        result.stored += coordinates.writePoints(points, crd::Verbosity::Quiet, &errors);
        for (size_t k = 0; k < points.size(); ++k) {
            const ComputedPoint &stored = pass.points[first + k];
            if (k < errors.size() && errors[k] != 0) {
                result.warnings.push_back(format(tr("\nFailed to store point %s\non line %ld."),
                                                 points[k].name.c_str(), stored.line));
                continue;
            }
            if (!history)
                continue;
            const int operation = stored.control                   ? kHistoryPointStore
                                  : adjusted.count(points[k].name) ? adjustedOperation
                                                                   : kHistorySideshot;
            const auto it = before.find(points[k].name);
            coordinates.addHistory(it == before.end() ? nullptr : &it->second, &points[k],
                                   operation);
            before[points[k].name] = points[k]; // a later entry of the name changes this one
        }
    }
    // The pass's copies are spent: a million of them would stay in memory
    // through the notes.
    std::vector<ComputedPoint>().swap(pass.points);
    pass.index.clear();
    for (const auto &note : pass.notes) {
        const size_t tab = note.find('\t');
        coordinates.addNote(note.substr(0, tab), note.substr(tab + 1));
    }
    return result;
}

} // namespace tramline::reduce
