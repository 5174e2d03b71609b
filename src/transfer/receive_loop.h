// The receive loop every download shares: bytes are read one at a time,
// the first with a long time-out and the rest with a short one; one
// time-out is forgiven, the second in a row ends the transfer. Start of
// text, end of text and end of transmission (bytes 2, 3, 4) are dropped;
// every other byte, line ends included, goes to the capture as it comes.
#pragma once

#include "transfer/port.h"

#include <functional>
#include <ostream>
#include <string>

namespace tramline::transfer {

/// Time-outs of the loop, milliseconds of a real line (see protocol_time.h).
inline constexpr long kFirstByteTimeoutMs = 10000;
inline constexpr long kNextByteTimeoutMs = 1000;

/// Keeps the bytes worth keeping and counts the lines they make. Lines end
/// at CR, CR LF or LF.
class ReceiveFilter {
public:
    /// Appends `byte` to `kept` unless it is a control byte of the line.
    /// True when it was kept.
    bool feed(char byte, std::string &kept);
    long lines() const { return m_lines; }
    long dropped() const { return m_dropped; }

private:
    long m_lines = 0;
    long m_dropped = 0;
    bool m_afterCr = false;
};

struct ReceiveResult {
    long bytesRead = 0;       ///< every byte that arrived
    long bytesKept = 0;       ///< those written to the capture
    long lines = 0;           ///< lines in the capture
    int status = 0;           ///< kTimedOut at a normal end, else what stopped the loop
    bool writeFailed = false; ///< the capture could not be written
};

/// Called when the first byte arrives (lines 0) and at every line end.
using ReceiveProgress = std::function<void(long lines)>;

/// Reads from `port` into `capture` until the time-out rule ends it, the
/// idle hook cancels (status kCancelled), the line fails or the capture
/// cannot be written.
ReceiveResult receiveLoop(SerialPort &port, std::ostream &capture,
                          const ReceiveProgress &progress = {});

} // namespace tramline::transfer
