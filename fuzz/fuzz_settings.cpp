// Bytes read as a settings file: every piece the reader hands on fits the
// 221-character buffer and holds no line end, and a split line gives back
// its key and value exactly. (The port dialog's reading of the values is
// fuzzed with the line bytes in fuzz_transfer.)
#include "base/settings_file.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::istringstream in(std::string(reinterpret_cast<const char *>(data), size));
    std::size_t total = 0;
    tramline::readSettingsLines(in, [&](std::string_view line) {
        if (line.size() > tramline::kSettingsLineBuffer - 1)
            std::abort();
        if (line.find_first_of("\r\n") != std::string_view::npos)
            std::abort();
        total += line.size();
        std::string_view key, value;
        if (tramline::splitSettingsLine(line, key, value)) {
            if (key.find('=') != std::string_view::npos || value.empty())
                std::abort();
            if (key.size() + 1 + value.size() != line.size())
                std::abort();
            if (const auto number = tramline::parseSettingsInteger(value);
                number && value.find_first_of("0123456789") == std::string_view::npos)
                std::abort();
        }
    });
    if (total > size)
        std::abort();

    // A rewrite keeps every line but the owned keys' and the empty ones.
    in.clear();
    in.seekg(0);
    const auto owned = [](std::string_view key) { return key == "com_port" || key == "tmpdir"; };
    const std::string kept = tramline::otherSettingsLines(in, owned);
    if (kept.size() > size + 1 || (!kept.empty() && kept.back() != '\n'))
        std::abort();
    std::istringstream back(kept);
    for (std::string line; std::getline(back, line);)
        if (line.empty() || line.starts_with("com_port=") || line.starts_with("tmpdir="))
            std::abort();
    return 0;
}
