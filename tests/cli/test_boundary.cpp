#include "cli/cli.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

// Whatever escapes a command ends as exit status 1 with an "Error:" line,
// and a command that returns keeps its own exit code and stays quiet.
TEST(CliBoundary, EveryExceptionBecomesAFailure) {
    const struct {
        const char *name;
        std::function<int()> command;
        int code;
        const char *err;
    } cases[] = {
        {"out_of_range", []() -> int { throw std::out_of_range("stoi"); }, 1,
         "Error: the command stopped unexpectedly (stoi)\n"},
        {"bad_alloc", []() -> int { throw std::bad_alloc(); }, 1,
         "Error: the command stopped unexpectedly (std::bad_alloc)\n"},
        {"not an exception", []() -> int { throw 42; }, 1,
         "Error: the command stopped unexpectedly\n"},
        {"usage", [] { return 2; }, 2, ""},
        {"success", [] { return 0; }, 0, ""},
    };
    for (const auto &c : cases) {
        std::ostringstream err;
        EXPECT_EQ(tramline::cli::runGuarded(c.command, err), c.code) << c.name;
        EXPECT_EQ(err.str(), c.err) << c.name;
    }
}

} // namespace
