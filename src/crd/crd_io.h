// One open coordinate file, whatever its kind. `CrdIOMorvane` is the
// implementation for ".crd" files; `CoordinateFile` holds one of these and
// is what the rest of the program talks to.
//
// Every operation clears the error code first and sets it (see
// crd_errors.h) when it fails. Operations with a Verbosity print their own
// message lines through the context's Interaction unless told Quiet.
#pragma once

#include "crd/crd_point.h"

#include <ctime>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tramline {
class Interaction;
}

namespace tramline::crd {

/// What the store needs from the program around it.
struct CrdContext {
    /// Receives the store's message lines (and is asked to idle while the
    /// store waits for a lock). May be null: no messages.
    Interaction *messages = nullptr;
    /// The time for creation dates and history stamps; empty: the system
    /// clock.
    std::function<std::time_t()> clock;
    /// Waits this many milliseconds before a retry; false means the user
    /// cancelled. Empty: sleep, calling messages->idle() every 50 ms.
    std::function<bool(int milliseconds)> wait;
    /// Writes a missing elevation (98765432.1) as it is rather than as 0.0,
    /// for copies of points whose heights were never given.
    bool keepUnsetElevation = false;

    /// Waits before a retry as set above; false when the user cancelled.
    bool waitFor(int milliseconds) const;
};

/// Which point readPoint() wants when the named one is not stored.
enum class PointSearch : int {
    Exact = 0,      ///< that point or nothing
    OrNext = 1,     ///< that point or the next stored one after it
    OrPrevious = -1 ///< that point or the one before it
};

/// Whether an operation prints its own message lines.
enum class Verbosity {
    Messages, ///< through the context's Interaction
    Quiet     ///< only the error code is set
};

/// The three texts of a file's header.
struct CrdHeaderTexts {
    std::string title;
    std::string number; ///< the header number, as "%.3f"
    std::string date;   ///< numeric files "YYYY.MMDD", alphanumeric "MM/DD/YYYY"
};

enum class CrdAccess {
    Update,  ///< read and write, holding the write lock
    ReadOnly ///< read only, no lock: other writers may hold the file
};

class CrdIO {
public:
    virtual ~CrdIO() = default;

    virtual bool open(const std::filesystem::path &path, CrdAccess access) = 0;
    /// Creates a new empty file of `format` (removing any old one and its
    /// notes) and opens it for update.
    virtual bool create(const std::filesystem::path &path, int format) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    /// Makes everything written so far durable.
    virtual bool flush() = 0;

    /// Reads the named point, or a neighbour as `search` allows.
    virtual bool readPoint(std::string_view name, CrdPoint &point, PointSearch search,
                           Verbosity verbosity) = 0;
    /// Stores the point under its name, replacing a point of that name
    /// (whose old values go to `previous` when given; `previous` gets an
    /// empty name when the point is new).
    virtual bool writePoint(const CrdPoint &point, Verbosity verbosity, CrdPoint *previous) = 0;
    /// Stores many points, with the same file as a writePoint() of each in
    /// turn. Returns how many were stored; `errors` (when given) gets the
    /// error code of each point, 0 for those stored.
    virtual long writePoints(std::span<const CrdPoint> points, Verbosity verbosity,
                             std::vector<int> *errors) = 0;
    /// Sequential walk: reads the used record at index + step (skipping
    /// empty slots in the direction of the step) and makes it current.
    /// False at either end of the file (error 10) or on a read error (23).
    virtual bool readByIndex(long index, CrdPoint &point, int step) = 0;
    /// The index of the record last read, or -1.
    virtual long currentIndex() const = 0;
    virtual void setCurrentIndex(long index) = 0;
    /// Records after the header: slots (used or empty) in a numeric file,
    /// points in an alphanumeric one.
    virtual long recordCount() const = 0;

    virtual const std::string &highestName() const = 0;
    virtual const std::string &lowestName() const = 0;
    virtual int format() const = 0;
    virtual int lastError() const = 0;
    /// The width of point names for display: 10 alphanumeric, 7 numeric.
    virtual int nameWidth() const = 0;
    virtual const std::filesystem::path &path() const = 0;
    /// Tells the store that its file now lives under another name (after
    /// a rename that kept the file open).
    virtual void setPath(const std::filesystem::path &path) = 0;

    virtual const CrdHeaderTexts &headerTexts() const = 0;
    /// Writes the three header texts into the file's header.
    virtual bool setHeaderTexts(const CrdHeaderTexts &texts) = 0;
};

/// The notes file of a coordinate file: beside it, its name cut at the
/// first '.' and ".not" added ("site.crd" and "site.v2.crd" share
/// "site.not").
std::filesystem::path notesPathFor(const std::filesystem::path &path);

/// The history file of a coordinate file: the same path with ".his".
std::filesystem::path historyPathFor(const std::filesystem::path &path);

} // namespace tramline::crd
