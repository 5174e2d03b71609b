// Waits are cut into steps of at most kStepMs so that the idle hook runs
// often enough to keep a window painted, without spinning.
#include "transfer/port.h"

#include "transfer/port_list.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace tramline::transfer {

namespace {

constexpr long kStepMs = 20;

using Clock = std::chrono::steady_clock;

Clock::time_point deadlineAfter(long ms) {
    return ms < 0 ? Clock::time_point::max() : Clock::now() + std::chrono::milliseconds(ms);
}

// Milliseconds until `deadline`, at most one step.
int stepUntil(Clock::time_point deadline) {
    if (deadline == Clock::time_point::max())
        return int(kStepMs);
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return int(std::clamp<long long>(left, 0, kStepMs));
}

} // namespace

int checkLineSettings(const LineSettings &s) {
    if (s.baud > 115200 || s.baud <= 0)
        return kBadBaud;
    if (std::string_view("NOEMS").find(s.parity) == std::string_view::npos || s.parity == '\0')
        return kBadParity;
    if (s.stopBits != 1 && s.stopBits != 2)
        return kBadStopBits;
    if (s.dataBits < 5 || s.dataBits > 8)
        return kBadArgument;
    return 0;
}

std::unique_ptr<SerialPort> SerialPort::open(const std::string &device,
                                             const LineSettings &settings) {
    if (device.empty())
        return nullptr;
    std::unique_ptr<SerialPort> port(new SerialPort);
    port->m_status = checkLineSettings(settings);
    if (port->m_status == 0)
        port->m_device = openPortDevice(resolvePortName(device), settings, port->m_status);
    return port;
}

int SerialPort::writeBytes(std::string_view bytes) {
    if (!m_device)
        return m_status < 0 ? m_status : kNoSerialIo;
    return m_device->write(bytes.data(), bytes.size());
}

bool SerialPort::fill(int waitMs) {
    if (m_inputPos < m_input.size())
        return true;
    if (!m_device)
        return false;
    char buffer[256];
    const int n = m_device->read(buffer, sizeof buffer, waitMs);
    if (n < 0) {
        m_status = n;
        m_device.reset(); // the line is gone: nothing more to read or write
        return false;
    }
    m_input.assign(buffer, std::size_t(n));
    m_inputPos = 0;
    return n > 0;
}

bool SerialPort::byteAvailable() {
    return fill(0);
}

int SerialPort::readByte() {
    if (!fill(0))
        return m_device ? kTimedOut : (m_status < 0 ? m_status : kNoSerialIo);
    return static_cast<unsigned char>(m_input[m_inputPos++]);
}

int SerialPort::writeString(std::string_view text, int terminator, long deadlineMs) {
    if (terminator < kCrLf || terminator > 255)
        return kBadArgument;
    std::string bytes(text);
    if (terminator == kCrLf)
        bytes += "\r\n";
    else if (terminator >= 0)
        bytes += char(terminator);
    const auto deadline = deadlineAfter(deadlineMs);
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const int n = writeBytes(rest);
        if (n < 0 && n != kBusy && n != kBusyWriting)
            return n;
        if (n > 0) {
            rest.remove_prefix(std::size_t(n));
            continue;
        }
        if (!idle())
            return kCancelled;
        if (Clock::now() >= deadline)
            return kTimedOut;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return 0;
}

int SerialPort::readByte(long timeoutMs) {
    const auto deadline = deadlineAfter(timeoutMs);
    for (;;) {
        if (fill(0) || fill(stepUntil(deadline)))
            return static_cast<unsigned char>(m_input[m_inputPos++]);
        if (!m_device)
            return m_status < 0 ? m_status : kNoSerialIo;
        if (!idle())
            return kCancelled;
        if (Clock::now() >= deadline)
            return kTimedOut;
    }
}

int SerialPort::readLine(std::string &line, std::size_t bufferSize, int terminator,
                         long timeoutMs) {
    line.clear();
    if (bufferSize < 2 || terminator > 255)
        return kBadArgument;
    bool pendingCr = false;
    while (line.size() + 1 < bufferSize) {
        const int c = readByte(timeoutMs);
        if (c < 0)
            return c;
        if (terminator >= 0) {
            if (c == terminator)
                return 0;
            line += char(c);
            continue;
        }
        if (pendingCr && c == '\n') {
            line.pop_back();
            return 0;
        }
        pendingCr = c == '\r';
        line += char(c);
    }
    return 0;
}

int SerialPort::pause(long ms) {
    const auto deadline = deadlineAfter(ms);
    while (Clock::now() < deadline) {
        if (!idle())
            return kCancelled;
        std::this_thread::sleep_for(std::chrono::milliseconds(stepUntil(deadline)));
    }
    return 0;
}

} // namespace tramline::transfer
