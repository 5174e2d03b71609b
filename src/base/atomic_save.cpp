#include "base/atomic_save.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tramline {

namespace {

void setError(std::string *error, const std::string &what) {
    if (error)
        *error = what;
}

// Writes all bytes to a descriptor, retrying short writes.
bool writeAll(int fd, const char *data, size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

mode_t newFileMode() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// The file a save really replaces: a symbolic link is followed to the file
// it names (a chain of them too), so the link stays a link and the user's
// file gets the new content.
std::filesystem::path followLinks(std::filesystem::path path) {
    std::error_code ec;
    for (int hop = 0; hop < 40 && std::filesystem::is_symlink(path, ec); ++hop) {
        const std::filesystem::path target = std::filesystem::read_symlink(path, ec);
        if (ec)
            break;
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return path;
}

// A save may only replace what the user could write in place: a file the
// user made read-only (even one in a writable folder, which rename would
// happily replace) or anything that is not a plain file is refused.
bool mayReplace(const std::filesystem::path &path, std::string *error) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0)
        return true; // a new file
    if (S_ISDIR(st.st_mode)) {
        setError(error, path.string() + " is a folder");
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        setError(error, path.string() + " is not a regular file");
        return false;
    }
    // Root passes every access check, so the permission bits speak too.
    if ((st.st_mode & 0222) == 0 || ::access(path.c_str(), W_OK) != 0) {
        setError(error, path.string() + " is read-only");
        return false;
    }
    return true;
}

// The temporary file beside the file `target` names (through its links),
// opened for writing; -1 when the file may not be replaced or no temporary
// can be made.
int openTemporary(const std::filesystem::path &target, std::filesystem::path &path,
                  std::string &temporary, std::string *error) {
    path = followLinks(target);
    if (!mayReplace(path, error))
        return -1;
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    temporary = (folder / ("." + path.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        setError(error, std::strerror(errno));
    return fd;
}

// The temporary is flushed, given its permissions (the old file's, else
// `mode`) and renamed over the file; when `ok` is false or a step fails it
// is removed and the file is left alone.
bool finishTemporary(int fd, bool ok, const std::filesystem::path &path,
                     const std::string &temporary, mode_t mode, std::string *error) {
    int savedErrno = errno;
    if (ok && ::fsync(fd) != 0) {
        ok = false;
        savedErrno = errno;
    }
    struct stat old {};
    if (ok)
        ::fchmod(fd, ::stat(path.c_str(), &old) == 0 ? old.st_mode & 07777 : mode);
    if (::close(fd) != 0 && ok) {
        ok = false;
        savedErrno = errno;
    }
    if (ok && ::rename(temporary.c_str(), path.c_str()) != 0) {
        ok = false;
        savedErrno = errno;
    }
    if (!ok) {
        ::unlink(temporary.c_str());
        setError(error, std::strerror(savedErrno));
    }
    return ok;
}

// The common end of every atomic write: `fill` writes the content into the
// temporary file, which then replaces the file.
bool replaceThrough(const std::filesystem::path &target, mode_t mode,
                    const std::function<bool(int fd)> &fill, std::string *error) {
    std::filesystem::path path;
    std::string temporary;
    const int fd = openTemporary(target, path, temporary, error);
    if (fd < 0)
        return false;
    const bool ok = fill(fd);
    return finishTemporary(fd, ok, path, temporary, mode, error);
}

} // namespace

bool saveAtomically(const std::filesystem::path &path,
                    const std::function<bool(std::ostream &)> &writer, std::string *error) {
    // Produce the content first: a writer that gives up costs nothing on disk.
    std::ostringstream content;
    if (!writer(content) || !content) {
        setError(error, "the content could not be produced");
        return false;
    }
    const std::string bytes = std::move(content).str();
    return replaceThrough(
        path, newFileMode(), [&](int fd) { return writeAll(fd, bytes.data(), bytes.size()); },
        error);
}

bool saveTextAtomically(const std::filesystem::path &path, const std::string &text,
                        std::string *error) {
    // The text is written as it stands: a copy through a string stream
    // would double the memory of a large export and cost its copying.
    return replaceThrough(
        path, newFileMode(), [&](int fd) { return writeAll(fd, text.data(), text.size()); }, error);
}

bool copyAtomically(const std::filesystem::path &from, const std::filesystem::path &to,
                    std::string *error) {
    // Non-blocking, so that a FIFO given as the source cannot hang the open.
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (in < 0) {
        setError(error, from.string() + ": " + std::strerror(errno));
        return false;
    }
    struct stat source {};
    if (::fstat(in, &source) != 0 || !S_ISREG(source.st_mode)) {
        setError(error, from.string() + " is not a file");
        ::close(in);
        return false;
    }
    const bool ok = replaceThrough(
        to, source.st_mode & 07777,
        [in](int out) {
            char buffer[1 << 16];
            for (;;) {
                const ssize_t n = ::read(in, buffer, sizeof buffer);
                if (n == 0)
                    return true;
                if (n < 0 && errno == EINTR)
                    continue;
                if (n < 0 || !writeAll(out, buffer, static_cast<size_t>(n)))
                    return false;
            }
        },
        error);
    ::close(in);
    return ok;
}

AtomicFileWriter::~AtomicFileWriter() {
    if (m_fd >= 0)
        finishTemporary(m_fd, false, m_path, m_temporary, 0, nullptr);
}

bool AtomicFileWriter::write(std::string_view bytes) {
    if (m_failed)
        return false;
    if (m_fd < 0) {
        m_fd = openTemporary(m_target, m_path, m_temporary, &m_error);
        if (m_fd < 0) {
            m_failed = true;
            return false;
        }
    }
    if (!writeAll(m_fd, bytes.data(), bytes.size())) {
        m_error = std::strerror(errno);
        m_failed = true;
    }
    return !m_failed;
}

bool AtomicFileWriter::commit(std::string *error) {
    if (m_fd < 0 && !m_failed)
        write({}); // an empty file is still a file
    if (m_failed) {
        setError(error, m_error);
        if (m_fd >= 0)
            finishTemporary(m_fd, false, m_path, m_temporary, 0, nullptr);
        m_fd = -1;
        return false;
    }
    const int fd = m_fd;
    m_fd = -1;
    return finishTemporary(fd, true, m_path, m_temporary, newFileMode(), error);
}

} // namespace tramline
