// Reading and writing ".crd" files in place. Two rules keep a user's
// points safe when something fails half-way:
// - a file only grows by writing beyond its old end first (filler records,
//   or zeros reserved for a moved tail), and a failed growth is cut back,
//   so a full disk never leaves old records overwritten;
// - a tail moves towards the end from its last record backwards, so at any
//   moment every record is in the file at least once.
#include "crd/crd_io_morvane.h"

#include "base/format.h"
#include "base/interaction.h"
#include "base/point_names.h"
#include "base/translation.h"
#include "base/unset.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"
#include "crd/point_name_rules.h"
#include "crd/record_layout.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <new>
#include <thread>

namespace tramline::crd {

using namespace layout;

namespace {

constexpr long kMaxMoveRecords = 1000; // the tail moves through at most 66,000 bytes
constexpr long kFillBatch = 10;        // empty records written at a time
constexpr long kWideSearch = 64;       // searches keep the names met above this span
constexpr std::size_t kMaxSearchNames = 4096;

using NumericRecord = std::array<unsigned char, kNumericRecordSize>;
using AlphaRecord = std::array<unsigned char, kAlphaRecordSize>;

std::uint64_t numericOffset(long record) {
    return static_cast<std::uint64_t>(record) * kNumericRecordSize;
}
std::uint64_t alphaOffset(long index) {
    return kAlphaHeaderSize + static_cast<std::uint64_t>(index) * kAlphaRecordSize;
}

std::string alphaName(const unsigned char *record) {
    return getText(record + kName, kNameField, kMaxAlphaName);
}

void fillPoint(const unsigned char *record, CrdPoint &point) {
    point.northing = getDouble(record + kNorthing);
    point.easting = getDouble(record + kEasting);
    point.elevation = getDouble(record + kElevation);
    point.description = getText(record + kDescription, kTextField, kMaxDescription);
    point.code.clear();
    point.locked = 0;
}

bool isEmptySlot(const unsigned char *record) {
    return getDouble(record + kNorthing) == 0.0 && getDouble(record + kEasting) == 0.0 &&
           getDouble(record + kElevation) == 0.0;
}

// The description as it reaches the file: up to an embedded NUL, which
// would end it there anyway.
std::string_view fileDescription(const std::string &description) {
    return std::string_view(description.c_str());
}

std::tm utcTime(std::time_t t) {
    std::tm tm{};
    gmtime_r(&t, &tm);
    return tm;
}

// "%4d.%2d%2d" with its blanks made zeros, read as a number: 2009.0415.
double numericDate(std::time_t t) {
    const std::tm tm = utcTime(t);
    std::string text = tramline::format("%4d.%2d%2d", tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday);
    std::replace(text.begin(), text.end(), ' ', '0');
    double value = 0.0;
    parseNumber(text, value);
    return value;
}

// "%2d/%2d/%4d" (month, day, year) with blanks at 0 and 3 made zeros.
std::string alphanumericDate(std::time_t t) {
    const std::tm tm = utcTime(t);
    std::string text = tramline::format("%2d/%2d/%4d", tm.tm_mon + 1, tm.tm_mday, tm.tm_year + 1900);
    if (text[0] == ' ')
        text[0] = '0';
    if (text.size() > 3 && text[3] == ' ')
        text[3] = '0';
    return text;
}

double parsedOrZero(const std::string &text) {
    double value = 0.0;
    return parseNumber(text, value) ? value : 0.0;
}

bool hasDot(const std::string &name) { return name.find('.') != std::string::npos; }

} // namespace

CrdIOMorvane::CrdIOMorvane(CrdContext context) : m_context(std::move(context)) {}

CrdIOMorvane::~CrdIOMorvane() = default;

bool CrdIOMorvane::fail(int code) {
    m_error = code;
    return false;
}

void CrdIOMorvane::say(bool quiet, const std::string &text) const {
    if (!quiet && m_context.messages)
        m_context.messages->message(text);
}

bool CrdIOMorvane::waitFor(int milliseconds) const {
    if (m_context.wait)
        return m_context.wait(milliseconds);
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + milliseconds * 1ms;
    while (steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::min<steady_clock::duration>(50ms, deadline - steady_clock::now()));
        if (m_context.messages && !m_context.messages->idle())
            return false;
    }
    return true;
}

std::time_t CrdIOMorvane::now() const {
    return m_context.clock ? m_context.clock() : std::time(nullptr);
}

long CrdIOMorvane::recordCount() const {
    if (!m_store)
        return 0;
    if (m_format == kFormatAlphanumeric)
        return m_count;
    const long long size = m_store->size();
    return size < static_cast<long long>(kNumericRecordSize)
               ? 0
               : static_cast<long>(size / static_cast<long long>(kNumericRecordSize) - 1);
}

// ---------------------------------------------------------------- opening

bool CrdIOMorvane::open(const std::filesystem::path &path, CrdAccess access) {
    close();
    m_error = kNoError;
    FileOpenResult result = FileOpenResult::Missing;
    std::unique_ptr<FileStore> file;
    if (access == CrdAccess::ReadOnly) {
        file = FileStore::openForReading(path, result);
    } else {
        // Another writer may be about to let go: wait a little, then longer.
        file = FileStore::openForUpdate(path, result);
        for (const int wait : {500, 2500}) {
            if (file || result != FileOpenResult::Locked || !waitFor(wait))
                break;
            file = FileStore::openForUpdate(path, result);
        }
    }
    if (!file) {
        say(false, tramline::format(tr("Failed to open coordinate file:\n  %s\nFile may be read-only or "
                             "already opened by another.\nRead-only files cannot be used. Use "
                             "Windows\nExplorer to make sure file is not read-only."),
                          path.string().c_str()));
        return fail(kCannotOpen);
    }
    if (file->size() == 0) {
        // An empty file counts as missing: it holds no header to go by.
        say(false, tramline::format(tr("Failed to open coordinate file:\n  %s\nFile may be read-only or "
                             "already opened by another.\nRead-only files cannot be used. Use "
                             "Windows\nExplorer to make sure file is not read-only."),
                          path.string().c_str()));
        return fail(kCannotOpen);
    }
    m_path = path;
    if (!attach(std::move(file), access)) {
        const int code = m_error;
        close();
        return fail(code);
    }
    return true;
}

bool CrdIOMorvane::openStore(std::unique_ptr<ByteStore> store, CrdAccess access) {
    close();
    m_error = kNoError;
    if (!attach(std::move(store), access)) {
        const int code = m_error;
        close();
        return fail(code);
    }
    return true;
}

void CrdIOMorvane::close() {
    m_store.reset();
    m_format = -1;
    m_highest.clear();
    m_lowest.clear();
    m_highestNumber = 0;
    m_count = 0;
    m_path.clear();
    m_header = {};
    m_current = -1;
    m_cacheValid = false;
    m_searchNames.clear();
}

bool CrdIOMorvane::attach(std::unique_ptr<ByteStore> store, CrdAccess access) {
    m_store = std::move(store);
    m_access = access;
    m_current = -1;
    m_cacheValid = false;
    m_searchNames.clear();
    std::array<unsigned char, kAlphaHeaderSize> header{};
    const long long got = m_store->readAt(0, header.data(), header.size());
    const long long size = m_store->size();
    if (got < 0 || size < 0)
        return fail(kReadWriteFailed);
    if (got == static_cast<long long>(kAlphaHeaderSize) && hasAlphaMark(header.data()))
        return attachAlphanumeric(header.data(), size);
    if (got < static_cast<long long>(kNumericRecordSize))
        return fail(kReadWriteFailed); // too short for any header
    return attachNumeric(header.data(), size);
}

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
    // compare inconsistently, so then the insertion is done as it is said.
    std::vector<long> order;
    order.reserve(static_cast<std::size_t>(count));
    if (consistent) {
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
                    records.data() +
                        static_cast<std::size_t>(order[static_cast<std::size_t>(i)]) * kAlphaRecordSize,
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
    if (!m_store->writeAt(kAlphaHeaderSize, sorted.data(), sorted.size()) ||
        !m_store->writeAt(kAlphaMark, mark.data(), mark.size()))
        return fail(kReadWriteFailed);
    return true;
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

bool CrdIOMorvane::create(const std::filesystem::path &path, int format) {
    close();
    m_error = kNoError;
    if (!isHandledFormat(format))
        return fail(kInternalError);
    std::error_code ec;
    std::filesystem::remove(path, ec);
    std::filesystem::remove(notesPathFor(path), ec);
    std::unique_ptr<FileStore> file = FileStore::create(path);
    bool written = false;
    if (file) {
        const std::time_t t = now();
        if (format == kFormatNumeric) {
            NumericRecord header{};
            putDouble(header.data() + kNumHighest, 0.0);
            putDouble(header.data() + kNumNumber, 0.0);
            putDouble(header.data() + kNumDate, numericDate(t));
            written = file->writeAt(0, header.data(), header.size());
        } else {
            std::array<unsigned char, kAlphaHeaderSize> header{};
            putDouble(header.data() + kAlphaNumber, 0.0);
            putText(header.data() + kAlphaDate, kTextField, alphanumericDate(t));
            putText(header.data() + kAlphaMark, kTextField, kMarkSorted);
            written = file->writeAt(0, header.data(), header.size());
        }
        if (!written)
            std::filesystem::remove(path, ec);
    }
    if (!written) {
        say(false, tramline::format(tr("\nCan't open new file %s"), path.string().c_str()));
        return fail(kCannotCreate);
    }
    file.reset();
    return open(path, CrdAccess::Update);
}

// ---------------------------------------------------------------- header

bool CrdIOMorvane::setHeaderTexts(const CrdHeaderTexts &texts) {
    m_error = kNoError;
    if (!m_store)
        return fail(kNotOpen);
    if (m_access == CrdAccess::ReadOnly)
        return fail(kReadWriteFailed);
    if (m_format == kFormatNumeric) {
        NumericRecord header{};
        if (!m_store->readExactly(0, header.data(), header.size()))
            return fail(kReadWriteFailed);
        putDouble(header.data() + kNumNumber, parsedOrZero(texts.number));
        putDouble(header.data() + kNumDate, parsedOrZero(texts.date));
        putText(header.data() + kNumTitle, kTextField, texts.title);
        if (!m_store->writeAt(0, header.data(), header.size()))
            return fail(kReadWriteFailed);
        m_header.number = tramline::format("%.3f", getDouble(header.data() + kNumNumber));
        m_header.date = tramline::format("%4.4f", getDouble(header.data() + kNumDate));
        m_header.title = getText(header.data() + kNumTitle, kTextField, kTextField - 1);
        return true;
    }
    std::array<unsigned char, kAlphaHeaderSize> header{};
    if (!m_store->readExactly(0, header.data(), header.size()))
        return fail(kReadWriteFailed);
    putDouble(header.data() + kAlphaNumber, parsedOrZero(texts.number));
    putText(header.data() + kAlphaDate, kTextField, texts.date);
    putText(header.data() + kAlphaTitle, kTextField, texts.title);
    if (!m_store->writeAt(0, header.data(), header.size()))
        return fail(kReadWriteFailed);
    m_header.number = tramline::format("%.3f", getDouble(header.data() + kAlphaNumber));
    m_header.date = getText(header.data() + kAlphaDate, kTextField, kTextField - 1);
    m_header.title = getText(header.data() + kAlphaTitle, kTextField, kTextField - 1);
    return true;
}

// ---------------------------------------------------------------- reading

void CrdIOMorvane::setCache(long index, const CrdPoint &point) {
    m_current = index;
    m_cached = point;
    m_cachedIndex = index;
    m_cacheValid = true;
}

bool CrdIOMorvane::readPoint(std::string_view name, CrdPoint &point, int direction, bool quiet) {
    m_error = kNoError;
    if (!m_store)
        return fail(kNotOpen);
    if (m_format == kFormatAlphanumeric)
        return readAlphanumeric(name, point, direction);
    return readNumeric(leadingPointNumber(name), point, direction, quiet);
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
            probe = alphaName(block.data() + static_cast<std::size_t>(middle - blockStart) * kAlphaRecordSize);
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

bool CrdIOMorvane::readByIndex(long index, CrdPoint &point, int step) {
    m_error = kNoError;
    if (!m_store)
        return fail(kNotOpen);
    long next = index + step;
    if (m_cacheValid && next == m_cachedIndex) {
        point = m_cached;
        m_current = next;
        return true;
    }
    if (m_format == kFormatAlphanumeric) {
        if (next < 0 || next >= m_count)
            return fail(kPointNotFound);
        AlphaRecord record{};
        if (!readAlphaRecord(next, record.data()))
            return fail(kReadWriteFailed);
        fillPoint(record.data(), point);
        point.name = alphaName(record.data());
        setCache(next, point);
        return true;
    }
    // Numeric: record index + 1 is point index + 1; empty slots are passed
    // over in the direction of the step, the end of the file ends the walk.
    NumericRecord record{};
    while (true) {
        if (next < 0)
            return fail(kPointNotFound);
        const long long got = m_store->readAt(numericOffset(next + 1), record.data(), record.size());
        if (got == 0)
            return fail(kPointNotFound);
        if (got != static_cast<long long>(record.size()))
            return fail(kReadWriteFailed); // an error, or a record cut short
        if (!isEmptySlot(record.data()))
            break;
        if (step == 0)
            return fail(kPointNotFound);
        next += step;
    }
    fillPoint(record.data(), point);
    if (point.northing == 0.0 && point.easting == 0.0 && point.elevation == kZeroPointElevation)
        point.elevation = 0.0;
    point.name = tramline::format("%ld", next + 1);
    setCache(next, point);
    return true;
}

// ---------------------------------------------------------------- writing

bool CrdIOMorvane::writePoint(const CrdPoint &point, bool quiet, CrdPoint *previous) {
    m_error = kNoError;
    if (previous)
        previous->clear();
    if (!m_store)
        return fail(kNotOpen);
    if (m_access == CrdAccess::ReadOnly)
        return fail(kReadWriteFailed);
    m_cacheValid = false;
    if (m_format == kFormatAlphanumeric)
        return writeAlphanumeric(point, quiet, previous);
    return writeNumeric(point, quiet, previous);
}

bool CrdIOMorvane::writeNumeric(const CrdPoint &point, bool quiet, CrdPoint *previous) {
    long number = 0;
    const int nameError = parseNumericName(point.name, number);
    if (nameError == kNameNotNumeric)
        say(quiet, tramline::format(tr("\nError: pt# %s invalid for current CRD format of numeric only "
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
    double elevation = isUnset(point.elevation) ? 0.0 : point.elevation;
    if (point.northing == 0.0 && point.easting == 0.0 && elevation == 0.0)
        elevation = kZeroPointElevation;
    std::string_view description = fileDescription(point.description);
    if (description.size() > kMaxDescription) {
        say(quiet, tr("\nWarning: Truncating description that contains too many characters."));
        description = description.substr(0, kMaxDescription);
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
        description = description.substr(0, kMaxDescription);
    }
    AlphaRecord record{};
    putDouble(record.data() + kNorthing, point.northing);
    putDouble(record.data() + kEasting, point.easting);
    putDouble(record.data() + kElevation, isUnset(point.elevation) ? 0.0 : point.elevation);
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
        const std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, zeros.size()));
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
    if (!reserveTail(end, kAlphaRecordSize, oldSize))
        return false;
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
    if (records == 0) {
        m_store->resize(static_cast<std::uint64_t>(oldSize));
        return fail(kOutOfMemory);
    }
    // The file now holds one more record; whatever happens below, each
    // record stays in it at least once.
    ++m_count;
    for (long high = m_count - 1; high > index;) {
        const long low = std::max(index, high - records);
        const std::size_t bytes = static_cast<std::size_t>(high - low) * kAlphaRecordSize;
        if (!m_store->readExactly(alphaOffset(low), buffer.data(), bytes) ||
            !m_store->writeAt(alphaOffset(low + 1), buffer.data(), bytes))
            return fail(kReadWriteFailed);
        high = low;
    }
    if (!m_store->writeAt(alphaOffset(index), record, kAlphaRecordSize))
        return fail(kReadWriteFailed);
    return true;
}

long CrdIOMorvane::writePoints(std::span<const CrdPoint> points, bool quiet,
                               std::vector<int> *errors) {
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
            if (writePoint(points[i], quiet, nullptr))
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
    std::vector<std::string> lines(points.size()); // message lines, printed in order
    bool consistent = true;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CrdPoint &point = points[i];
        std::string name = normaliseAlphanumericName(point.name);
        errors[i] = checkAlphanumericName(name);
        if (errors[i] == kNameBlank)
            lines[i] = tr("\nInvalid point number: empty string.");
        if (errors[i] != kNoError)
            continue;
        std::string_view description = fileDescription(point.description);
        if (description.size() > kMaxDescription) {
            lines[i] = tr("\nWarning: Truncating description that contains too many characters.");
            description = description.substr(0, kMaxDescription);
        }
        Item item{std::move(name), {}};
        putDouble(item.record.data() + kNorthing, point.northing);
        putDouble(item.record.data() + kEasting, point.easting);
        putDouble(item.record.data() + kElevation, isUnset(point.elevation) ? 0.0 : point.elevation);
        putText(item.record.data() + kDescription, kTextField, description);
        putText(item.record.data() + kName, kNameField, item.name);
        consistent = consistent && !hasDot(item.name);
        items.push_back(std::move(item));
    }

    auto byName = [](const Item &a, const Item &b) { return comparePointNames(a.name, b.name) < 0; };
    std::stable_sort(items.begin(), items.end(), byName);
    // Of equal names the last one given wins, as it would overwrite the others.
    std::vector<Item> unique;
    unique.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        if (i + 1 == items.size() || comparePointNames(items[i].name, items[i + 1].name) != 0)
            unique.push_back(std::move(items[i]));

    // One pass over the file: is it strictly in order, and which names exist?
    long matches = 0;
    std::vector<unsigned char> chunk(kMaxMoveRecords * kAlphaRecordSize);
    std::string previous;
    std::size_t cursor = 0;
    for (long start = 0; consistent && start < m_count; start += kMaxMoveRecords) {
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
            std::string name = alphaName(chunk.data() + static_cast<std::size_t>(i) * kAlphaRecordSize);
            consistent = !hasDot(name) && (start + i == 0 || comparePointNames(previous, name) < 0);
            while (cursor < unique.size() && comparePointNames(unique[cursor].name, name) < 0)
                ++cursor;
            if (cursor < unique.size() && comparePointNames(unique[cursor].name, name) == 0) {
                ++matches;
                ++cursor;
            }
            previous = std::move(name);
        }
    }
    if (!consistent) {
        long written = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (writePoint(points[i], quiet, nullptr))
                ++written;
            errors[i] = m_error;
        }
        return written;
    }
    for (const std::string &line : lines)
        if (!line.empty())
            say(quiet, line);
    if (unique.empty())
        return 0;

    const long long oldSize = m_store->size();
    const long inserts = static_cast<long>(unique.size()) - matches;
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
    if (!reserveTail(alphaOffset(m_count), static_cast<std::uint64_t>(inserts) * kAlphaRecordSize,
                     oldSize))
        return failAll();

    // Merge from the end. The next output slot is always above the next old
    // record still to be merged, so no record is overwritten before it has
    // been read.
    std::vector<unsigned char> in(kMaxMoveRecords * kAlphaRecordSize);
    std::vector<unsigned char> out(kMaxMoveRecords * kAlphaRecordSize);
    long old = m_count - 1;      // next old record to merge
    long inLow = m_count;        // old records [inLow, inLow + inFill) are in `in`
    long k = static_cast<long>(unique.size()) - 1;
    long outTop = finalCount - 1; // slot of the last record in `out`
    long outFill = 0;
    bool ok = true;
    auto flush = [&] {
        if (outFill == 0)
            return;
        const long low = outTop - outFill + 1;
        ok = ok && m_store->writeAt(alphaOffset(low),
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
            old >= 0 ? in.data() + static_cast<std::size_t>(old - inLow) * kAlphaRecordSize : nullptr;
        const int c = oldRecord ? comparePointNames(unique[static_cast<std::size_t>(k)].name,
                                                    alphaName(oldRecord))
                                : 1;
        const unsigned char *source = nullptr;
        if (c >= 0) {
            source = unique[static_cast<std::size_t>(k)].record.data();
            --k;
            if (c == 0)
                --old;
        } else {
            source = oldRecord;
            --old;
        }
        std::memcpy(out.data() + static_cast<std::size_t>(kMaxMoveRecords - 1 - outFill) * kAlphaRecordSize,
                    source, kAlphaRecordSize);
        if (++outFill == kMaxMoveRecords)
            flush();
    }
    flush();
    m_count = finalCount;
    m_searchNames.clear();
    if (!ok || !loadEnds())
        return failAll();
    return static_cast<long>(points.size()) -
           static_cast<long>(std::count_if(errors.begin(), errors.end(), [](int e) { return e != 0; }));
}

// ---------------------------------------------------------------- side files

std::filesystem::path notesPathFor(const std::filesystem::path &path) {
    const std::string name = path.filename().string();
    // A leading '.' (a hidden file) is part of the name, not its extension.
    const std::size_t dot = name.find('.', name.empty() ? 0 : 1);
    return path.parent_path() / (name.substr(0, dot) + ".not");
}

std::filesystem::path historyPathFor(const std::filesystem::path &path) {
    std::filesystem::path his = path;
    his.replace_extension(".his");
    return his;
}

} // namespace tramline::crd
