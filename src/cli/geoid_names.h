// Geoid models as the command line names them: by code (1-78) or by name
// ("EGM96", "egm96.grd", "GEOID99"), and the hint that follows a grid
// that is missing.
#pragma once

#include "base/status.h"
#include "cli/command_context.h"
#include "geodesy/geoid_files.h"

#include <string>

namespace tramline::cli {

/// The code of the model `text` names; 0 when none. A name is the model's
/// name or its file's, in any case, with or without ".grd".
int geoidModelFromText(const std::string &text);

/// Writes the message of a failed separation and, when a grid could not be
/// fetched, how to put it in place; sets the failure exit code.
void reportGeoidFailure(CommandContext &ctx, const Status &status, int model,
                        const geodesy::GeoidFolders &folders);

/// "geoid list": every model with its files and which are present.
void addGeoidList(CLI::App &geoid, CommandContext &ctx);

} // namespace tramline::cli
