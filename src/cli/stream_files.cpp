#include "cli/stream_files.h"

#include "base/translation.h"

#include <cerrno>
#include <cstring>

namespace tramline::cli {

namespace {

constexpr const char *kCannotRead = trNoop("Error: unable to read file");
constexpr const char *kCannotWrite = trNoop("Error: unable to write file");

} // namespace

std::string fileReason(const std::string &path, int error) {
    return path + ": " + std::strerror(error);
}

void reportFileError(CommandContext &ctx, const std::string &message, const std::string &path,
                     int error) {
    ctx.err << message << '\n' << fileReason(path, error) << '\n';
    ctx.exitCode = kFailure;
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
    stream().flush();
    if (m_out)
        return static_cast<bool>(*m_out);
    errno = 0;
    m_file.close();
    if (m_file)
        return true;
    reportFileError(ctx, tr(kCannotWrite), m_path, errno ? errno : EIO);
    return false;
}

} // namespace tramline::cli
