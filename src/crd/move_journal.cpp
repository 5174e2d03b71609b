#include "crd/move_journal.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace tramline::crd {

namespace {

// Header: mark, old size, offset of the saved bytes, their count. Then the
// bytes, then a checksum of all before it. A journal cut short (the process
// died while writing it) fails the checksum and is known to be unfinished.
constexpr std::array<char, 8> kMark = {'T', 'L', 'J', 'R', 'N', 'L', '0', '1'};
constexpr std::size_t kHeaderSize = 8 + 3 * 8;
constexpr std::size_t kPiece = 1 << 20;

void putU64(unsigned char *at, std::uint64_t v) {
    for (int i = 0; i < 8; ++i)
        at[i] = static_cast<unsigned char>(v >> (8 * i));
}

std::uint64_t getU64(const unsigned char *at) {
    std::uint64_t v = 0;
    for (int i = 7; i >= 0; --i)
        v = (v << 8) | at[i];
    return v;
}

// FNV-1a, 64 bits: cheap, and any cut or torn page changes it.
struct Checksum {
    std::uint64_t value = 14695981039346656037ull;
    void add(const unsigned char *data, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            value = (value ^ data[i]) * 1099511628211ull;
    }
};

bool writeAll(int fd, const unsigned char *data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

bool readAll(int fd, unsigned char *data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = ::read(fd, data, size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

// The journal's own name must reach the disk before the file changes.
void syncFolder(const std::filesystem::path &file) {
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

} // namespace

std::filesystem::path journalPathFor(const std::filesystem::path &path) {
    std::filesystem::path journal = path;
    journal += "-journal";
    return journal;
}

bool beginMove(const std::filesystem::path &journal, ByteStore &store, std::uint64_t from) {
    const long long size = store.size();
    if (size < 0)
        return false;
    const std::uint64_t end = static_cast<std::uint64_t>(size);
    from = std::min(from, end);
    const int fd = ::open(journal.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    unsigned char header[kHeaderSize];
    std::memcpy(header, kMark.data(), kMark.size());
    putU64(header + 8, end);
    putU64(header + 16, from);
    putU64(header + 24, end - from);
    Checksum sum;
    sum.add(header, sizeof header);
    bool ok = writeAll(fd, header, sizeof header);
    std::vector<unsigned char> piece(static_cast<std::size_t>(
        std::min<std::uint64_t>(kPiece, std::max<std::uint64_t>(end - from, 1))));
    for (std::uint64_t at = from; ok && at < end;) {
        const std::size_t n =
            static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), end - at));
        ok = store.readExactly(at, piece.data(), n) && writeAll(fd, piece.data(), n);
        sum.add(piece.data(), n);
        at += n;
    }
    unsigned char tail[8];
    putU64(tail, sum.value);
    ok = ok && writeAll(fd, tail, sizeof tail) && ::fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    if (!ok) {
        ::unlink(journal.c_str());
        return false;
    }
    syncFolder(journal);
    return true;
}

bool finishMove(const std::filesystem::path &journal, ByteStore &store) {
    // Until the moved file is on disk the journal is its only way back.
    if (!store.sync())
        return false;
    return ::unlink(journal.c_str()) == 0 || errno == ENOENT;
}

Recovery recoverMove(const std::filesystem::path &journal, ByteStore &store) {
    const int fd = ::open(journal.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return Recovery::Clean;
    unsigned char header[kHeaderSize];
    std::vector<unsigned char> saved;
    unsigned char tail[8];
    Checksum sum;
    bool whole =
        readAll(fd, header, sizeof header) && std::memcmp(header, kMark.data(), kMark.size()) == 0;
    const std::uint64_t oldSize = whole ? getU64(header + 8) : 0;
    const std::uint64_t from = whole ? getU64(header + 16) : 0;
    const std::uint64_t length = whole ? getU64(header + 24) : 0;
    whole = whole && from <= oldSize && length == oldSize - from;
    const long long journalSize = ::lseek(fd, 0, SEEK_END);
    whole = whole && journalSize >= 0 &&
            static_cast<std::uint64_t>(journalSize) == kHeaderSize + length + sizeof tail &&
            ::lseek(fd, static_cast<off_t>(kHeaderSize), SEEK_SET) >= 0;
    if (whole) {
        saved.resize(static_cast<std::size_t>(length));
        whole = readAll(fd, saved.data(), saved.size()) && readAll(fd, tail, sizeof tail);
        sum.add(header, sizeof header);
        sum.add(saved.data(), saved.size());
        whole = whole && getU64(tail) == sum.value;
    }
    ::close(fd);
    if (!whole) {
        // Unfinished: the update never started moving records.
        ::unlink(journal.c_str());
        return Recovery::Discarded;
    }
    if (!store.writeAt(from, saved.data(), saved.size()) || !store.resize(oldSize) || !store.sync())
        return Recovery::Failed;
    ::unlink(journal.c_str());
    return Recovery::RolledBack;
}

} // namespace tramline::crd
