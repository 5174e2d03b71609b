#include "base/atomic_save.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sstream>

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

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

    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) {
        setError(error, path.string() + " is a folder");
        return false;
    }
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    std::string pattern = (folder / ("." + path.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(pattern.data());
    if (fd < 0) {
        setError(error, std::strerror(errno));
        return false;
    }
    bool ok = writeAll(fd, bytes.data(), bytes.size());
    int savedErrno = errno;
    if (ok && ::fsync(fd) != 0) {
        ok = false;
        savedErrno = errno;
    }
    struct stat old {};
    if (ok && ::stat(path.c_str(), &old) == 0)
        ::fchmod(fd, old.st_mode & 07777);
    else if (ok)
        ::fchmod(
            fd, 0666 & ~[] {
                const mode_t m = ::umask(0);
                ::umask(m);
                return m;
            }());
    if (::close(fd) != 0 && ok) {
        ok = false;
        savedErrno = errno;
    }
    if (ok && ::rename(pattern.c_str(), path.c_str()) != 0) {
        ok = false;
        savedErrno = errno;
    }
    if (!ok) {
        ::unlink(pattern.c_str());
        setError(error, std::strerror(savedErrno));
    }
    return ok;
}

bool saveTextAtomically(const std::filesystem::path &path, const std::string &text,
                        std::string *error) {
    return saveAtomically(
        path, [&](std::ostream &out) { return static_cast<bool>(out << text); }, error);
}

} // namespace tramline
