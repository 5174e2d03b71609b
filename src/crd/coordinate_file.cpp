#include "crd/coordinate_file.h"

#include "base/atomic_save.h"
#include "base/format.h"
#include "base/interaction.h"
#include "base/point_names.h"
#include "base/text.h"
#include "base/translation.h"
#include "crd/byte_store.h"
#include "crd/crd_errors.h"
#include "crd/crd_io_morvane.h"
#include "crd/file_kinds.h"
#include "crd/notes_file.h"
#include "crd/record_layout.h"

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

namespace tramline::crd {

namespace {

const char *const kCouldNotOpen = trNoop(
    "\nError 1: Could not open file: %s\nIt might be read-only, in use by another application\n"
    "or locked in error by program. If locked, restart program.");

bool isCrdExtension(const std::filesystem::path &path) {
    return equalsIgnoreCase(path.extension().string(), ".crd");
}

// A name beside `path` for a file that replaces it. Its base differs from
// the file's, so that making it never touches the file's own notes.
std::filesystem::path freshPathBeside(const std::filesystem::path &path) {
    static std::mt19937 random{std::random_device{}()};
    const std::string name = path.filename().string();
    const std::string base = name.substr(0, name.find('.', name.empty() ? 0 : 1));
    std::error_code ec;
    for (;;) {
        const auto candidate =
            path.parent_path() / tramline::format("%s~%06x.tmp", base.c_str(),
                                                  static_cast<unsigned>(random() & 0xffffffu));
        if (!std::filesystem::exists(candidate, ec))
            return candidate;
    }
}

// Moves a side file along with its coordinate file, where it exists.
void carrySideFile(const std::filesystem::path &from, const std::filesystem::path &to,
                   bool keepOld) {
    std::error_code ec;
    if (from == to || !std::filesystem::exists(from, ec))
        return;
    if (keepOld) {
        copyAtomically(from, to);
        return;
    }
    std::filesystem::rename(from, to, ec);
    if (ec && copyAtomically(from, to))
        std::filesystem::remove(from, ec);
}

// Fresh files that a killed delete or rewrite left beside `path`. A live
// one is locked by the process making it; one nobody holds is debris.
void removeAbandonedFreshFiles(const std::filesystem::path &linkOrFile) {
    std::error_code ec;
    const std::filesystem::path canonical = std::filesystem::canonical(linkOrFile, ec);
    const std::filesystem::path &path = ec ? linkOrFile : canonical;
    const std::string name = path.filename().string();
    const std::string prefix = name.substr(0, name.find('.', name.empty() ? 0 : 1)) + "~";
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    for (const auto &entry : std::filesystem::directory_iterator(folder, ec)) {
        const std::string other = entry.path().filename().string();
        if (other.size() != prefix.size() + 10 || !other.starts_with(prefix) ||
            !other.ends_with(".tmp"))
            continue;
        if (FileStore::probeForUpdate(entry.path()) == FileOpenResult::Opened)
            std::filesystem::remove(entry.path(), ec);
    }
}

} // namespace

int detectCrdFormat(const std::filesystem::path &path) {
    FileOpenResult result = FileOpenResult::Missing;
    std::unique_ptr<FileStore> file = FileStore::openForReading(path, result);
    if (!file || file->size() <= 0)
        return -1;
    if (!isCrdExtension(path))
        return -2;
    unsigned char header[layout::kAlphaHeaderSize] = {};
    if (file->readExactly(0, header, sizeof header) && layout::hasAlphaMark(header))
        return kFormatAlphanumeric;
    return kFormatNumeric;
}

CoordinateFile::CoordinateFile(CrdContext context)
    : m_context(std::move(context)), m_history(m_context.messages) {}

CoordinateFile::~CoordinateFile() {
    close();
}

bool CoordinateFile::fail(int code) {
    m_error = code;
    return false;
}

bool CoordinateFile::takeResult(bool ok) {
    m_error = m_io->lastError();
    return ok;
}

void CoordinateFile::say(const std::string &text) const {
    if (m_context.messages)
        m_context.messages->message(text);
}

bool CrdContext::waitFor(int milliseconds) const {
    if (wait)
        return wait(milliseconds);
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + milliseconds * 1ms;
    while (steady_clock::now() < deadline) {
        std::this_thread::sleep_for(
            std::min<steady_clock::duration>(50ms, deadline - steady_clock::now()));
        if (messages && !messages->idle())
            return false;
    }
    return true;
}

std::string CoordinateFile::errorText(int code) {
    return crd::errorText(code);
}

// Can a writer get at the file? A file held by another writer is tried
// again after 1.5 s and 5 s; a file that refuses writing fails at once.
bool CoordinateFile::probeWriteAccess(const std::filesystem::path &path) {
    FileOpenResult result = FileStore::probeForUpdate(path);
    const struct {
        const char *message;
        int milliseconds;
    } retries[] = {{trNoop("\nWaiting 1.5 seconds to obtain file lock..."), 1500},
                   {trNoop("\nWaiting 5 seconds to obtain file lock..."), 5000}};
    for (const auto &retry : retries) {
        if (result != FileOpenResult::Locked)
            break;
        say(tr(retry.message));
        if (!m_context.waitFor(retry.milliseconds))
            break;
        result = FileStore::probeForUpdate(path);
    }
    if (result == FileOpenResult::Opened)
        return true;
    say(tramline::format(tr(kCouldNotOpen), path.string().c_str()));
    return fail(kCannotOpen);
}

bool CoordinateFile::open(const std::filesystem::path &path, Create create, int format) {
    close();
    m_error = kNoError;
    std::error_code ec;
    if (std::filesystem::exists(path, ec) && !probeWriteAccess(path))
        return false;

    const int detected = detectCrdFormat(path);
    if (detected == -2 && create == Create::IfMissing)
        return fail(kFileTypeNotSupported); // another kind of file: refused quietly
    const bool createNew = create == Create::Always || detected < 0;
    const int chosen = !createNew    ? detected
                       : format >= 0 ? format
                                     : formatFromExtension(path, m_defaultFormat);
    if (!isHandledFormat(chosen))
        return fail(kFileTypeNotSupported);

    auto io = std::make_unique<CrdIOMorvane>(m_context);
    const bool ok = !createNew                 ? io->open(path, CrdAccess::Update)
                    : create == Create::Always ? io->create(path, chosen)
                                               : io->createIfMissing(path, chosen);
    if (!ok) {
        const int code = io->lastError();
        say(tramline::format(tr("\nError %d: Could not open file: %s\n%s\nIt might be read-only "
                                "or in use by another application or be invalid."),
                             code, path.string().c_str(), crd::errorText(code).c_str()));
        return fail(code);
    }
    m_io = std::move(io);
    removeAbandonedFreshFiles(path);
    return true;
}

bool CoordinateFile::openForReading(const std::filesystem::path &path) {
    close();
    m_error = kNoError;
    const int detected = detectCrdFormat(path);
    if (detected == -2)
        return fail(kFileTypeNotSupported);
    auto io = std::make_unique<CrdIOMorvane>(m_context);
    if (!io->open(path, CrdAccess::ReadOnly)) {
        const int code = io->lastError();
        say(tramline::format(
            tr("\nError %d: Could not open file: %s\n%s\nIt might be read-only or in use by "
               "another application or be invalid."),
            code, path.string().c_str(), crd::errorText(code).c_str()));
        return fail(code);
    }
    m_io = std::move(io);
    return true;
}

void CoordinateFile::close() {
    m_history.close();
    if (m_io)
        m_io->close();
    m_io.reset();
}

bool CoordinateFile::readPoint(std::string_view name, CrdPoint &point, PointSearch search,
                               Verbosity verbosity) {
    const bool quiet = verbosity == Verbosity::Quiet;
    m_error = kNoError;
    if (!m_io) {
        if (!quiet)
            say(tr("\nError3: crd file not open"));
        return fail(kNotOpen);
    }
    const bool ok = takeResult(m_io->readPoint(name, point, search, verbosity));
    if (!ok && m_error == kPointNotFound && !quiet)
        say(tramline::format(tr("\nRequested point# %s has no coordinate stored."),
                             std::string(name).c_str()));
    return ok;
}

bool CoordinateFile::writePoint(const CrdPoint &point, Verbosity verbosity, CrdPoint *previous) {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    return takeResult(m_io->writePoint(point, verbosity, previous));
}

long CoordinateFile::writePoints(std::span<const CrdPoint> points, Verbosity verbosity,
                                 std::vector<int> *errors) {
    m_error = kNoError;
    if (!m_io) {
        if (errors)
            errors->assign(points.size(), kNotOpen);
        fail(kNotOpen);
        return 0;
    }
    const long written = m_io->writePoints(points, verbosity, errors);
    m_error = m_io->lastError();
    return written;
}

bool CoordinateFile::readByIndex(long index, CrdPoint &point, int step, Verbosity verbosity) {
    m_error = kNoError;
    if (!m_io) {
        if (verbosity == Verbosity::Messages)
            say(tr("\nError1: crd file not open"));
        return fail(kNotOpen);
    }
    return takeResult(m_io->readByIndex(index, point, step));
}

bool CoordinateFile::readNext(CrdPoint &point, int step, Verbosity verbosity) {
    return readByIndex(currentIndex(), point, step, verbosity);
}

bool readAllPoints(CoordinateFile &file, std::vector<CrdPoint> &points) {
    points.clear();
    CrdPoint p;
    for (file.setCurrentIndex(-1); file.readNext(p, 1, Verbosity::Quiet);)
        points.push_back(p);
    return file.lastError() == kPointNotFound;
}

long CoordinateFile::currentIndex() const {
    return m_io ? m_io->currentIndex() : -1;
}

void CoordinateFile::setCurrentIndex(long index) {
    if (m_io)
        m_io->setCurrentIndex(index);
}

long CoordinateFile::recordCount() const {
    return m_io ? m_io->recordCount() : 0;
}

std::string CoordinateFile::highestName() const {
    return m_io ? m_io->highestName() : std::string();
}
std::string CoordinateFile::lowestName() const {
    return m_io ? m_io->lowestName() : std::string();
}
int CoordinateFile::format() const {
    return m_io ? m_io->format() : -1;
}
int CoordinateFile::nameWidth() const {
    return m_io ? m_io->nameWidth() : 0;
}
std::filesystem::path CoordinateFile::path() const {
    return m_io ? m_io->path() : std::filesystem::path();
}
CrdHeaderTexts CoordinateFile::headerTexts() const {
    return m_io ? m_io->headerTexts() : CrdHeaderTexts{};
}

bool CoordinateFile::setHeaderTexts(const CrdHeaderTexts &texts) {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    return takeResult(m_io->setHeaderTexts(texts));
}

// Copies the points that stay into a fresh file beside this one, locked
// from its creation, and puts it in this one's place by a rename: the old
// file stays whole until the fresh one is complete, and no other writer can
// get in between.
bool CoordinateFile::replaceWithFresh(const std::function<bool(const CrdPoint &)> &selected,
                                      std::vector<CrdPoint> *removed, long &count) {
    count = 0;
    // Through a link the fresh file replaces the file it names, not the link.
    std::error_code ec;
    std::filesystem::path path = std::filesystem::canonical(m_io->path(), ec);
    if (ec)
        path = m_io->path();
    const std::filesystem::path freshPath = freshPathBeside(path);
    auto fresh = std::make_unique<CrdIOMorvane>(m_context);
    if (!fresh->create(freshPath, m_io->format()))
        return fail(fresh->lastError());
    auto abandon = [&](int code) {
        fresh.reset();
        std::error_code ignored;
        std::filesystem::remove(freshPath, ignored);
        return fail(code);
    };
    if (!fresh->setHeaderTexts(m_io->headerTexts()))
        return abandon(fresh->lastError());
    const long current = m_io->currentIndex();
    CrdPoint point;
    for (long index = -1; m_io->readByIndex(index, point, 1); index = m_io->currentIndex()) {
        if (selected && selected(point)) {
            ++count;
            if (removed)
                removed->push_back(point);
        } else if (!fresh->writePoint(point, Verbosity::Quiet, nullptr)) {
            return abandon(fresh->lastError());
        }
    }
    if (m_io->lastError() != kPointNotFound)
        return abandon(m_io->lastError());
    std::filesystem::permissions(freshPath, std::filesystem::status(path, ec).permissions(), ec);
    if (!fresh->flush())
        return abandon(kReadWriteFailed);
    std::filesystem::rename(freshPath, path, ec);
    if (ec)
        return abandon(kReadWriteFailed);
    fresh->setPath(m_io->path());
    fresh->setCurrentIndex(current);
    m_io->close();
    m_io = std::move(fresh);
    return true;
}

long CoordinateFile::deletePoints(const std::function<bool(const CrdPoint &)> &selected,
                                  std::vector<CrdPoint> *removed) {
    m_error = kNoError;
    if (!m_io) {
        fail(kNotOpen);
        return -1;
    }
    std::vector<CrdPoint> gone;
    long count = 0;
    if (!replaceWithFresh(selected, &gone, count))
        return -1;
    if (!gone.empty())
        removeNotes(notesPath(), [&](std::string_view name) {
            for (const auto &point : gone)
                if (comparePointNames(point.name, name) == 0)
                    return true;
            return false;
        });
    if (removed)
        *removed = std::move(gone);
    return count;
}

bool CoordinateFile::flush() {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    return m_io->flush() || fail(kReadWriteFailed);
}

bool CoordinateFile::rewrite() {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    long count = 0;
    return replaceWithFresh(nullptr, nullptr, count);
}

bool CoordinateFile::saveAs(const std::filesystem::path &target) {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    const std::filesystem::path source = m_io->path();
    std::error_code ec;
    if (std::filesystem::equivalent(source, target, ec))
        return m_io->flush() || fail(kReadWriteFailed);
    // Never replace a file that another writer holds.
    if (std::filesystem::exists(target, ec) && !probeWriteAccess(target))
        return false;
    if (!m_io->flush() || !copyAtomically(source, target)) {
        say(tramline::format(tr("\nCan't open new file %s"), target.string().c_str()));
        return fail(kCannotCreate);
    }
    carrySideFile(notesPathFor(source), notesPathFor(target), true);
    carrySideFile(historyPathFor(source), historyPathFor(target), true);
    const bool keepHistory = m_historyKeeping;
    close();
    const bool ok = open(target);
    m_historyKeeping = keepHistory;
    return ok;
}

bool CoordinateFile::rename(const std::filesystem::path &target) {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    const std::filesystem::path source = m_io->path();
    std::error_code ec;
    if (std::filesystem::exists(target, ec))
        return fail(kRenameFailed);
    m_history.close();
    // A rename keeps the open file and its lock; across file systems the
    // file is copied under the new name and the old one removed.
    std::filesystem::rename(source, target, ec);
    if (!ec) {
        m_io->setPath(target);
    } else {
        if (!m_io->flush() || !copyAtomically(source, target))
            return fail(kRenameFailed);
        const bool keepHistory = m_historyKeeping;
        close();
        std::filesystem::remove(source, ec);
        if (!open(target))
            return false;
        m_historyKeeping = keepHistory;
    }
    carrySideFile(notesPathFor(source), notesPathFor(target), false);
    carrySideFile(historyPathFor(source), historyPathFor(target), false);
    return true;
}

void CoordinateFile::setHistoryKeeping(bool on) {
    m_historyKeeping = on;
    if (!on)
        m_history.close();
}

void CoordinateFile::setHistorySecondText(std::string text) {
    m_historySecondText = std::move(text);
    m_history.setSecondText(m_historySecondText);
}

bool CoordinateFile::addHistory(const CrdPoint *before, const CrdPoint *after, int operation,
                                std::string_view text, std::optional<std::time_t> time, int mask) {
    if (!m_historyKeeping)
        return true;
    if (!m_io)
        return fail(kNotOpen);
    if (!m_history.isOpen() && !m_history.openForAppend(historyPath()))
        return false;
    m_history.setSecondText(m_historySecondText);
    const std::time_t when =
        time ? *time : (m_context.clock ? m_context.clock() : std::time(nullptr));
    return m_history.append(before, after, operation, text, when, mask);
}

bool CoordinateFile::addNote(std::string_view name, std::string_view text) {
    m_error = kNoError;
    if (!m_io)
        return fail(kNotOpen);
    NotesFile notes;
    if (!notes.load(notesPath()))
        return fail(kReadWriteFailed);
    notes.add(name, text);
    return notes.save(notesPath()) || fail(kReadWriteFailed);
}

std::vector<std::string> CoordinateFile::notes(std::string_view name) const {
    NotesFile notes;
    if (!m_io || !notes.load(notesPath()))
        return {};
    return notes.notesFor(name);
}

} // namespace tramline::crd
