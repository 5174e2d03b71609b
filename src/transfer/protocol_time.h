// The waits of the transfer protocols, in the milliseconds of a real line.
// Tests shorten them all at once through the environment variable
// TRAMLINE_TRANSFER_MS_PER_SECOND (how many milliseconds a protocol second
// lasts, 1000 when unset); no user-visible setting changes them, since an
// instrument needs them as they are.
#pragma once

namespace tramline::transfer {

/// `ms` of the protocol, scaled for tests as described above.
long protocolMs(long ms);

} // namespace tramline::transfer
