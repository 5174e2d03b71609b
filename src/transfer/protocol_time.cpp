#include "transfer/protocol_time.h"

#include <cstdlib>

namespace tramline::transfer {

long protocolMs(long ms) {
    // Read at every use, not cached: each test sets the pace it needs.
    const char *value = std::getenv("TRAMLINE_TRANSFER_MS_PER_SECOND");
    const long perSecond = value ? std::strtol(value, nullptr, 10) : 1000;
    if (perSecond <= 0 || perSecond >= 1000)
        return ms;
    return ms * perSecond / 1000;
}

} // namespace tramline::transfer
