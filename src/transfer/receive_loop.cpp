#include "transfer/receive_loop.h"

#include "transfer/protocol_time.h"

namespace tramline::transfer {

bool ReceiveFilter::feed(char byte, std::string &kept) {
    if (byte == 2 || byte == 3 || byte == 4) {
        ++m_dropped;
        return false;
    }
    if (byte == '\r' || (byte == '\n' && !m_afterCr))
        ++m_lines;
    m_afterCr = byte == '\r';
    kept += byte;
    return true;
}

ReceiveResult receiveLoop(SerialPort &port, std::ostream &capture,
                          const ReceiveProgress &progress) {
    ReceiveResult result;
    ReceiveFilter filter;
    std::string kept;
    int timeouts = 0;
    for (;;) {
        const long timeout =
            protocolMs(result.bytesRead == 0 ? kFirstByteTimeoutMs : kNextByteTimeoutMs);
        const int c = port.readByte(timeout);
        if (c == kTimedOut && ++timeouts < 2)
            continue;
        if (c < 0) {
            result.status = c;
            break;
        }
        timeouts = 0;
        if (result.bytesRead++ == 0 && progress)
            progress(0);
        const long linesBefore = filter.lines();
        kept.clear();
        if (!filter.feed(char(c), kept))
            continue;
        if (!capture.write(kept.data(), std::streamsize(kept.size()))) {
            result.writeFailed = true;
            break;
        }
        ++result.bytesKept;
        if (filter.lines() != linesBefore && progress)
            progress(filter.lines());
    }
    if (!capture.flush())
        result.writeFailed = true;
    result.lines = filter.lines();
    return result;
}

} // namespace tramline::transfer
