// The files a command reads and writes, where "-" stands for standard
// input or output. A file that cannot be opened is reported with its name
// and the system's reason on a line of their own ("nosuch.txt: No such
// file or directory").
#pragma once

#include "cli/command_context.h"

#include <fstream>
#include <iostream>
#include <string>

namespace tramline::cli {

/// "PATH: REASON" for the error number `error` (errno).
std::string fileReason(const std::string &path, int error);

/// Writes `message` and, on its own line, fileReason(path, error) to the
/// error stream, and sets the failure exit code.
void reportFileError(CommandContext &ctx, const std::string &message, const std::string &path,
                     int error);

class InputFile {
public:
    /// Opens `path`, or takes standard input for "-". Reports a failure.
    bool open(const std::string &path, CommandContext &ctx);
    std::istream &stream() { return m_in ? *m_in : m_file; }

private:
    std::ifstream m_file;
    std::istream *m_in = nullptr;
};

class OutputFile {
public:
    /// Creates `path`, or takes the command's output for "-". Reports a failure.
    bool open(const std::string &path, CommandContext &ctx);
    std::ostream &stream() { return m_out ? *m_out : m_file; }
    /// Flushes and closes; reports a failed write.
    bool close(CommandContext &ctx);

private:
    std::string m_path;
    std::ofstream m_file;
    std::ostream *m_out = nullptr;
};

} // namespace tramline::cli
