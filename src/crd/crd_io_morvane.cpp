// Reading and writing ".crd" files in place: opening, creating, the header
// and the sequential walk here; the layouts' own rules in crd_io_numeric.cpp
// and crd_io_alphanumeric.cpp, the bulk write in crd_io_bulk_write.cpp.
//
// Two rules keep a user's points safe when something fails half-way:
// - a file only grows by writing beyond its old end first (filler records,
//   or zeros reserved for a moved tail), and a failed growth is cut back,
//   so a full disk never leaves old records overwritten;
// - records move only under a rollback journal (move_journal.h), so a
//   process killed in the middle leaves the old file, restored on the next
//   open.
#include "crd/crd_io_morvane.h"

#include "base/format.h"
#include "base/interaction.h"
#include "base/translation.h"
#include "crd/crd_errors.h"
#include "crd/file_kinds.h"
#include "crd/layout_check.h"
#include "crd/move_journal.h"
#include "crd/point_name_rules.h"
#include "crd/record_layout.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace tramline::crd {

using namespace layout;

namespace {

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
    std::string text =
        tramline::format("%2d/%2d/%4d", tm.tm_mon + 1, tm.tm_mday, tm.tm_year + 1900);
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
        // A reader undoes an interrupted update too, when no writer holds
        // the file; a live writer's journal is left to it.
        std::error_code ec;
        if (std::filesystem::exists(journalPathFor(path), ec)) {
            FileOpenResult held = FileOpenResult::Missing;
            if (auto writer = FileStore::openForUpdate(path, held))
                recoverMove(journalPathFor(path), *writer);
        }
        file = FileStore::openForReading(path, result);
    } else {
        // Another writer may be about to let go: wait a little, then longer.
        file = FileStore::openForUpdate(path, result);
        for (const int wait : {500, 2500}) {
            if (file || result != FileOpenResult::Locked || !m_context.waitFor(wait))
                break;
            file = FileStore::openForUpdate(path, result);
        }
    }
    // An update that died half-way is undone before anything reads the file.
    if (file && access == CrdAccess::Update &&
        recoverMove(journalPathFor(path), *file) == Recovery::Failed)
        file.reset();
    if (!file) {
        say(false,
            tramline::format(tr("Failed to open coordinate file:\n  %s\nFile may be read-only or "
                                "already opened by another.\nRead-only files cannot be used. Use "
                                "Windows\nExplorer to make sure file is not read-only."),
                             path.string().c_str()));
        return fail(kCannotOpen);
    }
    if (file->size() == 0) {
        // An empty file counts as missing: it holds no header to go by.
        say(false,
            tramline::format(tr("Failed to open coordinate file:\n  %s\nFile may be read-only or "
                                "already opened by another.\nRead-only files cannot be used. Use "
                                "Windows\nExplorer to make sure file is not read-only."),
                             path.string().c_str()));
        return fail(kCannotOpen);
    }
    if (access == CrdAccess::Update) {
        // Writing into a damaged file would make it worse: a torn record
        // would become a point, a lookup in a disordered file would miss.
        const LayoutCheck check = checkLayout(*file);
        if (check.format >= 0 && !check.whole()) {
            say(false, tramline::format(tr("\nThe coordinate file %s is damaged: %s.\nIt is not "
                                           "written to; \"crd check\" lists what is wrong and "
                                           "\"crd repair\" writes a clean copy."),
                                        path.string().c_str(), check.problems.front().c_str()));
            return fail(kDamagedFile);
        }
    }
    m_path = path;
    m_journal = journalPathFor(path);
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
    m_journal.clear();
    m_header = {};
    m_current = -1;
    m_cacheValid = false;
    m_searchNames.clear();
    m_orderedCount = 0;
}

bool CrdIOMorvane::attach(std::unique_ptr<ByteStore> store, CrdAccess access) {
    m_store = std::move(store);
    m_access = access;
    m_current = -1;
    m_cacheValid = false;
    m_searchNames.clear();
    m_orderedCount = 0;
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

// A new file is made whole (its header written and synced) under a
// temporary name beside it and only then given its name, so no other
// process ever sees it empty. Without `replace`, the name is taken only if
// it is still free (link fails on an existing file): of several writers
// creating the same file at once exactly one creates it and the others
// open it, under the lock, and add to it.
bool CrdIOMorvane::createWhole(const std::filesystem::path &path, int format, bool replace,
                               bool &created) {
    created = false;
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    std::string temporary = (folder / ("." + path.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return false;
    ::close(fd);
    std::error_code ec;
    std::filesystem::remove(temporary, ec);
    std::unique_ptr<FileStore> file = FileStore::create(temporary);
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
        const mode_t mask = ::umask(0);
        ::umask(mask);
        written = written && file->setPermissions(0666 & ~mask) && file->sync();
        file.reset();
    }
    if (written) {
        if (replace) {
            written = ::rename(temporary.c_str(), path.c_str()) == 0;
            created = written;
        } else if (::link(temporary.c_str(), path.c_str()) == 0) {
            created = true;
        } else {
            // Taken meanwhile: by a whole file (open it), or by an empty one,
            // which counts as missing and is replaced.
            written = errno == EEXIST;
            if (written && std::filesystem::file_size(path, ec) == 0 && !ec)
                created = written = ::rename(temporary.c_str(), path.c_str()) == 0;
        }
    }
    std::filesystem::remove(temporary, ec);
    return written;
}

bool CrdIOMorvane::create(const std::filesystem::path &path, int format) {
    return createFile(path, format, true);
}

bool CrdIOMorvane::createFile(const std::filesystem::path &path, int format, bool replace) {
    close();
    m_error = kNoError;
    if (!isHandledFormat(format))
        return fail(kInternalError);
    bool created = false;
    if (!createWhole(path, format, replace, created)) {
        say(false, tramline::format(tr("\nCan't open new file %s"), path.string().c_str()));
        return fail(kCannotCreate);
    }
    if (created) {
        std::error_code ec;
        std::filesystem::remove(notesPathFor(path), ec);
    }
    return open(path, CrdAccess::Update);
}

// ---------------------------------------------------------------- moves

bool CrdIOMorvane::beginMove(std::uint64_t from) {
    if (m_journal.empty() || crd::beginMove(m_journal, *m_store, from))
        return true;
    return fail(kReadWriteFailed);
}

bool CrdIOMorvane::finishMove() {
    if (m_journal.empty() || crd::finishMove(m_journal, *m_store))
        return true;
    return abandonMove();
}

// A move that failed half-way (a full disk, a read error) is undone at once
// from its journal; the counts are read again from what the file holds.
bool CrdIOMorvane::abandonMove() {
    const int code = m_error != kNoError ? m_error : kReadWriteFailed;
    if (!m_journal.empty())
        recoverMove(m_journal, *m_store);
    m_searchNames.clear();
    m_orderedCount = 0;
    m_cacheValid = false;
    const long long size = m_store->size();
    if (m_format == kFormatAlphanumeric && size >= static_cast<long long>(kAlphaHeaderSize)) {
        m_count = static_cast<long>((size - static_cast<long long>(kAlphaHeaderSize)) /
                                    static_cast<long long>(kAlphaRecordSize));
        loadEnds();
    }
    return fail(code);
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

bool CrdIOMorvane::readPoint(std::string_view name, CrdPoint &point, PointSearch search,
                             Verbosity verbosity) {
    const int direction = static_cast<int>(search);
    const bool quiet = verbosity == Verbosity::Quiet;
    m_error = kNoError;
    if (!m_store)
        return fail(kNotOpen);
    if (m_format == kFormatAlphanumeric)
        return readAlphanumeric(name, point, direction);
    return readNumeric(leadingPointNumber(name), point, direction, quiet);
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
        const long long got =
            m_store->readAt(numericOffset(next + 1), record.data(), record.size());
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

bool CrdIOMorvane::writePoint(const CrdPoint &point, Verbosity verbosity, CrdPoint *previous) {
    const bool quiet = verbosity == Verbosity::Quiet;
    m_error = kNoError;
    if (previous)
        previous->clear();
    if (!m_store)
        return fail(kNotOpen);
    if (m_access == CrdAccess::ReadOnly)
        return fail(kReadWriteFailed);
    m_cacheValid = false;
    if (!hasFiniteCoordinates(point))
        return fail(kNotANumber);
    if (m_format == kFormatAlphanumeric)
        return writeAlphanumeric(point, quiet, previous);
    return writeNumeric(point, quiet, previous);
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
