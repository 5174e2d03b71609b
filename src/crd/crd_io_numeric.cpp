// The numeric layout: point n is record n, so a read or a write is one
// seek; writing beyond the end fills the gap with empty records.
#include "crd/crd_io_morvane.h"

#include "base/format.h"
#include "base/text.h"
#include "base/translation.h"
#include "base/unset.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"
#include "crd/point_name_rules.h"
#include "crd/record_layout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace tramline::crd {

using namespace layout;

namespace {
constexpr long kFillBatch = 10; // empty records written at a time
}

bool CrdIOMorvane::attachNumeric(const unsigned char *header, long long size) {
    m_format = kFormatNumeric;
    // A header that claims more than the largest point number, or no number
    // at all, is damaged: the records in the file tell the truth then.
    const double highest = getDouble(header + kNumHighest);
    const long slots = static_cast<long>(size / static_cast<long long>(kNumericRecordSize) - 1);
    if (!std::isfinite(highest) || highest >= static_cast<double>(kNumericNameLimit))
        m_highestNumber = std::min(slots, kNumericNameLimit - 1);
    else
        m_highestNumber = highest < 1.0 ? 0 : static_cast<long>(highest);
    m_highest = tramline::format("%ld", std::max(m_highestNumber, 1L)); // "1" in an empty file
    m_lowest.assign(1, '1'); // (assigning the literal trips a false GCC 12 -Wrestrict)
    m_header.number = tramline::format("%.3f", getDouble(header + kNumNumber));
    m_header.date = tramline::format("%4.4f", getDouble(header + kNumDate));
    m_header.title = getText(header + kNumTitle, kTextField, kTextField - 1);
    return true;
}

bool CrdIOMorvane::readNumeric(long number, CrdPoint &point, int direction, bool quiet) {
    if (number > m_highestNumber) {
        if (direction != -1) {
            say(quiet, tr("\nRequested point number greater than highest in file."));
            return fail(kPointNotFound);
        }
        if (m_highestNumber < 1)
            return fail(kPointNotFound);
        number = m_highestNumber;
    } else if (number < 1) {
        if (direction != 1) {
            say(quiet, tr("\nPoint numbers must be >= 1"));
            return fail(kNameTooLow);
        }
        return readByIndex(-1, point, 1);
    }
    NumericRecord record{};
    if (!m_store->readExactly(numericOffset(number), record.data(), record.size())) {
        say(quiet, tr("\nCan't read point from numeric crd file.\n"));
        return fail(kReadWriteFailed);
    }
    if (isEmptySlot(record.data())) {
        if (direction == 0)
            return fail(kPointNotFound);
        return readByIndex(number - 1, point, direction);
    }
    fillPoint(record.data(), point);
    if (point.northing == 0.0 && point.easting == 0.0 && point.elevation == kZeroPointElevation)
        point.elevation = 0.0;
    point.name = tramline::format("%ld", number);
    setCache(number - 1, point);
    return true;
}

bool CrdIOMorvane::writeNumeric(const CrdPoint &point, bool quiet, CrdPoint *previous) {
    long number = 0;
    const int nameError = parseNumericName(point.name, number);
    if (nameError == kNameNotNumeric)
        say(quiet,
            tramline::format(tr("\nError: pt# %s invalid for current CRD format of numeric only "
                                "point numbers."),
                             point.name.c_str()));
    else if (nameError == kNameTooLow)
        say(quiet, tr("\nError: Point number must be greater than 0."));
    else if (nameError == kNameTooHigh)
        say(quiet, tramline::format(tr("\nError: Point number must be less than %d."),
                                    static_cast<int>(kNumericNameLimit)));
    if (nameError != kNoError)
        return fail(nameError);

    // A missing elevation is 0.0; a point at 0, 0, 0 gets the tiny elevation
    // that keeps it from reading as an empty slot. The missing elevation is
    // settled first, so that a point at the origin without one is kept too.
    double elevation = storedElevation(point.elevation);
    if (point.northing == 0.0 && point.easting == 0.0 && elevation == 0.0)
        elevation = kZeroPointElevation;
    std::string_view description = fileDescription(point.description);
    if (description.size() > kMaxDescription) {
        say(quiet, tr("\nWarning: Truncating description that contains too many characters."));
        description = cutAtCharacter(description, kMaxDescription);
    }
    NumericRecord record{};
    putDouble(record.data() + kNorthing, point.northing);
    putDouble(record.data() + kEasting, point.easting);
    putDouble(record.data() + kElevation, elevation);
    putText(record.data() + kDescription, kTextField, description);

    const long long size = m_store->size();
    if (size < 0)
        return fail(kReadWriteFailed);
    const long slots = static_cast<long>(size / static_cast<long long>(kNumericRecordSize) - 1);
    const long inUse = std::min(m_highestNumber, slots);
    if (previous && number <= inUse) {
        CrdPoint old;
        if (readNumeric(number, old, 0, true))
            *previous = old;
        m_error = kNoError;
        m_cacheValid = false;
    }
    if (number <= inUse) {
        if (!m_store->writeAt(numericOffset(number), record.data(), record.size()))
            return fail(kReadWriteFailed);
        return true;
    }

    // Beyond the highest: empty records fill the gap (the first one after
    // the old end is left to the file system, which reads back as zeros),
    // the point lands on the last of them, and the header learns the new
    // highest number last, once everything else is on disk.
    NumericRecord empty{};
    putText(empty.data() + kDescription, kTextField, " ");
    std::array<unsigned char, kFillBatch * kNumericRecordSize> batch{};
    for (long i = 0; i < kFillBatch; ++i)
        std::memcpy(batch.data() + i * kNumericRecordSize, empty.data(), kNumericRecordSize);
    bool ok = true;
    long first = inUse + 2;
    long left = number - inUse - 1;
    while (ok && left > 0) {
        const long n = std::min(left, kFillBatch);
        ok = m_store->writeAt(numericOffset(first), batch.data(),
                              static_cast<std::size_t>(n) * kNumericRecordSize);
        first += n;
        left -= n;
    }
    std::array<unsigned char, 8> highest{};
    putDouble(highest.data(), static_cast<double>(number));
    ok = ok && m_store->writeAt(numericOffset(number), record.data(), record.size()) &&
         m_store->writeAt(kNumHighest, highest.data(), highest.size());
    if (!ok) {
        m_store->resize(static_cast<std::uint64_t>(size));
        return fail(kReadWriteFailed);
    }
    m_highestNumber = number;
    m_highest = tramline::format("%ld", number);
    return true;
}

} // namespace tramline::crd
