// The alphanumeric layout: records sorted by point name, found by binary
// search; a new name goes in by moving the records after it one place on.
#include "crd/crd_io_morvane.h"

#include "base/format.h"
#include "base/point_names.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"
#include "crd/point_name_rules.h"
#include "crd/record_layout.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace tramline::crd {

using namespace layout;

namespace {
constexpr long kWideSearch = 64; // searches keep the names met above this span
constexpr std::size_t kMaxSearchNames = 4096;
} // namespace

bool CrdIOMorvane::attachAlphanumeric(const unsigned char *header, long long size) {
    m_format = kFormatAlphanumeric;
    if (size > static_cast<long long>(kAlphaHeaderSize) && isFirstRevisionMark(header) &&
        !sortFirstRevision(size))
        return false;
    m_count = static_cast<long>((size - static_cast<long long>(kAlphaHeaderSize)) /
                                static_cast<long long>(kAlphaRecordSize));
    m_header.number = tramline::format("%.3f", getDouble(header + kAlphaNumber));
    m_header.date = getText(header + kAlphaDate, kTextField, kTextField - 1);
    m_header.title = getText(header + kAlphaTitle, kTextField, kTextField - 1);
    return loadEnds();
}

// The first revision of the alphanumeric layout kept records in the order
// they were added. Sorting it once makes every later lookup a binary search.
bool CrdIOMorvane::sortFirstRevision(long long size) {
    const long count = static_cast<long>((size - static_cast<long long>(kAlphaHeaderSize)) /
                                         static_cast<long long>(kAlphaRecordSize));
    std::vector<unsigned char> records(static_cast<std::size_t>(count) * kAlphaRecordSize);
    if (!m_store->readExactly(kAlphaHeaderSize, records.data(), records.size()))
        return fail(kReadWriteFailed);
    std::vector<std::string> names(static_cast<std::size_t>(count));
    bool consistent = true;
    for (long i = 0; i < count; ++i) {
        names[static_cast<std::size_t>(i)] =
            alphaName(records.data() + static_cast<std::size_t>(i) * kAlphaRecordSize);
        consistent = consistent && !hasDot(names[static_cast<std::size_t>(i)]);
    }
    // Each record goes in front of the first one whose name is greater or
    // equal. Without '.' in any name the order is a true order and a stable
    // sort of the reversed records gives the same list; names with '.' can
    // compare inconsistently, so then the insertion is done as it is said,
    // but only for files of a few thousand points: it scans the list for
    // every record, and a large file would never finish opening.
    constexpr long kInsertedOneByOne = 4096;
    std::vector<long> order;
    order.reserve(static_cast<std::size_t>(count));
    if (consistent || count > kInsertedOneByOne) {
        for (long i = count - 1; i >= 0; --i)
            order.push_back(i);
        std::stable_sort(order.begin(), order.end(), [&](long a, long b) {
            return comparePointNames(names[static_cast<std::size_t>(a)],
                                     names[static_cast<std::size_t>(b)]) < 0;
        });
    } else {
        for (long i = 0; i < count; ++i) {
            auto at = std::find_if(order.begin(), order.end(), [&](long j) {
                return comparePointNames(names[static_cast<std::size_t>(j)],
                                         names[static_cast<std::size_t>(i)]) >= 0;
            });
            order.insert(at, i);
        }
    }
    std::vector<unsigned char> sorted(records.size());
    for (long i = 0; i < count; ++i)
        std::memcpy(sorted.data() + static_cast<std::size_t>(i) * kAlphaRecordSize,
                    records.data() + static_cast<std::size_t>(order[static_cast<std::size_t>(i)]) *
                                         kAlphaRecordSize,
                    kAlphaRecordSize);

    if (m_access == CrdAccess::ReadOnly) {
        // A reader may not write the file: it sorts a copy in memory.
        std::vector<unsigned char> whole(static_cast<std::size_t>(size));
        if (!m_store->readExactly(0, whole.data(), whole.size()))
            return fail(kReadWriteFailed);
        m_store = std::make_unique<MemoryStore>(std::move(whole));
    }
    // Records first, the new mark last: a file cut off in between still
    // reads as the first revision and is sorted again next time.
    std::array<unsigned char, kTextField> mark{};
    putText(mark.data(), kTextField, kMarkSorted);
    const bool onDisk = m_access == CrdAccess::Update;
    if (onDisk && !beginMove(kAlphaMark))
        return false;
    if (!m_store->writeAt(kAlphaHeaderSize, sorted.data(), sorted.size()) ||
        !m_store->writeAt(kAlphaMark, mark.data(), mark.size())) {
        m_error = kReadWriteFailed;
        return onDisk ? abandonMove() : false;
    }
    return !onDisk || finishMove();
}

bool CrdIOMorvane::loadEnds() {
    m_highest.clear();
    m_lowest.clear();
    if (m_count == 0)
        return true;
    AlphaRecord record{};
    if (!readAlphaRecord(m_count - 1, record.data()))
        return fail(kReadWriteFailed);
    m_highest = alphaName(record.data());
    if (!readAlphaRecord(0, record.data()))
        return fail(kReadWriteFailed);
    m_lowest = alphaName(record.data());
    return true;
}

bool CrdIOMorvane::readAlphaRecord(long index, unsigned char *record) {
    return m_store->readExactly(alphaOffset(index), record, kAlphaRecordSize);
}

// The search reads the last record, then the first, then halves the range
// between them: lookups near either end (the usual case when points are
// added in order) cost one or two reads. The names met while the range is
// still wide are the same for every lookup, so they are kept until the
// records move.
bool CrdIOMorvane::probeName(long index, bool keep, std::string &name) {
    if (keep) {
        const auto known = m_searchNames.find(index);
        if (known != m_searchNames.end()) {
            name = known->second;
            return true;
        }
    }
    AlphaRecord record{};
    if (!readAlphaRecord(index, record.data()))
        return false;
    name = alphaName(record.data());
    if (keep && m_searchNames.size() < kMaxSearchNames)
        m_searchNames.emplace(index, name);
    return true;
}

CrdIOMorvane::Search CrdIOMorvane::searchAlphanumeric(const std::string &name) {
    Search result;
    if (m_count == 0)
        return result;
    std::string probe;
    if (!probeName(m_count - 1, true, probe))
        return {false, false, 0};
    int c = comparePointNames(name, probe);
    if (c >= 0)
        return {true, c == 0, c == 0 ? m_count - 1 : m_count};
    if (!probeName(0, true, probe))
        return {false, false, 0};
    c = comparePointNames(name, probe);
    if (c <= 0)
        return {true, c == 0, 0};
    long lower = 0, upper = m_count - 1;
    // Once the range is narrow, its records are read in one go and the
    // halving goes on in memory, visiting the same records.
    std::vector<unsigned char> &block = m_searchBlock;
    long blockStart = -1;
    while (upper - lower > 1) {
        const long middle = (lower + upper) / 2;
        if (upper - lower > kWideSearch) {
            if (!probeName(middle, true, probe))
                return {false, false, 0};
        } else {
            if (blockStart < 0) {
                blockStart = lower + 1;
                block.resize(static_cast<std::size_t>(upper - blockStart) * kAlphaRecordSize);
                if (!m_store->readExactly(alphaOffset(blockStart), block.data(), block.size()))
                    return {false, false, 0};
            }
            probe = alphaName(block.data() +
                              static_cast<std::size_t>(middle - blockStart) * kAlphaRecordSize);
        }
        c = comparePointNames(name, probe);
        if (c == 0)
            return {true, true, middle};
        if (c > 0)
            lower = middle;
        else
            upper = middle;
    }
    return {true, false, upper};
}

bool CrdIOMorvane::readAlphanumeric(std::string_view name, CrdPoint &point, int direction) {
    const Search search = searchAlphanumeric(normaliseAlphanumericName(name));
    if (!search.ok)
        return fail(kReadWriteFailed);
    if (search.found)
        return readByIndex(search.index, point, 0);
    // Not there: the neighbour in the wanted direction, if any.
    if (direction == 1 && search.index < m_count)
        return readByIndex(search.index, point, 0);
    if (direction == -1 && search.index > 0)
        return readByIndex(search.index - 1, point, 0);
    return fail(kPointNotFound);
}

bool CrdIOMorvane::writeAlphanumeric(const CrdPoint &point, bool quiet, CrdPoint *previous) {
    const std::string name = normaliseAlphanumericName(point.name);
    const int nameError = checkAlphanumericName(name);
    if (nameError == kNameBlank)
        say(quiet, tr("\nInvalid point number: empty string."));
    if (nameError != kNoError)
        return fail(nameError);
    std::string_view description = fileDescription(point.description);
    if (description.size() > kMaxDescription) {
        say(quiet, tr("\nWarning: Truncating description that contains too many characters."));
        description = cutAtCharacter(description, kMaxDescription);
    }
    AlphaRecord record{};
    putDouble(record.data() + kNorthing, point.northing);
    putDouble(record.data() + kEasting, point.easting);
    putDouble(record.data() + kElevation, storedElevation(point.elevation));
    putText(record.data() + kDescription, kTextField, description);
    putText(record.data() + kName, kNameField, name);

    const Search search = searchAlphanumeric(name);
    if (!search.ok)
        return fail(kReadWriteFailed);
    if (search.found) {
        AlphaRecord old{};
        if (previous && readAlphaRecord(search.index, old.data())) {
            fillPoint(old.data(), *previous);
            previous->name = alphaName(old.data());
        }
        if (!m_store->writeAt(alphaOffset(search.index), record.data(), record.size()))
            return fail(kReadWriteFailed);
        return true;
    }
    if (!insertAlphaRecord(search.index, record.data()))
        return false;
    if (search.index == m_count - 1)
        m_highest = name;
    if (search.index == 0)
        m_lowest = name;
    return true;
}

// Grows the file by `bytes` of zeros at `end` before anything inside it is
// overwritten; on failure the file is cut back to its old size.
bool CrdIOMorvane::reserveTail(std::uint64_t end, std::uint64_t bytes, long long oldSize) {
    static const std::array<unsigned char, kMaxMoveRecords * kAlphaRecordSize> zeros{};
    while (bytes > 0) {
        const std::size_t n =
            static_cast<std::size_t>(std::min<std::uint64_t>(bytes, zeros.size()));
        if (!m_store->writeAt(end, zeros.data(), n)) {
            m_store->resize(static_cast<std::uint64_t>(oldSize));
            return fail(kReadWriteFailed);
        }
        end += n;
        bytes -= n;
    }
    return true;
}

bool CrdIOMorvane::insertAlphaRecord(long index, const unsigned char *record) {
    m_searchNames.clear(); // records after `index` move
    m_orderedCount = 0;
    const long long oldSize = m_store->size();
    if (oldSize < 0)
        return fail(kReadWriteFailed);
    const std::uint64_t end = alphaOffset(m_count);
    if (index >= m_count) {
        if (!m_store->writeAt(end, record, kAlphaRecordSize)) {
            m_store->resize(static_cast<std::uint64_t>(oldSize));
            return fail(kReadWriteFailed);
        }
        ++m_count;
        return true;
    }
    std::vector<unsigned char> buffer;
    long records = std::clamp(m_moveBufferRecords, 1L, kMaxMoveRecords);
    while (records > 0) {
        try {
            buffer.resize(static_cast<std::size_t>(records) * kAlphaRecordSize);
            break;
        } catch (const std::bad_alloc &) {
            records /= 2;
        }
    }
    if (records == 0)
        return fail(kOutOfMemory);
    // From here until the journal goes, a failure or a kill leaves the
    // journal to put the old file back.
    if (!beginMove(alphaOffset(index)))
        return false;
    if (!reserveTail(end, kAlphaRecordSize, oldSize))
        return abandonMove();
    ++m_count;
    for (long high = m_count - 1; high > index;) {
        const long low = std::max(index, high - records);
        const std::size_t bytes = static_cast<std::size_t>(high - low) * kAlphaRecordSize;
        if (!m_store->readExactly(alphaOffset(low), buffer.data(), bytes) ||
            !m_store->writeAt(alphaOffset(low + 1), buffer.data(), bytes)) {
            m_error = kReadWriteFailed;
            return abandonMove();
        }
        high = low;
    }
    if (!m_store->writeAt(alphaOffset(index), record, kAlphaRecordSize)) {
        m_error = kReadWriteFailed;
        return abandonMove();
    }
    return finishMove();
}

} // namespace tramline::crd
