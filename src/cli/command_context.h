// What every sub-command gets: the output streams and the exit code it
// leaves behind. Each module's commands register themselves on the app.
#pragma once

#include "cli/cli.h"

#include <CLI/CLI.hpp>
#include <ostream>

namespace tramline::cli {

struct CommandContext {
    std::ostream &out;
    std::ostream &err;
    int exitCode = kSuccess;
    /// --quiet: no progress line even on a terminal.
    bool quiet = false;
};

void addRawCommands(CLI::App &app, CommandContext &context);
void addProcessCommands(CLI::App &app, CommandContext &context);
void addCrdCommands(CLI::App &app, CommandContext &context);
/// "crd check" and "crd repair", added under the "crd" command.
void addCrdRepairCommands(CLI::App &crdApp, CommandContext &context);
void addGeoCommands(CLI::App &app, CommandContext &context);
void addLocalizeCommands(CLI::App &app, CommandContext &context);
void addLsqCommands(CLI::App &app, CommandContext &context);
void addConvertCommands(CLI::App &app, CommandContext &context);
/// "geo convert", added under the "geo" command.
void addGeoConvertCommands(CLI::App &geoApp, CommandContext &context);
/// "crd transform", added under the "crd" command.
void addCrdTransformCommand(CLI::App &crdApp, CommandContext &context);
void addTransferCommands(CLI::App &app, CommandContext &context);

} // namespace tramline::cli
