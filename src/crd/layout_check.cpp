#include "crd/layout_check.h"

#include "base/format.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "crd/file_kinds.h"
#include "crd/record_layout.h"

#include <array>

namespace tramline::crd {

using namespace layout;

namespace {
constexpr std::size_t kMaxProblemLines = 20;

void note(LayoutCheck &check, std::string line) {
    if (check.problems.size() < kMaxProblemLines)
        check.problems.push_back(std::move(line));
}
} // namespace

LayoutCheck checkLayout(ByteStore &store) {
    LayoutCheck check;
    const long long size = store.size();
    std::array<unsigned char, kAlphaHeaderSize> header{};
    const long long got = size < 0 ? -1 : store.readAt(0, header.data(), header.size());
    if (got == static_cast<long long>(kAlphaHeaderSize) && hasAlphaMark(header.data())) {
        check.format = kFormatAlphanumeric;
        check.firstRevision = isFirstRevisionMark(header.data());
        const long long body = size - static_cast<long long>(kAlphaHeaderSize);
        check.records = static_cast<long>(body / static_cast<long long>(kAlphaRecordSize));
        check.strayBytes = body % static_cast<long long>(kAlphaRecordSize);
    } else if (got >= static_cast<long long>(kNumericRecordSize)) {
        check.format = kFormatNumeric;
        check.records = static_cast<long>(size / static_cast<long long>(kNumericRecordSize) - 1);
        check.strayBytes = size % static_cast<long long>(kNumericRecordSize);
    } else {
        note(check, tr("the file is too short for a header"));
        return check;
    }
    if (check.strayBytes != 0)
        note(check, tramline::format(tr("the last record is cut short (%lld stray bytes)"),
                                     check.strayBytes));
    if (check.format != kFormatAlphanumeric || check.firstRevision)
        return check;

    std::vector<unsigned char> chunk(kMaxMoveRecords * kAlphaRecordSize);
    std::string previous;
    for (long start = 0; start < check.records; start += kMaxMoveRecords) {
        const long n = std::min(kMaxMoveRecords, check.records - start);
        if (!store.readExactly(alphaOffset(start), chunk.data(),
                               static_cast<std::size_t>(n) * kAlphaRecordSize)) {
            note(check, tr("the file cannot be read"));
            check.format = -1;
            return check;
        }
        for (long i = 0; i < n; ++i) {
            std::string name =
                alphaName(chunk.data() + static_cast<std::size_t>(i) * kAlphaRecordSize);
            const long index = start + i;
            // Names holding '.' may compare inconsistently: only their
            // exact repeats count against them.
            const bool comparable = !hasDot(name) && !hasDot(previous);
            const int c = index == 0   ? -1
                          : comparable ? comparePointNames(previous, name)
                                       : (previous == name ? 0 : -1);
            if (c == 0) {
                ++check.doubled;
                note(check, tramline::format(tr("record %ld: point %s is stored twice"), index + 1,
                                             name.c_str()));
            } else if (c > 0) {
                ++check.outOfOrder;
                note(check, tramline::format(tr("record %ld: point %s is out of order after %s"),
                                             index + 1, name.c_str(), previous.c_str()));
            }
            previous = std::move(name);
        }
    }
    return check;
}

} // namespace tramline::crd
