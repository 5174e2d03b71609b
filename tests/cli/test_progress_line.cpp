// The progress line of long commands, seen as a user sees it: the program
// itself with a pseudo-terminal as its standard error.
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

void writeAll(int fd, const std::string &text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n <= 0)
            return;
        done += static_cast<std::size_t>(n);
    }
}

std::string readAll(int fd) {
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n > 0)
            text.append(buffer, static_cast<std::size_t>(n));
        else if (n < 0 && errno == EINTR)
            continue;
        else
            return text; // end of file, or EIO once the terminal's last user is gone
    }
}

// Runs "geo convert" on points that arrive in two halves more than a
// second apart, so that the run lasts longer than the line's delay.
// Returns what the program wrote to its standard error.
std::string slowConvert(bool terminal, const std::vector<std::string> &extra) {
    int errRead = -1, errWrite = -1;
    if (terminal) {
        if (::openpty(&errRead, &errWrite, nullptr, nullptr, nullptr) != 0)
            return "openpty failed";
    } else {
        int fds[2];
        if (::pipe(fds) != 0)
            return "pipe failed";
        errRead = fds[0];
        errWrite = fds[1];
    }
    int input[2];
    if (::pipe(input) != 0)
        return "pipe failed";
    std::vector<std::string> args = {
        TRAMLINE_CLI_PROGRAM, "geo", "convert", "--from", "latlon", "--to", "EPSG:32613"};
    args.insert(args.end(), extra.begin(), extra.end());
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(input[0], STDIN_FILENO);
        ::dup2(errWrite, STDERR_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        ::dup2(null, STDOUT_FILENO);
        ::close(input[1]);
        ::close(errRead);
        std::vector<char *> argv;
        for (auto &a : args)
            argv.push_back(a.data());
        argv.push_back(nullptr);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(input[0]);
    ::close(errWrite);
    std::string half;
    for (int i = 0; i < 8192; ++i)
        half += "40 -105\n";
    writeAll(input[1], half);
    std::this_thread::sleep_for(std::chrono::milliseconds(1300));
    writeAll(input[1], half);
    ::close(input[1]);
    int status = 0;
    ::waitpid(child, &status, 0);
    std::string err = readAll(errRead);
    ::close(errRead);
    return err;
}

TEST(ProgressLine, OnlyOnATerminalAndNotWhenQuiet) {
    struct Case {
        bool terminal;
        std::vector<std::string> extra;
        bool shown;
    };
    const Case cases[] = {
        {true, {}, true},
        {true, {"--quiet"}, false}, // the global option after the sub-command
        {false, {}, false},         // a script's log stays clean
    };
    for (const Case &c : cases) {
        const std::string err = slowConvert(c.terminal, c.extra);
        EXPECT_EQ(err.find(" lines") != std::string::npos, c.shown)
            << "terminal " << c.terminal << ": " << err;
        EXPECT_EQ(err.find("Error"), std::string::npos) << err;
    }
}

} // namespace
