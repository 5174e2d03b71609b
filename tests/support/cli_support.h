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

/// The lines of a command's output, without their line ends.
inline std::vector<std::string> lines(const std::string &text) {
    std::vector<std::string> result;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        result.push_back(line);
    return result;
}

} // namespace tramline::test
