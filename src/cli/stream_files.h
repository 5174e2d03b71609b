// The files a command reads and writes, where "-" stands for standard
// input or output. A file that cannot be opened is reported with its name
// and the system's reason on a line of their own ("nosuch.txt: No such
// file or directory").
#pragma once

#include "base/file_output.h"
#include "cli/command_context.h"

#include <fstream>
#include <initializer_list>
#include <iostream>
#include <string>

namespace tramline::cli {

/// "PATH: REASON" for the error number `error` (errno).
std::string fileReason(const std::string &path, int error);

/// Writes `message` and, on its own line, fileReason(path, error) to the
/// error stream, and sets the failure exit code.
void reportFileError(CommandContext &ctx, const std::string &message, const std::string &path,
                     int error);

/// After a command's own message about a file it could not use: "PATH:
/// REASON" for the first of `inputs` that cannot be read, else for `output`
/// when it cannot be written; nothing when they all open (the message was
/// about the contents) or are "-".
void explainFileFailure(CommandContext &ctx, std::initializer_list<std::string> inputs,
                        const std::string &output = {});

/// True for "-", standard input or output.
bool isStandardStream(const std::string &path);

/// The file a command writes: `path` saved atomically, or the command's
/// output stream for "-", written as the bytes come.
FileOutput outputFor(const std::string &path, CommandContext &ctx);
/// Writes `bytes` and commits; reports a failure ("Error: unable to write
/// file" and the reason) and sets the failure exit code.
bool writeOutput(FileOutput &output, std::string_view bytes, CommandContext &ctx);
/// Reports the failure of `output`, as writeOutput() does.
void reportOutputError(const FileOutput &output, CommandContext &ctx);
/// Where a command's own lines (counts, summaries) go: standard error when
/// its file goes to standard output, so that the file stays as it is.
std::ostream &summaryStream(const std::string &output, CommandContext &ctx);

/// A coordinate file is read and written in place by record, with seeking,
/// so a pipe cannot stand for it: "-" is refused with a message that says
/// so (bad usage). True when `path` may be used.
bool coordinateFilePath(const std::string &path, CommandContext &ctx);

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
