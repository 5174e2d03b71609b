// tramline-cli as a library: every command runs in-process on the given
// streams, so tests drive the real commands without starting a program.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace tramline::cli {

/// Exit codes: 0 success, 1 a failure that printed its message, 2 bad usage.
enum ExitCode : int { kSuccess = 0, kFailure = 1, kUsage = 2 };

/// Runs the command line `args` (without the program name).
int run(const std::vector<std::string> &args, std::ostream &out, std::ostream &err);

/// Runs `command` and returns its exit code; anything it throws becomes an
/// "Error: ..." line on `err` and kFailure. run() goes through it.
int runGuarded(const std::function<int()> &command, std::ostream &err);

} // namespace tramline::cli
