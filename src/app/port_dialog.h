// The port dialog of the data-collection dialogs: the old COM1 to COM4
// choices, the serial ports the system has now, a device path the user
// types, the baud and the parity. Its fields go through the shell's form
// prompt, so that tests fill it like any other form.
#pragma once

#include "base/interaction.h"
#include "base/translation.h"
#include "transfer/port_list.h"
#include "transfer/port_settings.h"

#include <vector>

namespace tramline::app {

/// The dialog's title and the button that opens it from a data-collection
/// dialog (English; tr() them).
inline constexpr const char *kPortDialogTitle = trNoop("Port Settings");

/// "Port" (COM1 to COM4, the listed ports, and the saved device path when
/// the list lacks it), "Device Path:" (empty), "Baud" ("1200" to "38400")
/// and "Parity" ("None", "Odd", "Even"), set from `settings`.
std::vector<FormField> portDialogFields(const transfer::PortSettings &settings,
                                        const std::vector<transfer::PortInfo> &ports);

/// The settings of the filled dialog, starting from `settings`: a typed
/// device path wins over the port choice; a listed port is kept as its path.
transfer::PortSettings portSettingsFrom(const std::vector<FormField> &fields,
                                        transfer::PortSettings settings);

} // namespace tramline::app
