#include "reduce/point_store.h"

#include "base/format.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "base/unset.h"
#include "crd/file_kinds.h"

#include <algorithm>
#include <cstdint>
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

namespace {

// A name the alphanumeric file keeps as it stands (bar case), so that the
// name order of the given names is the file's and equal names stay equal.
// Dots are left out: such names may compare inconsistently.
bool keptAsGiven(std::string_view name) {
    if (name.empty() || name.front() == ' ' || name.back() == ' ')
        return false;
    return name.find_first_of(".-,\r\n") == std::string_view::npos;
}

// The order in which the points go to the file: the name order when the
// file is sorted by name, so that each bulk block lands after the one
// before and appends rather than moving the file's tail again (a run of
// interleaved traverse and sideshot numbers otherwise rewrites the whole
// file once per block). Equal names keep their run order: the last wins.
std::vector<std::uint32_t> writeOrder(const decltype(PassResult::points) &points, int format) {
    std::vector<std::uint32_t> order(points.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<std::uint32_t>(i);
    if (format != crd::kFormatAlphanumeric)
        return order;
    for (const ComputedPoint &p : points)
        if (!keptAsGiven(p.point.name))
            return order;
    // Numbered points, the common case: sort (number, run position) pairs,
    // which keeps equal names in run order without a stable sort.
    using Key = std::pair<std::int64_t, std::uint32_t>;
    std::vector<Key, BulkAllocator<Key>> keyed(points.size());
    bool numbered = true;
    for (size_t i = 0; i < points.size() && numbered; ++i) {
        keyed[i] = {plainPointNumber(points[i].point.name), static_cast<std::uint32_t>(i)};
        numbered = keyed[i].first >= 0;
    }
    if (numbered) {
        std::sort(keyed.begin(), keyed.end());
        for (size_t i = 0; i < order.size(); ++i)
            order[i] = keyed[i].second;
        return order;
    }
    keyed = {};
    const auto before = [&points](std::uint32_t a, std::uint32_t b) {
        return comparePointNames(points[a].point.name, points[b].point.name) < 0;
    };
    if (!std::is_sorted(order.begin(), order.end(), before))
        std::stable_sort(order.begin(), order.end(), before);
    return order;
}

crd::CrdPoint crdPointOf(const TraversePoint &t) {
    crd::CrdPoint p;
    p.name = t.name;
    p.northing = t.north;
    p.easting = t.east;
    p.elevation = t.hasElevation ? t.elevation : kUnsetPositive;
    p.description = t.description;
    return p;
}

} // namespace

StoreResult storePoints(PassResult &pass, crd::CoordinateFile &coordinates,
                        const std::set<std::string> &adjusted, int adjustedOperation,
                        size_t block) {
    StoreResult result;
    const bool history = coordinates.historyKeeping();
    // The points as they were, for the history: read before anything is written.
    TextMap<crd::CrdPoint> before;
    if (history) {
        for (const auto &stored : pass.points) {
            crd::CrdPoint old;
            if (!before.contains(stored.point.name.view()) &&
                coordinates.readPoint(stored.point.name, old, crd::PointSearch::Exact,
                                      crd::Verbosity::Quiet))
                before.emplace(stored.point.name, old);
        }
    }
    // Each block is one bulk write: the file ends as writing the points one
    // at a time would leave it, later points winning.
    block = std::max<size_t>(block, 1);
    const std::vector<std::uint32_t> order = writeOrder(pass.points, coordinates.format());
    std::vector<bool> failed(pass.points.size(), false);
    std::vector<crd::CrdPoint> points;
    std::vector<int> errors;
    for (size_t first = 0; first < order.size(); first += block) {
        const size_t end = std::min(order.size(), first + block);
        points.clear();
        points.reserve(end - first);
        for (size_t i = first; i < end; ++i)
            points.push_back(crdPointOf(pass.points[order[i]].point));
        errors.clear();
        result.stored += coordinates.writePoints(points, crd::Verbosity::Quiet, &errors);
        for (size_t k = 0; k < points.size() && k < errors.size(); ++k)
            failed[order[first + k]] = errors[k] != 0;
    }
    std::vector<crd::CrdPoint>().swap(points);
    // Warnings and history in the order the run stored the points.
    for (size_t i = 0; i < pass.points.size(); ++i) {
        const ComputedPoint &stored = pass.points[i];
        const std::string name = stored.point.name.str();
        if (failed[i]) {
            result.warnings.push_back(
                format(tr("\nFailed to store point %s\non line %ld."), name.c_str(), stored.line));
            continue;
        }
        if (!history)
            continue;
        const int operation = stored.control         ? kHistoryPointStore
                              : adjusted.count(name) ? adjustedOperation
                                                     : kHistorySideshot;
        const crd::CrdPoint now = crdPointOf(stored.point);
        const auto it = before.find(name);
        coordinates.addHistory(it == before.end() ? nullptr : &it->second, &now, operation);
        before[name] = now; // a later entry of the name changes this one
    }
    // The pass's copies are spent: a million of them would stay in memory
    // through the notes.
    decltype(PassResult::points)().swap(pass.points);
    pass.index.clear();
    for (const auto &note : pass.notes) {
        const size_t tab = note.find('\t');
        coordinates.addNote(note.substr(0, tab), note.substr(tab + 1));
    }
    return result;
}

} // namespace tramline::reduce
