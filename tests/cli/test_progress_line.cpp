// The progress line of long commands, seen as a user sees it: the program
// itself with a pseudo-terminal as its standard error.
#include "cli_program.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
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
    // Points that arrive in two halves more than a second apart, so that
    // the run lasts longer than the line's delay.
    tramline::test::ProgramSetup slowInput;
    slowInput.feed = [](int fd) {
        std::string half;
        for (int i = 0; i < 8192; ++i)
            half += "40 -105\n";
        writeAll(fd, half);
        std::this_thread::sleep_for(std::chrono::milliseconds(1300));
        writeAll(fd, half);
    };
    for (const Case &c : cases) {
        std::vector<std::string> args = {"geo",    "convert", "--from",
                                         "latlon", "--to",    "EPSG:32613"};
        args.insert(args.end(), c.extra.begin(), c.extra.end());
        slowInput.terminal = c.terminal;
        const std::string err = tramline::test::runProgram(args, slowInput).err;
        EXPECT_EQ(err.find(" lines") != std::string::npos, c.shown)
            << "terminal " << c.terminal << ": " << err;
        EXPECT_EQ(err.find("Error"), std::string::npos) << err;
    }
}

} // namespace
