#include "crd/history_file.h"

#include "base/format.h"
#include "base/interaction.h"
#include "base/translation.h"
#include "crd/record_layout.h"

#include <cstring>
#include <fstream>
#include <unistd.h>

namespace tramline::crd {

namespace {

constexpr char kMark[kHistoryMarkSize] = "CRD HISTORY V2"; // 14 characters and the NUL
constexpr std::size_t kMaxText = 255;
constexpr std::time_t kStampInterval = 5; // seconds between time stamps

void putCString(std::string &out, std::string_view text) {
    out.append(text.substr(0, text.find('\0'))); // an embedded NUL would end it anyway
    out.push_back('\0');
}

void putU16(std::string &out, unsigned value) {
    out.push_back(static_cast<char>(value & 0xffu));
    out.push_back(static_cast<char>((value >> 8) & 0xffu));
}

void putU32(std::string &out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xffu));
}

void putDoubleBytes(std::string &out, double value) {
    unsigned char bytes[8];
    layout::putDouble(bytes, value);
    out.append(reinterpret_cast<const char *>(bytes), 8);
}

// Reads entries field by field; every read says whether the bytes held it.
class EntryReader {
public:
    explicit EntryReader(std::string_view bytes) : m_bytes(bytes) {}
    bool atEnd() const { return m_pos >= m_bytes.size(); }
    bool cString(std::string &out) {
        const std::size_t nul = m_bytes.find('\0', m_pos);
        if (nul == std::string_view::npos)
            return false;
        out.assign(m_bytes.substr(m_pos, nul - m_pos));
        m_pos = nul + 1;
        return true;
    }
    bool bytes(unsigned char *out, std::size_t n) {
        if (m_bytes.size() - m_pos < n)
            return false;
        std::memcpy(out, m_bytes.data() + m_pos, n);
        m_pos += n;
        return true;
    }
    bool u16(unsigned &value) {
        unsigned char b[2];
        if (!bytes(b, 2))
            return false;
        value = b[0] | (static_cast<unsigned>(b[1]) << 8);
        return true;
    }
    bool u32(std::uint32_t &value) {
        unsigned char b[4];
        if (!bytes(b, 4))
            return false;
        value = b[0] | (static_cast<std::uint32_t>(b[1]) << 8) |
                (static_cast<std::uint32_t>(b[2]) << 16) | (static_cast<std::uint32_t>(b[3]) << 24);
        return true;
    }
    bool real(double &value) {
        unsigned char b[8];
        if (!bytes(b, 8))
            return false;
        value = layout::getDouble(b);
        return true;
    }

private:
    std::string_view m_bytes;
    std::size_t m_pos = 0;
};

bool named(const CrdPoint *point) {
    return point && !point->name.empty();
}

} // namespace

unsigned historyChangeMask(const CrdPoint *before, const CrdPoint *after) {
    if (named(before) && named(after)) {
        unsigned mask = 0;
        if (before->name != after->name)
            mask |= kHistoryName;
        if (before->description != after->description)
            mask |= kHistoryDescription;
        if (before->code != after->code)
            mask |= kHistoryCode;
        if (before->easting != after->easting)
            mask |= kHistoryEasting;
        if (before->northing != after->northing)
            mask |= kHistoryNorthing;
        if (before->elevation != after->elevation)
            mask |= kHistoryElevation;
        return mask;
    }
    if (named(before))
        return kHistoryRemoved;
    if (named(after))
        return kHistoryNewPoint;
    return 0;
}

bool HistoryFile::failed(const char *message, const std::filesystem::path &path) {
    if (m_messages)
        m_messages->message(format(tr(message), path.string().c_str()));
    close();
    return false;
}

bool HistoryFile::openForAppend(const std::filesystem::path &path) {
    close();
    m_path = path;
    m_previousText.clear();
    m_previousSecondText.clear();
    m_file = std::fopen(path.c_str(), "r+b");
    if (!m_file) {
        std::error_code ec;
        if (std::filesystem::exists(path, ec))
            return failed(trNoop("\nCRD HISTORY FAILED: %s not valid.\n"), path);
        m_file = std::fopen(path.c_str(), "w+b");
        if (!m_file)
            return failed(trNoop("\nCRD History file, %s, could not be created!\n"), path);
        if (!writeMark()) {
            // A full disk must not leave an empty file that fails every later open.
            close();
            std::filesystem::remove(path, ec);
            return failed(trNoop("\nCRD HISTORY FAILED: COULD NOT WRITE TO %s.\n"), path);
        }
    } else {
        char mark[kHistoryMarkSize] = {};
        const std::size_t got = std::fread(mark, 1, kHistoryMarkSize, m_file);
        if (got < kHistoryMarkSize && std::memcmp(mark, kMark, got) == 0) {
            // Empty or cut inside the mark (a full disk when it was made):
            // nothing of value is in it, so it is started again.
            if (::ftruncate(::fileno(m_file), 0) != 0 || std::fseek(m_file, 0, SEEK_SET) != 0 ||
                !writeMark())
                return failed(trNoop("\nCRD HISTORY FAILED: COULD NOT WRITE TO %s.\n"), path);
            if (m_messages)
                m_messages->message(tramline::format(
                    tr("\nCRD history file %s was found cut short and has been started again; "
                       "the change it failed to record is not in it.\n"),
                    path.string().c_str()));
        } else if (got != kHistoryMarkSize || std::memcmp(mark, kMark, kHistoryMarkSize) != 0) {
            return failed(trNoop("\nCRD HISTORY FAILED: %s not valid.\n"), path);
        }
    }
    if (std::fseek(m_file, 0, SEEK_END) != 0) {
        if (m_messages)
            m_messages->message(
                tr("\nPROBLEM READING CRD HISTORY FILE. SEEK FAILED. TRY AGAIN.\n"));
        close();
        return false;
    }
    return true;
}

bool HistoryFile::writeMark() {
    return std::fwrite(kMark, 1, kHistoryMarkSize, m_file) == kHistoryMarkSize &&
           std::fflush(m_file) == 0;
}

void HistoryFile::close() {
    if (m_file)
        std::fclose(m_file);
    m_file = nullptr;
}

bool HistoryFile::append(const CrdPoint *before, const CrdPoint *after, int operation,
                         std::string_view text, std::time_t time, int mask) {
    if (operation == kHistoryOperationNone)
        return true;
    const unsigned change =
        mask < 0 ? historyChangeMask(before, after) : static_cast<unsigned>(mask) & 0xffu;
    if (change == 0)
        return true;
    if (!m_file)
        return false;

    unsigned flags = change;
    const bool stamp =
        operation == kHistoryOperationUndo ? m_lastStamp == 0 : time - m_lastStamp > kStampInterval;
    if (stamp)
        flags |= kHistoryTime;
    if (operation > 0)
        flags |= kHistoryOperation;
    std::string entryText(text.substr(0, kMaxText));
    entryText.resize(std::strlen(entryText.c_str()));
    if (!entryText.empty()) {
        flags |= kHistoryText;
        if (entryText == m_previousText)
            flags |= kHistorySameText;
    }
    if (!m_secondText.empty()) {
        flags |= kHistorySecondText;
        if (m_secondText == m_previousSecondText)
            flags |= kHistorySameSecondText;
    }

    static const CrdPoint kNone;
    const CrdPoint &newPoint = after ? *after : kNone;
    const CrdPoint &oldPoint = before ? *before : kNone;
    std::string entry;
    putCString(entry, (change & kHistoryByNewName) ? newPoint.name : oldPoint.name);
    putU16(entry, flags);
    if (flags & kHistoryOperation)
        entry.push_back(static_cast<char>(operation & 0xff));
    if ((flags & kHistoryText) && !(flags & kHistorySameText))
        putCString(entry, entryText);
    if (flags & kHistoryTime)
        putU32(entry, static_cast<std::uint32_t>(time));
    if ((flags & kHistorySecondText) && !(flags & kHistorySameSecondText))
        putCString(entry, m_secondText);
    if (flags & kHistoryName)
        putCString(entry, newPoint.name);
    if (flags & kHistoryDescription)
        putCString(entry, newPoint.description);
    if (flags & kHistoryCode)
        putCString(entry, newPoint.code);
    if (flags & kHistoryEasting)
        putDoubleBytes(entry, newPoint.easting);
    if (flags & kHistoryNorthing)
        putDoubleBytes(entry, newPoint.northing);
    if (flags & kHistoryElevation)
        putDoubleBytes(entry, newPoint.elevation);

    if (std::fwrite(entry.data(), 1, entry.size(), m_file) != entry.size() ||
        std::fflush(m_file) != 0)
        return failed(trNoop("\nCRD HISTORY FAILED: COULD NOT WRITE TO %s.\n"), m_path);
    if (stamp)
        m_lastStamp = time;
    m_previousText = entryText;
    m_previousSecondText = m_secondText;
    return true;
}

bool parseHistory(std::string_view bytes, std::vector<HistoryEntry> &entries) {
    entries.clear();
    if (bytes.size() < kHistoryMarkSize || std::memcmp(bytes.data(), kMark, kHistoryMarkSize) != 0)
        return false;
    EntryReader in(bytes.substr(kHistoryMarkSize));
    std::string previousText, previousSecondText;
    std::uint32_t lastStamp = 0;
    while (!in.atEnd()) {
        HistoryEntry e;
        if (!in.cString(e.name) || !in.u16(e.flags))
            return false;
        unsigned char operation = 0;
        if ((e.flags & kHistoryOperation) && !in.bytes(&operation, 1))
            return false;
        e.operation = operation;
        if (e.flags & kHistoryText) {
            if (e.flags & kHistorySameText)
                e.text = previousText;
            else if (!in.cString(e.text))
                return false;
        }
        if (e.flags & kHistoryTime) {
            if (!in.u32(lastStamp))
                return false;
            e.stamped = true;
        }
        e.time = lastStamp;
        if (e.flags & kHistorySecondText) {
            if (e.flags & kHistorySameSecondText)
                e.secondText = previousSecondText;
            else if (!in.cString(e.secondText))
                return false;
        }
        if (((e.flags & kHistoryName) && !in.cString(e.newName)) ||
            ((e.flags & kHistoryDescription) && !in.cString(e.newDescription)) ||
            ((e.flags & kHistoryCode) && !in.cString(e.newCode)) ||
            ((e.flags & kHistoryEasting) && !in.real(e.easting)) ||
            ((e.flags & kHistoryNorthing) && !in.real(e.northing)) ||
            ((e.flags & kHistoryElevation) && !in.real(e.elevation)))
            return false;
        previousText = e.text;
        previousSecondText = e.secondText;
        entries.push_back(std::move(e));
    }
    return true;
}

std::string describeHistoryEntry(const HistoryEntry &entry) {
    std::string line;
    if (entry.time != 0) {
        char text[32] = {};
        const std::time_t t = entry.time;
        if (ctime_r(&t, text))
            line.append(text, std::strlen(text) >= 24 ? 24 : std::strlen(text));
    }
    line.resize(24, ' ');
    line += "  ";
    if (entry.flags & kHistoryOperation) {
        const char *name = historyOperationName(entry.operation);
        line += name ? tr(name) : format("%d", entry.operation);
        line += "  ";
    }
    line += entry.name;
    line += ':';
    if (entry.flags & kHistoryRemoved)
        line += std::string(" ") + tr("removed");
    if (entry.flags & kHistoryName)
        appendFormat(line, " %s %s", tr("name"), entry.newName.c_str());
    if (entry.flags & kHistoryNorthing)
        appendFormat(line, " N %.4f", entry.northing);
    if (entry.flags & kHistoryEasting)
        appendFormat(line, " E %.4f", entry.easting);
    if (entry.flags & kHistoryElevation)
        appendFormat(line, " Z %.4f", entry.elevation);
    // A new point lists only the texts it has; a change lists what it became.
    const bool newPoint = entry.flags & kHistoryByNewName;
    if ((entry.flags & kHistoryDescription) && !(newPoint && entry.newDescription.empty()))
        appendFormat(line, " %s \"%s\"", tr("description"), entry.newDescription.c_str());
    if ((entry.flags & kHistoryCode) && !(newPoint && entry.newCode.empty()))
        appendFormat(line, " %s \"%s\"", tr("code"), entry.newCode.c_str());
    if (!entry.text.empty())
        appendFormat(line, " (%s)", entry.text.c_str());
    return line;
}

bool readHistoryFile(const std::filesystem::path &path, std::vector<HistoryEntry> &entries,
                     Interaction *messages) {
    entries.clear();
    std::error_code ec;
    const auto size = std::filesystem::file_size(path, ec);
    std::string bytes(ec ? 0 : static_cast<std::size_t>(size), '\0');
    std::ifstream in(path, std::ios::binary);
    if (!ec && in && in.read(bytes.data(), static_cast<std::streamsize>(bytes.size())) &&
        parseHistory(bytes, entries))
        return true;
    // Unreadable, not a history file, or damaged: the entries up to the
    // damage are kept, but the file is not valid.
    if (messages)
        messages->message(
            format(tr("\nCRD HISTORY FAILED: %s not valid.\n"), path.string().c_str()));
    return false;
}

} // namespace tramline::crd
