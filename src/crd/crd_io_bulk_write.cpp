#include "crd/crd_io_morvane.h"

#include <cstdint>

#include "base/point_names.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"
#include "crd/point_name_rules.h"
#include "crd/record_layout.h"

#include <algorithm>
#include <cstring>

namespace tramline::crd {

using namespace layout;

long CrdIOMorvane::writePoints(std::span<const CrdPoint> points, Verbosity verbosity,
                               std::vector<int> *errors) {
    const bool quiet = verbosity == Verbosity::Quiet;
    m_error = kNoError;
    std::vector<int> codes(points.size(), kNoError);
    long written = 0;
    if (!m_store || m_access == CrdAccess::ReadOnly) {
        std::fill(codes.begin(), codes.end(), m_store ? kReadWriteFailed : kNotOpen);
        m_error = codes.empty() ? kNoError : codes.front();
    } else if (m_format == kFormatAlphanumeric) {
        written = writeAlphanumericBatch(points, quiet, codes);
    } else {
        // Numeric records sit at fixed places: nothing moves, so writing
        // them one by one is already the fastest way.
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (writePoint(points[i], verbosity, nullptr))
                ++written;
            codes[i] = m_error;
        }
    }
    if (errors)
        *errors = std::move(codes);
    return written;
}

// Many points into a sorted file at once: the new records are sorted in
// memory and merged with the file's from its end backwards, so each old
// record moves once, whatever the number of points. The result is the file
// that writing them one at a time would give: the last of equal names wins,
// a name already in the file is replaced in place. Where that equivalence
// cannot be promised (a name holding '.', which the name order may compare
// inconsistently, or a file that is not strictly in order), the points are
// written one at a time instead.
long CrdIOMorvane::writeAlphanumericBatch(std::span<const CrdPoint> points, bool quiet,
                                          std::vector<int> &errors) {
    m_cacheValid = false;
    struct Item {
        std::string name;
        AlphaRecord record;
    };
    std::vector<Item> items;
    items.reserve(points.size());
    // Message lines by point, printed in order; few points have one.
    std::vector<std::pair<std::size_t, std::string>> lines;
    bool consistent = true;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CrdPoint &point = points[i];
        std::string name = normaliseAlphanumericName(point.name);
        errors[i] = hasFiniteCoordinates(point) ? checkAlphanumericName(name) : kNotANumber;
        if (errors[i] == kNameBlank)
            lines.emplace_back(i, tr("\nInvalid point number: empty string."));
        if (errors[i] != kNoError)
            continue;
        std::string_view description = fileDescription(point.description);
        if (description.size() > kMaxDescription) {
            lines.emplace_back(
                i, tr("\nWarning: Truncating description that contains too many characters."));
            description = cutAtCharacter(description, kMaxDescription);
        }
        Item item{std::move(name), {}};
        putDouble(item.record.data() + kNorthing, point.northing);
        putDouble(item.record.data() + kEasting, point.easting);
        putDouble(item.record.data() + kElevation, storedElevation(point.elevation));
        putText(item.record.data() + kDescription, kTextField, description);
        putText(item.record.data() + kName, kNameField, item.name);
        consistent = consistent && !hasDot(item.name);
        items.push_back(std::move(item));
    }

    // Sort positions, not the records themselves: a million 100-byte items
    // moved through a merge sort cost more than the comparisons.
    std::vector<std::uint32_t> order(items.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<std::uint32_t>(i);
    const auto before = [&items](std::uint32_t a, std::uint32_t b) {
        return comparePointNames(items[a].name, items[b].name) < 0;
    };
    // Points come mostly in the order they were numbered: one look decides
    // whether they need sorting at all.
    if (!std::is_sorted(order.begin(), order.end(), before))
        std::stable_sort(order.begin(), order.end(), before);
    // Of equal names the last one given wins, as it would overwrite the
    // others. The positions are thinned in place: a copy of the items
    // would double the memory of a large write.
    std::size_t kept = 0;
    for (std::size_t i = 0; i < order.size(); ++i)
        if (i + 1 == order.size() ||
            comparePointNames(items[order[i]].name, items[order[i + 1]].name) != 0)
            order[kept++] = order[i];
    order.resize(kept);
    const auto uniqueName = [&](std::size_t k) -> const std::string & {
        return items[order[k]].name;
    };

    // One pass over the file: is it strictly in order, and which names exist?
    // What an earlier batch checked or wrote is known to be in order, and
    // nothing before the first new name's place can match one: a run of
    // batches in name order reads only the file's tail.
    long from = 0;
    if (consistent && !order.empty() && m_orderedCount > 0) {
        const Search first = searchAlphanumeric(uniqueName(0));
        if (first.ok)
            from = std::max(0L, std::min(std::min(m_orderedCount, m_count) - 1, first.index));
    }
    long matches = 0;
    std::vector<unsigned char> chunk(kMaxMoveRecords * kAlphaRecordSize);
    std::string previous;
    std::size_t cursor = 0;
    for (long start = from; consistent && start < m_count; start += kMaxMoveRecords) {
        const long n = std::min(kMaxMoveRecords, m_count - start);
        if (!m_store->readExactly(alphaOffset(start), chunk.data(),
                                  static_cast<std::size_t>(n) * kAlphaRecordSize)) {
            for (int &code : errors)
                if (code == kNoError)
                    code = kReadWriteFailed;
            fail(kReadWriteFailed);
            return 0;
        }
        for (long i = 0; consistent && i < n; ++i) {
            std::string name =
                alphaName(chunk.data() + static_cast<std::size_t>(i) * kAlphaRecordSize);
            consistent =
                !hasDot(name) && (start + i == from || comparePointNames(previous, name) < 0);
            while (cursor < order.size() && comparePointNames(uniqueName(cursor), name) < 0)
                ++cursor;
            if (cursor < order.size() && comparePointNames(uniqueName(cursor), name) == 0) {
                ++matches;
                ++cursor;
            }
            previous = std::move(name);
        }
    }
    if (!consistent) {
        long written = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (writePoint(points[i], quiet ? Verbosity::Quiet : Verbosity::Messages, nullptr))
                ++written;
            errors[i] = m_error;
        }
        return written;
    }
    for (const auto &line : lines)
        say(quiet, line.second);
    if (order.empty())
        return 0;

    const long long oldSize = m_store->size();
    const long inserts = static_cast<long>(order.size()) - matches;
    const long finalCount = m_count + inserts;
    auto failAll = [&]() -> long {
        for (int &code : errors)
            if (code == kNoError)
                code = kReadWriteFailed;
        m_error = kReadWriteFailed;
        return 0;
    };
    if (oldSize < 0)
        return failAll();
    // Nothing below the first new name's place changes; from there on the
    // old bytes go into the journal first.
    const Search first = searchAlphanumeric(uniqueName(0));
    if (!first.ok || !beginMove(alphaOffset(first.index)))
        return failAll();
    if (!reserveTail(alphaOffset(m_count), static_cast<std::uint64_t>(inserts) * kAlphaRecordSize,
                     oldSize)) {
        abandonMove();
        return failAll();
    }

    // Merge from the end. The next output slot is always above the next old
    // record still to be merged, so no record is overwritten before it has
    // been read.
    std::vector<unsigned char> in(kMaxMoveRecords * kAlphaRecordSize);
    std::vector<unsigned char> out(kMaxMoveRecords * kAlphaRecordSize);
    long old = m_count - 1; // next old record to merge
    long inLow = m_count;   // old records [inLow, inLow + inFill) are in `in`
    long k = static_cast<long>(order.size()) - 1;
    long outTop = finalCount - 1; // slot of the last record in `out`
    long outFill = 0;
    bool ok = true;
    auto flush = [&] {
        if (outFill == 0)
            return;
        const long low = outTop - outFill + 1;
        ok = ok &&
             m_store->writeAt(alphaOffset(low),
                              out.data() + static_cast<std::size_t>(kMaxMoveRecords - outFill) *
                                               kAlphaRecordSize,
                              static_cast<std::size_t>(outFill) * kAlphaRecordSize);
        outTop = low - 1;
        outFill = 0;
    };
    while (ok && k >= 0) {
        if (old >= 0 && old < inLow) {
            inLow = std::max(0L, old + 1 - kMaxMoveRecords);
            ok = m_store->readExactly(alphaOffset(inLow), in.data(),
                                      static_cast<std::size_t>(old + 1 - inLow) * kAlphaRecordSize);
            if (!ok)
                break;
        }
        const unsigned char *oldRecord =
            old >= 0 ? in.data() + static_cast<std::size_t>(old - inLow) * kAlphaRecordSize
                     : nullptr;
        const int c = oldRecord ? comparePointNames(uniqueName(static_cast<std::size_t>(k)),
                                                    alphaName(oldRecord))
                                : 1;
        const unsigned char *source = nullptr;
        if (c >= 0) {
            source = items[order[static_cast<std::size_t>(k)]].record.data();
            --k;
            if (c == 0)
                --old;
        } else {
            source = oldRecord;
            --old;
        }
        std::memcpy(out.data() +
                        static_cast<std::size_t>(kMaxMoveRecords - 1 - outFill) * kAlphaRecordSize,
                    source, kAlphaRecordSize);
        if (++outFill == kMaxMoveRecords)
            flush();
    }
    flush();
    m_count = finalCount;
    m_searchNames.clear();
    if (!ok || !loadEnds()) {
        abandonMove();
        return failAll();
    }
    if (!finishMove())
        return failAll();
    m_orderedCount = m_count;
    return static_cast<long>(points.size()) -
           static_cast<long>(
               std::count_if(errors.begin(), errors.end(), [](int e) { return e != 0; }));
}

} // namespace tramline::crd
