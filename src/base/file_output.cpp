#include "base/file_output.h"

#include <cerrno>
#include <cstring>

namespace tramline {

FileOutput::FileOutput(const std::filesystem::path &path)
    : m_name(path.string()), m_file(std::make_unique<AtomicFileWriter>(path)) {}

FileOutput::FileOutput(std::ostream &stream, std::string name)
    : m_name(std::move(name)), m_stream(&stream) {}

bool FileOutput::fail(int errorNumber) {
    if (m_error.empty())
        m_error = m_name + ": " + std::strerror(errorNumber ? errorNumber : EIO);
    return false;
}

bool FileOutput::write(std::string_view bytes) {
    if (!m_error.empty())
        return false;
    if (m_file) {
        errno = 0;
        return m_file->write(bytes) || fail(errno);
    }
    errno = 0;
    m_stream->write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(*m_stream) || fail(errno);
}

bool FileOutput::commit() {
    if (!m_error.empty())
        return false;
    if (m_file) {
        std::string reason;
        if (m_file->commit(&reason))
            return true;
        m_error = m_name + ": " + reason;
        return false;
    }
    // The stream's buffer may still hold the last bytes: only the flush
    // tells whether they arrived.
    errno = 0;
    m_stream->flush();
    return static_cast<bool>(*m_stream) || fail(errno);
}

} // namespace tramline
