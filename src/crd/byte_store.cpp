// POSIX file access for the coordinate store. The other programs that share
// coordinate files deny write sharing while they hold a file; the same
// guard here is an open-file-description lock (fcntl F_OFD_SETLK): it
// belongs to the open file, not the process, so a second open in this very
// process is refused too, and it goes away when the file is closed, even
// when the program dies.
#include "crd/byte_store.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tramline::crd {

namespace {

FileOpenResult classifyOpenError(int error) {
    switch (error) {
    case ENOENT:
        return FileOpenResult::Missing;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ENOTDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case ENXIO:
        return FileOpenResult::Refused;
    default:
        // Busy, interrupted, out of descriptors: may pass, worth a retry.
        return FileOpenResult::Locked;
    }
}

// Opens without blocking on odd files (a FIFO would wait for a writer) and
// accepts regular files only.
int openRegular(const std::filesystem::path &path, int flags, FileOpenResult &result) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        result = classifyOpenError(errno);
        return -1;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        result = FileOpenResult::Refused;
        return -1;
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    result = FileOpenResult::Opened;
    return fd;
}

// Takes the write lock on the whole file. Where the file system cannot
// lock at all, the file is used without one rather than not at all.
FileOpenResult lockWhole(int fd) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0;
    lock.l_len = 0;
#ifdef F_OFD_SETLK
    const int rc = ::fcntl(fd, F_OFD_SETLK, &lock);
#else
    const int rc = ::fcntl(fd, F_SETLK, &lock);
#endif
    if (rc == 0)
        return FileOpenResult::Opened;
    if (errno == EAGAIN || errno == EACCES || errno == EINTR)
        return FileOpenResult::Locked;
    return FileOpenResult::Opened;
}

} // namespace

FileStore::~FileStore() {
    if (m_fd >= 0)
        ::close(m_fd);
}

std::unique_ptr<FileStore> FileStore::openForUpdate(const std::filesystem::path &path,
                                                    FileOpenResult &result) {
    const int fd = openRegular(path, O_RDWR, result);
    if (fd < 0)
        return nullptr;
    result = lockWhole(fd);
    if (result != FileOpenResult::Opened) {
        ::close(fd);
        return nullptr;
    }
    return std::unique_ptr<FileStore>(new FileStore(fd));
}

std::unique_ptr<FileStore> FileStore::openForReading(const std::filesystem::path &path,
                                                     FileOpenResult &result) {
    const int fd = openRegular(path, O_RDONLY, result);
    if (fd < 0)
        return nullptr;
    return std::unique_ptr<FileStore>(new FileStore(fd));
}

std::unique_ptr<FileStore> FileStore::create(const std::filesystem::path &path) {
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0)
        return nullptr;
    if (lockWhole(fd) != FileOpenResult::Opened) {
        ::close(fd);
        return nullptr;
    }
    return std::unique_ptr<FileStore>(new FileStore(fd));
}

FileOpenResult FileStore::probeForUpdate(const std::filesystem::path &path) {
    FileOpenResult result = FileOpenResult::Missing;
    openForUpdate(path, result); // closed again at once, which lets the lock go
    return result;
}

long long FileStore::readAt(std::uint64_t offset, void *data, std::size_t size) {
    auto *out = static_cast<unsigned char *>(data);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::pread(m_fd, out + done, size - done, static_cast<off_t>(offset + done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return -1;
        }
        if (n == 0)
            break;
        done += static_cast<std::size_t>(n);
    }
    return static_cast<long long>(done);
}

bool FileStore::writeAt(std::uint64_t offset, const void *data, std::size_t size) {
    const auto *in = static_cast<const unsigned char *>(data);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::pwrite(m_fd, in + done, size - done, static_cast<off_t>(offset + done));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (n == 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

bool FileStore::resize(std::uint64_t size) {
    return ::ftruncate(m_fd, static_cast<off_t>(size)) == 0;
}

long long FileStore::size() const {
    struct stat st {};
    if (::fstat(m_fd, &st) != 0)
        return -1;
    return static_cast<long long>(st.st_size);
}

unsigned FileStore::permissions() const {
    struct stat st {};
    if (::fstat(m_fd, &st) != 0)
        return 0666;
    return static_cast<unsigned>(st.st_mode & 07777);
}

bool FileStore::setPermissions(unsigned mode) {
    return ::fchmod(m_fd, static_cast<mode_t>(mode)) == 0;
}

bool FileStore::sync() {
    return ::fsync(m_fd) == 0;
}

long long MemoryStore::readAt(std::uint64_t offset, void *data, std::size_t size) {
    // A record of no bytes may come with no buffer at all (an empty
    // vector's data()), which memcpy must never see.
    if (offset >= m_bytes.size() || size == 0)
        return 0;
    const std::size_t n = std::min<std::size_t>(size, m_bytes.size() - offset);
    std::memcpy(data, m_bytes.data() + offset, n);
    return static_cast<long long>(n);
}

bool MemoryStore::writeAt(std::uint64_t offset, const void *data, std::size_t size) {
    const std::uint64_t end = offset + size;
    const bool fits = end <= m_capacity;
    const std::uint64_t stop = std::min<std::uint64_t>(end, m_capacity);
    if (stop > m_bytes.size())
        m_bytes.resize(stop);
    if (stop > offset)
        std::memcpy(m_bytes.data() + offset, data, stop - offset);
    return fits;
}

bool MemoryStore::resize(std::uint64_t size) {
    if (size > m_capacity)
        return false;
    m_bytes.resize(size);
    return true;
}

} // namespace tramline::crd
