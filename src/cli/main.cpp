#include "cli/cli.h"

#include <csignal>
#include <iostream>

int main(int argc, char **argv) {
    // Past a file-size limit a write should fail with its error (and the
    // save clean up after itself), not kill the program without a word.
    std::signal(SIGXFSZ, SIG_IGN);
    // A reader that goes away (a closed pipe) is a failed write like any
    // other: reported, exit code 1, not a silent death.
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<std::string> args(argv + 1, argv + argc);
    return tramline::cli::run(args, std::cout, std::cerr);
}
