// The two ways a line is opened under the port object: libserialport for
// the ports it can describe (built-in and USB-serial adapters, on every
// platform), and plain termios for POSIX terminals it cannot describe
// (pseudo-terminals, as virtual ports and instrument simulators give
// them: this libserialport looks every port up in sysfs, where they have
// no entry). Both report the port object's negative status codes.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace tramline::transfer {

/// The line as the port object sets it up.
struct LineSettings {
    int baud = 9600;
    char parity = 'N'; ///< N, O, E, M or S
    int dataBits = 8;
    int stopBits = 1; ///< 1 or 2
};

class PortDevice {
public:
    virtual ~PortDevice() = default;
    /// Bytes written (0 when the device takes none now), or a negative status.
    virtual int write(const char *bytes, std::size_t count) = 0;
    /// Bytes read, waiting at most `waitMs` for the first; 0 when none
    /// came; a negative status when the line failed (a peer that hung up).
    virtual int read(char *buffer, std::size_t capacity, int waitMs) = 0;
};

/// Opens `device` exclusively and sets the line. On failure returns null
/// and sets `status`: -9 when another program holds the port, -24 when it
/// cannot be opened as a serial line.
std::unique_ptr<PortDevice> openPortDevice(const std::string &device, const LineSettings &settings,
                                           int &status);

} // namespace tramline::transfer
