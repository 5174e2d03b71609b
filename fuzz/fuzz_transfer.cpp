// Bytes from the line: the receive filter keeps every byte but 2, 3 and 4
// and counts lines; the frames built around any payload carry its checksum;
// any coordinate gives a sign and nine digits. The same bytes read as the
// settings file leave every port choice within its table.
#include "base/text.h"
#include "transfer/framed_upload.h"
#include "transfer/port_settings.h"
#include "transfer/receive_loop.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    tramline::transfer::ReceiveFilter filter;
    std::string kept;
    for (char c : bytes)
        filter.feed(c, kept);
    if (kept.size() + std::size_t(filter.dropped()) != bytes.size())
        std::abort();
    if (kept.find_first_of(std::string("\x02\x03\x04", 3)) != std::string::npos)
        std::abort();
    if (filter.lines() > long(kept.size()))
        std::abort();

    const std::string frame = tramline::transfer::frameOf(bytes);
    if (frame.size() != bytes.size() + 5 || frame.front() != 2 || frame.back() != 3)
        std::abort();

    if (size >= sizeof(double)) {
        double value = 0;
        std::memcpy(&value, data, sizeof value);
        if (tramline::transfer::coordinateDigits(value).size() != 10)
            std::abort();
    }

    tramline::transfer::PortSettings settings;
    for (std::string_view line : tramline::split(bytes, '\n'))
        tramline::transfer::applyPortSettingsLine(line, settings);
    if (settings.port < 1 || settings.port > 4 || settings.parity < 1 || settings.parity > 3 ||
        settings.baud < 1 || settings.baud > 6)
        std::abort();
    const auto line = tramline::transfer::lineSettings(settings);
    if (tramline::transfer::checkLineSettings(line) != 0)
        std::abort();
    return 0;
}
