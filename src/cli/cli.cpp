#include "cli/cli.h"

#include "cli/command_context.h"

#include <algorithm>

namespace tramline::cli {

int run(const std::vector<std::string> &args, std::ostream &out, std::ostream &err) {
    CLI::App app{"tramline-cli: survey field data from the command line "
                 "(raw files, coordinate files, reduction, conversion, transfer)",
                 "tramline-cli"};
    app.require_subcommand(1);
    app.set_version_flag("--version", "tramline-cli 0.1.0");
    CommandContext context{out, err};
    addRawCommands(app, context);
    addProcessCommands(app, context);
    addCrdCommands(app, context);
    addGeoCommands(app, context);

    std::vector<std::string> reversed(args.rbegin(), args.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp &e) {
        app.exit(e, out, err);
        return kSuccess;
    } catch (const CLI::CallForAllHelp &e) {
        app.exit(e, out, err);
        return kSuccess;
    } catch (const CLI::CallForVersion &e) {
        app.exit(e, out, err);
        return kSuccess;
    } catch (const CLI::ParseError &e) {
        app.exit(e, out, err);
        return kUsage;
    }
    return context.exitCode;
}

} // namespace tramline::cli
