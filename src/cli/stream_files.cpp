#include "cli/stream_files.h"

#include "base/translation.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace tramline::cli {

namespace {

constexpr const char *kCannotRead = trNoop("Error: unable to read file");
constexpr const char *kCannotWrite = trNoop("Error: unable to write file");
constexpr const char *kStandardOutput = trNoop("standard output");
constexpr const char *kNoStreamForCoordinates =
    trNoop("Error: a coordinate file cannot be standard input or output (\"-\"): it is read and "
           "written in place");

} // namespace

std::string fileReason(const std::string &path, int error) {
    return path + ": " + std::strerror(error);
}

void reportFileError(CommandContext &ctx, const std::string &message, const std::string &path,
                     int error) {
    ctx.err << message << '\n' << fileReason(path, error) << '\n';
    ctx.exitCode = kFailure;
}

namespace {

// The system's reason why `path` cannot be opened for reading, 0 if it can.
int unreadableReason(const std::string &path) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec))
        return EISDIR;
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0)
        return errno ? errno : ENOENT;
    ::close(fd);
    return 0;
}

// The same for a file to be written, without creating it: a folder in its
// place, a missing or read-only folder, a read-only file.
int unwritableReason(const std::string &path) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (fs::is_directory(path, ec))
        return EISDIR;
    if (fs::exists(path, ec))
        return ::access(path.c_str(), W_OK) == 0 ? 0 : errno;
    fs::path folder = fs::path(path).parent_path();
    if (folder.empty())
        folder = ".";
    if (!fs::exists(folder, ec))
        return ENOENT;
    if (!fs::is_directory(folder, ec))
        return ENOTDIR;
    return ::access(folder.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

} // namespace

void explainFileFailure(CommandContext &ctx, std::initializer_list<std::string> inputs,
                        const std::string &output) {
    for (const std::string &path : inputs)
        if (!path.empty() && !isStandardStream(path))
            if (const int error = unreadableReason(path)) {
                ctx.err << fileReason(path, error) << '\n';
                return;
            }
    if (!output.empty() && !isStandardStream(output))
        if (const int error = unwritableReason(output))
            ctx.err << fileReason(output, error) << '\n';
}

bool isStandardStream(const std::string &path) {
    return path == "-";
}

FileOutput outputFor(const std::string &path, CommandContext &ctx) {
    if (isStandardStream(path))
        return FileOutput(ctx.out, tr(kStandardOutput));
    return FileOutput(path);
}

void reportOutputError(const FileOutput &output, CommandContext &ctx) {
    ctx.err << tr(kCannotWrite) << '\n' << output.error() << '\n';
    ctx.exitCode = kFailure;
}

bool writeOutput(FileOutput &output, std::string_view bytes, CommandContext &ctx) {
    if (output.write(bytes) && output.commit())
        return true;
    reportOutputError(output, ctx);
    return false;
}

std::ostream &summaryStream(const std::string &output, CommandContext &ctx) {
    return isStandardStream(output) ? ctx.err : ctx.out;
}

bool coordinateFilePath(const std::string &path, CommandContext &ctx) {
    if (!isStandardStream(path))
        return true;
    ctx.err << tr(kNoStreamForCoordinates) << '\n';
    ctx.exitCode = kUsage;
    return false;
}

bool InputFile::open(const std::string &path, CommandContext &ctx) {
    if (path == "-") {
        m_in = &std::cin;
        return true;
    }
    errno = 0;
    m_file.open(path, std::ios::binary);
    if (m_file)
        return true;
    reportFileError(ctx, tr(kCannotRead), path, errno ? errno : ENOENT);
    return false;
}

bool OutputFile::open(const std::string &path, CommandContext &ctx) {
    m_path = path;
    if (path == "-") {
        m_out = &ctx.out;
        return true;
    }
    errno = 0;
    m_file.open(path, std::ios::binary | std::ios::trunc);
    if (m_file)
        return true;
    reportFileError(ctx, tr(kCannotWrite), path, errno ? errno : EACCES);
    return false;
}

bool OutputFile::close(CommandContext &ctx) {
    errno = 0;
    stream().flush();
    if (m_out) {
        if (*m_out)
            return true;
        reportFileError(ctx, tr(kCannotWrite), tr(kStandardOutput), errno ? errno : EIO);
        return false;
    }
    errno = 0;
    m_file.close();
    if (m_file)
        return true;
    reportFileError(ctx, tr(kCannotWrite), m_path, errno ? errno : EIO);
    return false;
}

} // namespace tramline::cli
