// Opening the port for a transfer, with the messages every transfer shows
// when that fails.
#pragma once

#include "base/interaction.h"
#include "base/status.h"
#include "transfer/port.h"

namespace tramline::transfer {

/// The open port with `ui.idle()` as its idle hook, or null after showing
/// "Error: Null port" or "Failed to open the port. Status = %d" (and
/// setting `status`).
std::unique_ptr<SerialPort> openTransferPort(const std::string &device, const LineSettings &line,
                                             Interaction &ui, Status &status);

/// Shows `text` and returns it as a failure of `code`.
Status transferFailure(Interaction &ui, StatusCode code, const std::string &text);

} // namespace tramline::transfer
