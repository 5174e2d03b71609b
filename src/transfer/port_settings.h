// The port settings as the port dialog keeps them: 1-based choice numbers
// in the settings file "tramline.ini", one line a setting, key "=" value,
// read in pieces of 221 characters like the rest of that file. A device
// path typed in the dialog is kept beside them and wins over the choice.
#pragma once

#include "transfer/port_device.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tramline::transfer {

struct PortSettings {
    int port = 1;       ///< `com_port`: 1 to 4, COM1 to COM4
    int parity = 1;     ///< `com_parity`: 1 None (N), 2 Odd (O), 3 Even (E)
    int baud = 4;       ///< `com_baud`: 1 1200, 2 2400, 3 4800, 4 9600, 5 19200, 6 38400
    std::string device; ///< `com_device`: a device path; empty: the port choice
};

/// The baud of choice 1 to 6, or 9600 for any other.
int baudOfChoice(int choice);
/// The parity letter of choice 1 to 3, or 'N' for any other.
char parityOfChoice(int choice);
/// The choice of a baud (0 when the table has none) and of a letter (0 likewise).
int choiceOfBaud(int baud);
int choiceOfParity(char letter);

/// The device to open: `device` when set, else the port choice's.
std::string portDevice(const PortSettings &settings);
/// 8 data bits and 1 stop bit, with the chosen baud and parity.
LineSettings lineSettings(const PortSettings &settings);

/// Applies one line of the settings file; other keys, lines without a
/// value and numbers out of range change nothing.
void applyPortSettingsLine(std::string_view line, PortSettings &settings);
/// Reads the settings file; false when it cannot be opened.
bool readPortSettings(const std::filesystem::path &path, PortSettings &settings);
/// Rewrites the settings file with the port keys set, every other line kept
/// as it is. False when it cannot be written.
bool savePortSettings(const std::filesystem::path &path, const PortSettings &settings);

} // namespace tramline::transfer
