// The ports a user can choose: the real ones the system has (USB-serial
// adapters are how instruments connect today), the old COM1 to COM4
// choices mapped onto them, and any device path typed in.
#pragma once

#include <string>
#include <vector>

namespace tramline::transfer {

struct PortInfo {
    std::string device;      ///< the path to open ("/dev/ttyUSB0", "COM3")
    std::string description; ///< what the system says it is, may be empty
};

/// The serial ports the system lists now, USB adapters first, by name.
std::vector<PortInfo> listPorts();

/// The device a port choice 1 to 4 opens: on Windows "COM1" to "COM4";
/// elsewhere the n-th port of listPorts(), or /dev/ttyS0 to /dev/ttyS3
/// when fewer are listed.
std::string comPortDevice(int choice);

/// "COM1" to "COM4" (any case) become comPortDevice(); anything else is a
/// device path and stays as it is.
std::string resolvePortName(const std::string &name);

} // namespace tramline::transfer
