// Where the bytes of an open coordinate file live: a file on disk, held
// with a write lock while it is open for update, or a buffer in memory
// (first-revision files opened only for reading, fuzzing, tests).
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace tramline::crd {

class ByteStore {
public:
    virtual ~ByteStore() = default;

    /// Reads up to `size` bytes at `offset`; the count read (short at the
    /// end of the data), or -1 on an error.
    virtual long long readAt(std::uint64_t offset, void *data, std::size_t size) = 0;
    /// Writes all bytes at `offset`, growing the data as needed. False when
    /// not all were written (a full disk, a size limit, a read-only store).
    virtual bool writeAt(std::uint64_t offset, const void *data, std::size_t size) = 0;
    /// Cuts or zero-extends the data to `size` bytes.
    virtual bool resize(std::uint64_t size) = 0;
    /// The current size in bytes, or -1 on an error.
    virtual long long size() const = 0;
    /// Makes written bytes durable (a file's reach the disk).
    virtual bool sync() { return true; }

    bool readExactly(std::uint64_t offset, void *data, std::size_t size) {
        return readAt(offset, data, size) == static_cast<long long>(size);
    }
};

/// The outcome of trying to open a file for update.
enum class FileOpenResult {
    Opened,
    Missing, ///< no such file
    Refused, ///< write access refused: read-only, a folder, no permission
    Locked,  ///< another writer holds the file (or a passing error worth retrying)
};

/// A file on disk. Opened for update it holds an open-file-description
/// write lock on the whole file, so every other writer (in this process or
/// another) is refused while readers, who take no lock, may still read.
class FileStore : public ByteStore {
public:
    ~FileStore() override;
    FileStore(const FileStore &) = delete;
    FileStore &operator=(const FileStore &) = delete;

    /// Opens an existing regular file for update and takes the lock.
    static std::unique_ptr<FileStore> openForUpdate(const std::filesystem::path &path,
                                                    FileOpenResult &result);
    /// Opens an existing regular file for reading only, without a lock.
    static std::unique_ptr<FileStore> openForReading(const std::filesystem::path &path,
                                                     FileOpenResult &result);
    /// Creates a new file (the path must not exist) and takes the lock.
    static std::unique_ptr<FileStore> create(const std::filesystem::path &path);

    /// Tries to open for update and lets go at once: can a writer get in now?
    static FileOpenResult probeForUpdate(const std::filesystem::path &path);

    long long readAt(std::uint64_t offset, void *data, std::size_t size) override;
    bool writeAt(std::uint64_t offset, const void *data, std::size_t size) override;
    bool resize(std::uint64_t size) override;
    long long size() const override;

    /// The permission bits of the file (for a replacement to keep them).
    unsigned permissions() const;
    bool setPermissions(unsigned mode);
    bool sync() override;

private:
    explicit FileStore(int fd) : m_fd(fd) {}
    int m_fd;
};

/// Bytes in memory. A capacity, when set, makes writes beyond it fail the
/// way a full disk does (the bytes up to it are written).
class MemoryStore : public ByteStore {
public:
    MemoryStore() = default;
    explicit MemoryStore(std::vector<unsigned char> bytes) : m_bytes(std::move(bytes)) {}

    long long readAt(std::uint64_t offset, void *data, std::size_t size) override;
    bool writeAt(std::uint64_t offset, const void *data, std::size_t size) override;
    bool resize(std::uint64_t size) override;
    long long size() const override { return static_cast<long long>(m_bytes.size()); }

    const std::vector<unsigned char> &bytes() const { return m_bytes; }
    void setCapacity(std::size_t capacity) { m_capacity = capacity; }

private:
    std::vector<unsigned char> m_bytes;
    std::size_t m_capacity = static_cast<std::size_t>(-1);
};

} // namespace tramline::crd
