#include "cli/cli.h"

#include "base/format.h"
#include "base/translation.h"
#include "cli/command_context.h"
#include "cli/command_suggestion.h"

#include <algorithm>
#include <exception>

namespace tramline::cli {

int run(const std::vector<std::string> &args, std::ostream &out, std::ostream &err) {
    CLI::App app{"tramline-cli: survey field data from the command line "
                 "(raw files, coordinate files, reduction, conversion, transfer)",
                 "tramline-cli"};
    app.require_subcommand(1);
    app.set_version_flag("--version", "tramline-cli 0.1.0");
    CommandContext context{out, err};
    // Global options may follow the sub-command ("process job.rw5 --quiet").
    app.fallthrough();
    app.add_flag("--quiet", context.quiet, "No progress line on standard error");
    addRawCommands(app, context);
    addProcessCommands(app, context);
    addCrdCommands(app, context);
    addGeoCommands(app, context);
    addLocalizeCommands(app, context);
    addLsqCommands(app, context);
    addConvertCommands(app, context);
    addTransferCommands(app, context);

    std::vector<std::string> reversed(args.rbegin(), args.rend());
    return runGuarded(
        [&]() -> int {
            try {
                app.parse(reversed);
            } catch (const CLI::Success &e) { // --help, --help-all, --version
                app.exit(e, out, err);
                return kSuccess;
            } catch (const CLI::ParseError &e) {
                app.exit(e, out, err);
                if (const std::string hint = suggestSubcommand(app, args); !hint.empty())
                    err << hint << '\n';
                return kUsage;
            }
            return context.exitCode;
        },
        err);
}

int runGuarded(const std::function<int()> &command, std::ostream &err) {
    // The boundary of the program: whatever a command lets escape ends as a
    // failure with a message, never as an abort.
    try {
        return command();
    } catch (const std::exception &e) {
        err << format(tr("Error: the command stopped unexpectedly (%s)"), e.what()) << '\n';
    } catch (...) {
        err << tr("Error: the command stopped unexpectedly") << '\n';
    }
    return kFailure;
}

} // namespace tramline::cli
