// The history file beside a coordinate file (same path, ".his"): one entry
// appended for each change of a point, so that a user can see who changed
// what and when, and undo it. The file begins with the 15 bytes
// "CRD HISTORY V2\0"; each entry then holds, in order:
//   the point's name (the new name when bit 2 is set), NUL-terminated;
//   the flags, a 16-bit little-endian word;
//   0x200:  the operation code, one byte;
//   0x400 without 0x800: a text of at most 255 characters, NUL-terminated
//           (with 0x800 the text is the previous entry's and is left out);
//   0x100:  the time, 32-bit little-endian seconds since 1970;
//   0x1000 without 0x2000: the file's second text, NUL-terminated;
//   4, 8, 16: the new name, description and point code, NUL-terminated;
//   32, 64, 128: the new easting, northing and elevation, doubles.
#pragma once

#include "crd/crd_point.h"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tramline {
class Interaction;
}

namespace tramline::crd {

/// Bits of an entry's flags. The low byte says what changed.
enum HistoryFlag : unsigned {
    kHistoryRemoved = 0x1,
    kHistoryByNewName = 0x2,
    kHistoryName = 0x4,
    kHistoryDescription = 0x8,
    kHistoryCode = 0x10,
    kHistoryEasting = 0x20,
    kHistoryNorthing = 0x40,
    kHistoryElevation = 0x80,
    kHistoryTime = 0x100,
    kHistoryOperation = 0x200,
    kHistoryText = 0x400,
    kHistorySameText = 0x800,
    kHistorySecondText = 0x1000,
    kHistorySameSecondText = 0x2000,
};

/// The mask of a new point: keyed by its name, with every field but the name.
inline constexpr unsigned kHistoryNewPoint = 250;

inline constexpr int kHistoryOperationNone = 255; ///< writes no entry
inline constexpr int kHistoryOperationUndo = 85;
inline constexpr int kHistoryOperationDelete = 8;
inline constexpr int kHistoryOperationRenumber = 15;
inline constexpr int kHistoryOperationInputEdit = 16;
inline constexpr int kHistoryOperationEditPoints = 18;

inline constexpr std::size_t kHistoryMarkSize = 15;

/// The name of an operation code ("Delete Points"), or null for a code
/// that has none.
const char *historyOperationName(int code);

/// What changed between two versions of a point: 0 when neither is named
/// (or nothing differs), 1 when the point went away, 250 for a new point,
/// else the bits 4 to 128 of the fields that differ.
unsigned historyChangeMask(const CrdPoint *before, const CrdPoint *after);

/// One entry as read back.
struct HistoryEntry {
    std::string name;
    unsigned flags = 0;
    int operation = 0; ///< 0 when the entry holds none
    std::string text;
    std::string secondText;
    bool stamped = false;   ///< the entry carries its own time stamp
    std::uint32_t time = 0; ///< its stamp, or the last one before it (0: none yet)
    std::string newName;
    std::string newDescription;
    std::string newCode;
    double easting = 0.0;
    double northing = 0.0;
    double elevation = 0.0;
};

/// Reads the entries that follow the mark in `bytes` (a whole history
/// file). False when the mark is wrong or the last entry is cut short;
/// the whole entries before it are in `entries` either way.
bool parseHistory(std::string_view bytes, std::vector<HistoryEntry> &entries);

/// One line for a listing: the time (the C library's 24-character text),
/// the operation's name and what changed.
std::string describeHistoryEntry(const HistoryEntry &entry);

/// A history file open for appending entries.
class HistoryFile {
public:
    explicit HistoryFile(Interaction *messages = nullptr) : m_messages(messages) {}
    ~HistoryFile() { close(); }
    HistoryFile(const HistoryFile &) = delete;
    HistoryFile &operator=(const HistoryFile &) = delete;

    /// Opens the file at the end for appending, creating it (with its
    /// mark) when it is missing. False, with a message, when it cannot be
    /// created or is not a history file.
    bool openForAppend(const std::filesystem::path &path);
    void close();
    bool isOpen() const { return m_file != nullptr; }

    /// The per-file second text written with every entry (empty: none).
    void setSecondText(std::string text) { m_secondText = std::move(text); }

    /// Appends the entry for a change from `before` to `after` (either may
    /// be null). `mask` < 0 computes it; a mask of 0 or the operation 255
    /// write nothing (and succeed). `time` is the moment of the change; it
    /// is stamped into the entry only when more than 5 seconds have passed
    /// since the last stamp (for "History Undo" only when none was written
    /// yet).
    bool append(const CrdPoint *before, const CrdPoint *after, int operation, std::string_view text,
                std::time_t time, int mask = -1);

    /// The time of the last stamp written to this file (0: none).
    std::time_t lastStamp() const { return m_lastStamp; }

private:
    bool failed(const char *message, const std::filesystem::path &path);
    bool writeMark();

    Interaction *m_messages;
    std::FILE *m_file = nullptr;
    std::filesystem::path m_path;
    std::time_t m_lastStamp = 0;
    std::string m_previousText;
    std::string m_previousSecondText;
    std::string m_secondText;
};

/// Reads the whole history file at `path`. False, with a message, when it
/// cannot be read, is not a history file or ends in a damaged entry; the
/// whole entries before the damage are returned all the same.
bool readHistoryFile(const std::filesystem::path &path, std::vector<HistoryEntry> &entries,
                     Interaction *messages = nullptr);

} // namespace tramline::crd
