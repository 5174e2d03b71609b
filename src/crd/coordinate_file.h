// The coordinate file the program works on: reduction stores computed
// points through it, converters write imported points, the grid and the
// uploads read them. It holds at most one open CrdIO, the history file and
// the notes beside it.
//
//   CoordinateFile file(context);
//   if (!file.open("site.crd"))                 // existing, or a new one
//       report(file.errorText(file.lastError()));
//   CrdPoint p;
//   p.set(5000.0, 10000.0, 100.0, "12", "IP");  // easting, northing, elevation
//   file.writePoint(p);
//   for (file.setCurrentIndex(-1); file.readNext(p);) ...  // file order
//
// Every operation returns true on success; on failure lastError() holds a
// code of crd_errors.h and, unless told Verbosity::Quiet, the operation has
// printed its message lines through the context's Interaction.
//
// Usage from the command line: tramline-cli crd new|put|get|list|delete|info|history|
// rename|replace|print.
#pragma once

#include "crd/crd_errors.h"
#include "crd/crd_io.h"
#include "crd/file_kinds.h"
#include "crd/history_file.h"

#include <memory>
#include <optional>

namespace tramline::crd {

/// Whether open() makes a new file.
enum class Create {
    IfMissing, ///< an existing ".crd" file opens in its own layout
    Always     ///< a new empty file replaces any old one
};

class CoordinateFile {
public:
    explicit CoordinateFile(CrdContext context = {});
    ~CoordinateFile();
    CoordinateFile(const CoordinateFile &) = delete;
    CoordinateFile &operator=(const CoordinateFile &) = delete;

    /// Opens the file for update, holding the write lock until close().
    /// An existing ".crd" file opens in its own layout unless `create` is
    /// Always; otherwise a new file is made in `format` (kFormatUnknown:
    /// from the extension, ".crd" taking the default format). A file held by another writer is
    /// tried again after 1.5 s and 5 s; other kinds (".cgc", ".zak", ".mdb",
    /// ".dwg", ".crdb") are refused (error 54).
    bool open(const std::filesystem::path &path, Create create = Create::IfMissing,
              int format = kFormatUnknown);
    /// Opens an existing file for reading only, without the lock: it works
    /// while another program writes the file.
    bool openForReading(const std::filesystem::path &path);
    void close();
    bool isOpen() const { return m_io != nullptr; }

    /// Reads the named point, or a neighbour as `search` allows.
    bool readPoint(std::string_view name, CrdPoint &point, PointSearch search = PointSearch::Exact,
                   Verbosity verbosity = Verbosity::Messages);
    /// Stores the point, replacing one of the same name (whose old values
    /// go to `previous` when given; its name is empty for a new point).
    bool writePoint(const CrdPoint &point, Verbosity verbosity = Verbosity::Messages,
                    CrdPoint *previous = nullptr);
    /// Stores many points at once (for importers): the same file as
    /// writePoint() for each in turn, much faster in alphanumeric files.
    /// Returns the number stored; `errors` gets each point's error code.
    long writePoints(std::span<const CrdPoint> points, Verbosity verbosity = Verbosity::Messages,
                     std::vector<int> *errors = nullptr);
    /// The sequential walk: reads the stored point at `index` + `step` in
    /// file order and makes it current. False at the end (error 10).
    bool readByIndex(long index, CrdPoint &point, int step,
                     Verbosity verbosity = Verbosity::Messages);
    /// The walk from the current record: readByIndex(currentIndex(), ...).
    bool readNext(CrdPoint &point, int step = 1, Verbosity verbosity = Verbosity::Messages);
    long currentIndex() const;
    /// -1 starts a forward walk at the first record; recordCount() starts
    /// a backward one at the last.
    void setCurrentIndex(long index);
    /// Records after the header (slots, used or empty, in numeric files).
    long recordCount() const;

    std::string highestName() const;
    std::string lowestName() const;
    /// 0 numeric, 1 alphanumeric, -1 when no file is open.
    int format() const;
    int lastError() const { return m_error; }
    static std::string errorText(int code);
    /// Width of point names for display: 10 alphanumeric, 7 numeric.
    int nameWidth() const;
    std::filesystem::path path() const;
    CrdHeaderTexts headerTexts() const;
    bool setHeaderTexts(const CrdHeaderTexts &texts);

    /// Removes the points that `selected` picks: the others are copied to
    /// a fresh file (same format and header texts) that then takes the old
    /// one's place, and the removed points' notes go too. Returns the count
    /// removed, or -1 (nothing changed) when the fresh file cannot be made.
    long deletePoints(const std::function<bool(const CrdPoint &)> &selected,
                      std::vector<CrdPoint> *removed = nullptr);
    /// Makes everything written so far durable, so that the file can be
    /// copied while it stays open.
    bool flush();
    /// Rewrites the file afresh (dropping empty tails and damaged bits).
    bool rewrite();
    /// Copies the file (with its notes and history) to `target` and goes on
    /// with the copy.
    bool saveAs(const std::filesystem::path &target);
    /// Gives the file (with its notes and history) a new name; an existing
    /// file of that name is not replaced (error 26).
    bool rename(const std::filesystem::path &target);

    /// The default layout of new ".crd" files: 0, 1 or 4 (any other value
    /// means 1).
    void setDefaultFormat(int format) { m_defaultFormat = format; }
    int defaultFormat() const { return m_defaultFormat; }

    /// History keeping for the open file: when on, addHistory() appends to
    /// the ".his" file beside it.
    void setHistoryKeeping(bool on);
    bool historyKeeping() const { return m_historyKeeping; }
    /// The second text written with every history entry (a user name).
    void setHistorySecondText(std::string text);
    /// Appends the history entry of one change (see HistoryFile::append);
    /// does nothing while history keeping is off. `time` defaults to now.
    bool addHistory(const CrdPoint *before, const CrdPoint *after, int operation,
                    std::string_view text = {}, std::optional<std::time_t> time = {},
                    int mask = -1);
    std::filesystem::path historyPath() const { return historyPathFor(path()); }

    /// Notes attached to points, kept in the notes file beside this one.
    bool addNote(std::string_view name, std::string_view text);
    std::vector<std::string> notes(std::string_view name) const;
    std::filesystem::path notesPath() const { return notesPathFor(path()); }

private:
    bool fail(int code);
    void say(const std::string &text) const;
    bool probeWriteAccess(const std::filesystem::path &path);
    bool takeResult(bool ok);
    bool replaceWithFresh(const std::function<bool(const CrdPoint &)> &selected,
                          std::vector<CrdPoint> *removed, long &count);

    CrdContext m_context;
    std::unique_ptr<CrdIO> m_io;
    int m_error = 0;
    int m_defaultFormat = 1;
    bool m_historyKeeping = false;
    std::string m_historySecondText;
    HistoryFile m_history;
};

/// Every stored point in file order. False (with the points read before
/// it) when a damaged record stops the walk.
bool readAllPoints(CoordinateFile &file, std::vector<CrdPoint> &points);

/// The layout of a ".crd" file on disk: 0 numeric, 1 alphanumeric; -1
/// when it counts as not existing (cannot be opened, or empty); -2 for an
/// existing file that is not ".crd".
int detectCrdFormat(const std::filesystem::path &path);

} // namespace tramline::crd
