// The serial port object every transfer uses: opened with the line
// settings, it writes strings with a terminator and reads bytes and lines
// with deadlines. Every wait polls in short steps and calls the idle hook,
// so that the desktop program stays responsive and the user can cancel.
//
// Failures are negative status codes, the same ones the instruments'
// manuals and our users' old notes quote.
#pragma once

#include "transfer/port_device.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace tramline::transfer {

inline constexpr int kBadArgument = -7;  ///< terminator outside -2..255, line buffer under 2
inline constexpr int kTimedOut = -8;     ///< no byte before the deadline
inline constexpr int kBusy = -9;         ///< the device is busy
inline constexpr int kBusyWriting = -36; ///< the device is busy (another form)
inline constexpr int kNoSerialIo = -24;  ///< the system cannot do serial I/O on the device
inline constexpr int kBadBaud = -25;     ///< baud above 115200 (or one the line cannot take)
inline constexpr int kBadParity = -26;   ///< parity letter not N, O, E, M or S
inline constexpr int kBadStopBits = -28; ///< stop bits neither 1 nor 2
/// Our own: the idle hook asked to stop ("Function cancelled at user request").
inline constexpr int kCancelled = -100;

/// Terminators of writeString() and readLine().
inline constexpr int kCrLf = -2;
inline constexpr int kNoTerminator = -1;
/// A deadline or timeout of -1 waits for ever.
inline constexpr long kForever = -1;

/// Called while waiting; false means the user asked to stop.
using IdleHook = std::function<bool()>;

class SerialPort {
public:
    /// Makes the port object for `device` (a device path, or "COM1" to
    /// "COM4"). Null only when no device is named. The object's status()
    /// is 0 or the negative code of what went wrong; a port whose status is
    /// negative does no input or output.
    static std::unique_ptr<SerialPort> open(const std::string &device,
                                            const LineSettings &settings);

    ~SerialPort() { close(); }
    SerialPort(const SerialPort &) = delete;
    SerialPort &operator=(const SerialPort &) = delete;

    int status() const { return m_status; }
    void setIdleHook(IdleHook hook) { m_idle = std::move(hook); }

    /// Writes what the device takes now: the count written or a status.
    int writeBytes(std::string_view bytes);
    /// True when a byte can be read without waiting.
    bool byteAvailable();
    /// The next byte (0-255) if one is there, else kTimedOut at once.
    int readByte();

    /// Writes `text` with `terminator` (0-255 appended, kCrLf, or
    /// kNoTerminator) in as many pieces as the device takes, until
    /// `deadlineMs` passes (kForever: no deadline). 0 or a status.
    int writeString(std::string_view text, int terminator, long deadlineMs);
    /// One byte (0-255), kTimedOut, kCancelled or a line failure.
    int readByte(long timeoutMs);
    /// Reads into `line` (without terminator) until `terminator` (0-255),
    /// or with a negative one until CR LF (a lone CR stays in the text); the
    /// line is cut at `bufferSize` - 1 bytes. 0 or a status (the bytes read
    /// so far stay in `line`).
    int readLine(std::string &line, std::size_t bufferSize, int terminator, long timeoutMs);
    /// Waits `ms` while running the idle hook: 0 or kCancelled.
    int pause(long ms);

    void close() { m_device.reset(); }

private:
    SerialPort() = default;
    bool idle() const { return !m_idle || m_idle(); }
    bool fill(int waitMs);

    std::unique_ptr<PortDevice> m_device;
    int m_status = 0;
    IdleHook m_idle;
    std::string m_input; ///< bytes read ahead of the caller
    std::size_t m_inputPos = 0;
};

/// The line settings' own check: 0, kBadBaud, kBadParity or kBadStopBits
/// (and kBadArgument for data bits other than 5 to 8).
int checkLineSettings(const LineSettings &settings);

} // namespace tramline::transfer
