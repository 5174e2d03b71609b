// Where a command writes a file: the file itself, which takes its place
// whole (atomic_save.h), or a stream that takes the bytes as they come:
// standard output when the user names "-". A stream has no old content to
// protect and cannot be renamed, so its bytes go straight to it, and a
// failed write there (a closed pipe, a full disk) is still a failure.
#pragma once

#include "base/atomic_save.h"

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace tramline {

class FileOutput {
public:
    /// The file at `path`, saved atomically.
    explicit FileOutput(const std::filesystem::path &path);
    /// A stream, written directly; `name` stands for it in messages.
    FileOutput(std::ostream &stream, std::string name);

    bool isStream() const { return m_stream != nullptr; }
    /// The file's path, or the stream's name.
    const std::string &name() const { return m_name; }

    /// Appends bytes; false once anything has failed.
    bool write(std::string_view bytes);
    /// A file: flushes it and puts it in place. A stream: flushes it. False
    /// when any write failed; error() then says why.
    bool commit();
    /// "NAME: reason" after a failure, empty before.
    const std::string &error() const { return m_error; }

private:
    bool fail(int errorNumber);

    std::string m_name;
    std::unique_ptr<AtomicFileWriter> m_file;
    std::ostream *m_stream = nullptr;
    std::string m_error;
};

} // namespace tramline
