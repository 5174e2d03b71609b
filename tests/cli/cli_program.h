// The real tramline-cli as a child process, for what only the program's
// main decides: signals, a full disk, a closed pipe, a terminal.
#pragma once

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tramline::test {

/// How the child's streams are laid out; by default standard input and
/// output are /dev/null and standard error a pipe.
struct ProgramSetup {
    int stdoutFd = -1;
    bool terminal = false; ///< standard error is a pseudo-terminal
    /// Writes the child's standard input, in this process, while it runs.
    std::function<void(int)> feed;
    /// Runs in the child just before the program starts (limits and such).
    std::function<void()> inChild;
};

struct ProgramRun {
    int code; ///< the exit status, or 128 + the signal that ended it
    std::string err;
};

/// Runs tramline-cli with `args` as a shell would start it (default signal
/// handling) and returns its exit status and standard error.
inline ProgramRun runProgram(const std::vector<std::string> &args, const ProgramSetup &setup = {}) {
    int err[2];
    if (setup.terminal ? ::openpty(&err[0], &err[1], nullptr, nullptr, nullptr) != 0
                       : ::pipe(err) != 0)
        return {-1, "no pipe for standard error"};
    int input[2];
    if (::pipe(input) != 0)
        return {-1, "no pipe for standard input"};
    const pid_t pid = ::fork();
    if (pid == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        std::signal(SIGXFSZ, SIG_DFL);
        const int null = ::open("/dev/null", O_RDWR);
        ::dup2(setup.feed ? input[0] : null, STDIN_FILENO);
        ::dup2(setup.stdoutFd >= 0 ? setup.stdoutFd : null, STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        ::close(input[1]);
        ::close(err[0]);
        if (setup.inChild)
            setup.inChild();
        std::vector<char *> argv{const_cast<char *>("tramline-cli")};
        for (const auto &arg : args)
            argv.push_back(const_cast<char *>(arg.c_str()));
        argv.push_back(nullptr);
        ::execv(TRAMLINE_CLI_PROGRAM, argv.data());
        ::_exit(127);
    }
    ::close(input[0]);
    ::close(err[1]);
    if (setup.feed)
        setup.feed(input[1]);
    ::close(input[1]);
    std::string message;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(err[0], buffer, sizeof buffer);
        if (n > 0)
            message.append(buffer, static_cast<std::size_t>(n));
        else if (n < 0 && errno == EINTR)
            continue;
        else
            break; // end of file, or EIO once a terminal's last user is gone
    }
    ::close(err[0]);
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (WIFSIGNALED(status))
        return {128 + WTERMSIG(status), message};
    return {WEXITSTATUS(status), message};
}

} // namespace tramline::test
