// Runs tramline-cli in-process for the command tests.
#pragma once

#include "cli/cli.h"

#include <sstream>
#include <string>
#include <vector>

namespace tramline::test {

struct CliResult {
    int code;
    std::string out, err;
};

/// The command line `args` (without the program name), its exit code and
/// what it wrote to each stream.
inline CliResult runCli(const std::vector<std::string> &args) {
    std::ostringstream out, err;
    const int code = cli::run(args, out, err);
    return {code, out.str(), err.str()};
}

} // namespace tramline::test
